// SPDX-License-Identifier: MIT
#include "service/KeyboardHandler.h"
#include "service/SystemBus.h"

#include <servicewatcher/ServiceWatcher.h>

#include <QDBusConnection>
#include <QtTest>

// The daemon's entry point, renamed.
#define main daemonMain
#include "app/main.cpp"
#undef main

namespace {

/// Observations from the functions that the entry point calls.
struct Start
{
    QMutex mutex;
    QStringList steps;
    bool hadApplication = true; // when the daemon was declared not ready
    QStringList built;          // in the service object when the daemon was declared ready
    QByteArray text;            // the log's encoding of a non-ASCII letter
    int status = -1;
} g_start;

void note(const QString& step)
{
    const QMutexLocker locker(&g_start.mutex);
    g_start.steps.append(step);
}

} // namespace

// Replaces the library's function; the services are ready at the second query.
bool ServiceWatcher::isReady(const QString& name)
{
    static QStringList notReady{"state-handler", "speechd"};
    const bool isReady = !notReady.removeOne(name);
    note(name + (isReady ? " is ready" : " is not ready"));
    return isReady;
}

void ServiceWatcher::setReady(const QString& name, bool ready)
{
    note(name + (ready ? " is ready" : " is not ready"));
    if (!ready) {
        g_start.hadApplication = QCoreApplication::instance() != nullptr;
        return;
    }
    for (const QObject* object : qApp->findChild<KeyboardHandler*>()->children()) {
        g_start.built.append(object->metaObject()->className());
    }
    g_start.text = QString(QChar(0xfc)).toLocal8Bit();
    QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
}

// Replaces the daemon's function with a bus that accepts everything.
QDBusConnection openSystemBus()
{
    return QDBusConnection(QString());
}

bool QDBusConnection::isConnected() const
{
    return true;
}

bool QDBusConnection::registerObject(const QString& path, QObject*, RegisterOptions)
{
    note("object " + path);
    return true;
}

bool QDBusConnection::registerService(const QString& name)
{
    note("name " + name);
    return true;
}

/// Checks the order of the entry point's steps. The entry point runs once, before the test.
class EntryPointTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stepsAreInOrder();
    void daemonIsNotReadyBeforeTheApplicationExists();
    void objectsAreBuiltInOrderBeforeTheDaemonIsReady();
    void logIsUtf8InEveryLocale();
    void endOfTheEventLoopEndsTheDaemon();
};

void EntryPointTest::stepsAreInOrder()
{
    const QStringList expected{
        "keyboard-handler is not ready",   "state-handler is not ready", "speechd is not ready",
        "state-handler is ready",          "speechd is ready",           "object /",
        "name com.vantre.KeyboardHandler", "keyboard-handler is ready"};
    QCOMPARE(g_start.steps, expected);
}

void EntryPointTest::daemonIsNotReadyBeforeTheApplicationExists()
{
    QVERIFY(!g_start.hadApplication);
}

void EntryPointTest::objectsAreBuiltInOrderBeforeTheDaemonIsReady()
{
    QStringList objects = g_start.built;
    objects.removeAll("QDBusAdaptorConnector"); // Qt's own
    const QStringList expected{
        "KeyboardHandlerAdaptor", "Console",        "ls::JFile", "ModifierKey", "ShortcutKey", "LongKey",
        "StateHandler",           "KeyboardManager"};
    QCOMPARE(objects, expected);
}

void EntryPointTest::logIsUtf8InEveryLocale()
{
    QCOMPARE(g_start.text, QByteArray("\xc3\xbc"));
}

void EntryPointTest::endOfTheEventLoopEndsTheDaemon()
{
    QCOMPARE(g_start.status, 0);
}

int main(int argc, char* argv[])
{
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1")); // like some locales
    char name[] = "keyboard-handler";
    char* arguments[] = {name, nullptr};
    g_start.status = daemonMain(1, arguments);
    qInstallMessageHandler(nullptr);
    const QCoreApplication application(argc, argv);
    EntryPointTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "EntryPointTest.moc"
