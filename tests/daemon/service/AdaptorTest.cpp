// SPDX-License-Identifier: MIT
#include "service/KeyboardHandler.h"
#include "service/KeyboardHandlerAdaptor.h"
#include "tests/support/BusPeer.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/Waiting.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QtTest>

#include <malloc.h>

namespace {

const QString name = QStringLiteral("com.vantre.KeyboardHandler");

} // namespace

class AdaptorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void registrationIsLogged();
    void takenNameIsReported();
    void takenPathIsReported();
    void callsAreUnpackedForTheServiceObject();
    void unknownCallsAreNotCached();
    void notificationsAreRelayed();
    void metaCastKnowsTheSharedInterface();

public Q_SLOTS:
    void note(const QVariantMap& notification) { noted.append(notification); }

private:
    void adapt() { new KeyboardHandlerAdaptor(handler.get()); }

    PrivateBus bus;
    std::unique_ptr<LogRecorder> log;
    QList<QVariantMap> noted;
    std::unique_ptr<KeyboardHandler> handler;
};

void AdaptorTest::init()
{
    log = std::make_unique<LogRecorder>();
    handler = std::make_unique<KeyboardHandler>(nullptr);
}

void AdaptorTest::cleanup()
{
    handler.reset();
    QDBusConnection::systemBus().unregisterService(name);
    QDBusConnection::systemBus().unregisterObject("/");
    log.reset();
    bus.report();
}

void AdaptorTest::registrationIsLogged()
{
    adapt();
    QCOMPARE(log->texts(QtDebugMsg),
             QStringList{"Successfully registered on DBus: \"com.vantre.KeyboardHandler\""});
    QCOMPARE(log->texts(QtCriticalMsg), QStringList{});
    QVERIFY(QDBusConnection::systemBus().interface()->isServiceRegistered(name));
}

void AdaptorTest::takenNameIsReported()
{
    {
        const BusPeer squatter(bus, name);
        adapt();
    }
    QCOMPARE(log->texts(QtCriticalMsg),
             QStringList{"Unable to register Service: Service-name already in use."});
    // The name is not taken later.
    WAIT_FOR(!QDBusConnection::systemBus().interface()->isServiceRegistered(name));
}

void AdaptorTest::takenPathIsReported()
{
    QObject other;
    QVERIFY(QDBusConnection::systemBus().registerObject("/", &other, QDBusConnection::ExportAllContents));
    adapt();
    QCOMPARE(log->texts(QtCriticalMsg), QStringList{"Unable to register object on system-bus!"});
    QVERIFY(!QDBusConnection::systemBus().interface()->isServiceRegistered(name));
}

void AdaptorTest::callsAreUnpackedForTheServiceObject()
{
    adapt();
    QDBusConnection client = bus.connect("client");
    QDBusMessage call = QDBusMessage::createMethodCall(name, "/", name, "process");
    // A variant in a variant is unpacked before the sender is checked.
    call << QVariant(
        QVariantMap{{"commandId", QVariant::fromValue(QDBusVariant("GetKeyList"))}, {"senderId", "WwwApi"}});
    QDBusPendingCall pending = client.asyncCall(call);
    WAIT_FOR(pending.isFinished());
    const auto response = qdbus_cast<QVariantMap>(pending.reply().arguments().value(0));
    QCOMPARE(response, (QVariantMap{{"resultId", "Failure"}, {"errorId", "CmdNotFound"}}));
}

// Qt would cache each call with another name or other argument types. The memory can be measured only without
// a sanitizer.
void AdaptorTest::unknownCallsAreNotCached()
{
    adapt();
    QDBusConnection client = bus.connect("client");
    const auto callUnknown = [&](int first, int count) {
        for (int i = first; i < first + count; ++i) {
            client.send(QDBusMessage::createMethodCall(name, "/", name, QStringLiteral("unknown%1").arg(i)));
        }
        const QDBusPendingCall last =
            client.asyncCall(QDBusMessage::createMethodCall(name, "/", name, "last"));
        WAIT_FOR(last.isFinished());
    };
    callUnknown(0, 1000);
    const size_t before = ::mallinfo2().uordblks;
    callUnknown(1000, 20000);
    QVERIFY(::mallinfo2().uordblks < before + 1024 * 1024);
}

void AdaptorTest::notificationsAreRelayed()
{
    adapt();
    QDBusConnection client = bus.connect("listener");
    QVERIFY(client.connect(name, "/", name, "notification", this, SLOT(note(QVariantMap))));
    const QVariantMap expected{{"notificationId", "KeyboardChange"},
                               {"actionId", "Act"},
                               {"senderId", ""},
                               {"receiverId", "UserMenu"},
                               {"firstKey", "Up"}};
    handler->sendKeyboardChange("Act", "UserMenu", {{"firstKey", "Up"}});
    WAIT_FOR_EQUAL(noted, QList<QVariantMap>{expected});
}

void AdaptorTest::metaCastKnowsTheSharedInterface()
{
    KeyboardHandlerAdaptor adaptor(handler.get());
    QVERIFY(adaptor.qt_metacast("ls::IDBusAdaptor"));
    QVERIFY(adaptor.qt_metacast("com.vantre.IDBusAdaptor"));
}

QTEST_GUILESS_MAIN(AdaptorTest)
#include "AdaptorTest.moc"
