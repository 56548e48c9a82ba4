// SPDX-License-Identifier: MIT
#include "tests/support/LogRecorder.h"

#include <servicewatcher/ServiceWatcher.h>

#include <QTemporaryDir>
#include <QtTest>

#include <ctime>
#include <thread>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

const QString folder = QStringLiteral("/run/service-watcher");

QString readinessFile(const QString& name)
{
    return folder + '/' + name;
}

/// The socket of a service manager.
class NotifySocket
{
public:
    NotifySocket()
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, qPrintable(m_folder.filePath("notify")), sizeof address.sun_path);
        if (::bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
            qFatal("no notify socket");
        }
        qputenv("NOTIFY_SOCKET", address.sun_path);
    }
    ~NotifySocket()
    {
        qunsetenv("NOTIFY_SOCKET");
        ::close(m_socket);
    }

    /// The next message; empty when there is none.
    QByteArray receive() const
    {
        char message[256];
        const ssize_t size = ::recv(m_socket, message, sizeof message, MSG_DONTWAIT);
        return QByteArray(message, int(qMax<ssize_t>(size, 0)));
    }

private:
    QTemporaryDir m_folder;
    const int m_socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
};

/// Asks for a service that becomes ready a little later.
bool becomesReadyWhileAsked(const QString& name)
{
    ServiceWatcher::setReady(name, false);
    std::thread service([&name] {
        QThread::msleep(10);
        QFile(readinessFile(name)).open(QIODevice::WriteOnly);
    });
    const bool ready = ServiceWatcher::isReady(name);
    service.join();
    return ready;
}

} // namespace

class ServiceWatcherTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void serviceIsReadyFromDeclarationToRevocation();
    void readinessIsAFileOfThatName();
    void declarationsMayBeRepeated();
    void revocationOfAnUnknownServiceIsSilent();
    void unreadyServiceIsNoticedWhileAsked();
    void pollingLeavesTheProcessorToOthers();
    void namesThatAreNoFileNamesAreRefused_data();
    void namesThatAreNoFileNamesAreRefused();
    void unusableFolderIsReported();
    void fileThatCannotBeRemovedIsReported();
    void serviceManagerIsToldOfReadinessOnly();
    void serviceManagerIsToldEvenWithoutFile();
    void unreachableServiceManagerIsReported();
};

void ServiceWatcherTest::cleanup()
{
    QDir(folder).removeRecursively();
    QFile::remove(folder);
}

void ServiceWatcherTest::serviceIsReadyFromDeclarationToRevocation()
{
    QVERIFY(!ServiceWatcher::isReady("speechd"));
    ServiceWatcher::setReady("speechd", true);
    QVERIFY(ServiceWatcher::isReady("speechd"));
    QVERIFY(!ServiceWatcher::isReady("state-handler"));
    ServiceWatcher::setReady("speechd", false);
    QVERIFY(!ServiceWatcher::isReady("speechd"));
}

void ServiceWatcherTest::readinessIsAFileOfThatName()
{
    QVERIFY(!QFile::exists(folder));

    ServiceWatcher::setReady("keyboard-handler", true);

    QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList("keyboard-handler"));
}

void ServiceWatcherTest::declarationsMayBeRepeated()
{
    const LogRecorder log;

    ServiceWatcher::setReady("speechd", true);
    ServiceWatcher::setReady("speechd", true);
    QVERIFY(ServiceWatcher::isReady("speechd"));
    ServiceWatcher::setReady("speechd", false);
    ServiceWatcher::setReady("speechd", false);

    QVERIFY(log.lines().isEmpty());
}

void ServiceWatcherTest::revocationOfAnUnknownServiceIsSilent()
{
    const LogRecorder log;

    ServiceWatcher::setReady("keyboard-handler", false);

    QVERIFY(log.lines().isEmpty());
    QVERIFY(!QFile::exists(folder));
}

void ServiceWatcherTest::unreadyServiceIsNoticedWhileAsked()
{
    QDir().mkpath(folder);

    // A busy machine may let the service start too late for one question.
    QTRY_VERIFY(becomesReadyWhileAsked("speechd"));
}

void ServiceWatcherTest::pollingLeavesTheProcessorToOthers()
{
    QElapsedTimer wall;
    wall.start();
    const std::clock_t start = std::clock();

    for (int i = 0; i < 3; ++i) {
        QVERIFY(!ServiceWatcher::isReady("speechd"));
    }

    const qint64 busy = (std::clock() - start) * 1000 / CLOCKS_PER_SEC;
    QVERIFY(busy < wall.elapsed() / 2);
}

void ServiceWatcherTest::namesThatAreNoFileNamesAreRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("quoted");

    QTest::newRow("empty") << ""
                           << "\"\"";
    QTest::newRow("folder itself") << "."
                                   << "\".\"";
    QTest::newRow("folder above") << ".."
                                  << "\"..\"";
    QTest::newRow("path") << "../escaped"
                          << "\"../escaped\"";
    QTest::newRow("NUL character") << QString("a") + QChar::Null << "\"a\\u0000\"";
}

void ServiceWatcherTest::namesThatAreNoFileNamesAreRefused()
{
    QFETCH(QString, name);
    QFETCH(QString, quoted);
    const LogRecorder log;

    ServiceWatcher::setReady(name, true);

    QVERIFY(!ServiceWatcher::isReady(name));
    QCOMPARE(log.texts(QtCriticalMsg),
             QStringList("ServiceWatcher::setReady ERROR: invalid service name " + quoted));
    QVERIFY(!QFile::exists(folder));
}

void ServiceWatcherTest::unusableFolderIsReported()
{
    QVERIFY(QFile(folder).open(QIODevice::WriteOnly));
    const LogRecorder log;

    ServiceWatcher::setReady("speechd", true);

    QCOMPARE(log.texts(QtCriticalMsg),
             QStringList("ServiceWatcher::setReady ERROR: creating \"/run/service-watcher/speechd\" failed: "
                         "\"Not a directory\""));
    QCOMPARE(log.lines().size(), 1);
}

void ServiceWatcherTest::fileThatCannotBeRemovedIsReported()
{
    QVERIFY(QDir().mkpath(readinessFile("speechd/inner")));
    const LogRecorder log;

    ServiceWatcher::setReady("speechd", false);

    QCOMPARE(log.texts(QtCriticalMsg),
             QStringList("ServiceWatcher::setReady ERROR: removing \"/run/service-watcher/speechd\" failed: "
                         "\"Is a directory\""));
}

void ServiceWatcherTest::serviceManagerIsToldOfReadinessOnly()
{
    const NotifySocket manager;

    ServiceWatcher::setReady("keyboard-handler", false);
    QCOMPARE(manager.receive(), QByteArray());
    ServiceWatcher::setReady("keyboard-handler", true);
    QCOMPARE(manager.receive(), QByteArray("READY=1"));
    QCOMPARE(manager.receive(), QByteArray());
}

void ServiceWatcherTest::serviceManagerIsToldEvenWithoutFile()
{
    QVERIFY(QFile(folder).open(QIODevice::WriteOnly));
    const NotifySocket manager;
    const LogRecorder log;

    ServiceWatcher::setReady("keyboard-handler", true);

    QCOMPARE(manager.receive(), QByteArray("READY=1"));
    QCOMPARE(log.lines().size(), 1);
}

void ServiceWatcherTest::unreachableServiceManagerIsReported()
{
    qputenv("NOTIFY_SOCKET", "/tmp/no-such-socket");
    const LogRecorder log;

    ServiceWatcher::setReady("keyboard-handler", true);
    qunsetenv("NOTIFY_SOCKET");

    QVERIFY(ServiceWatcher::isReady("keyboard-handler"));
    QCOMPARE(log.texts(QtCriticalMsg),
             QStringList("ServiceWatcher::setReady ERROR: notifying the service manager failed: "
                         "\"No such file or directory\""));
}

QTEST_GUILESS_MAIN(ServiceWatcherTest)
#include "ServiceWatcherTest.moc"
