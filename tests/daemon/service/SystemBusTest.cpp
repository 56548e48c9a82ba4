// SPDX-License-Identifier: MIT
#include "service/SystemBus.h"
#include "tests/support/PrivateBus.h"
#include "tests/whole/system/RawBusClient.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QEventLoop>
#include <QSemaphore>
#include <QTimer>
#include <QtTest>

namespace {

const QString busName = QStringLiteral("org.freedesktop.DBus");

/// Keeps Qt's thread for the bus busy. The thread delivers and reads nothing until it is released.
class BusyThread
{
public:
    explicit BusyThread(const QDBusConnection& bus)
    {
        QMetaObject::invokeMethod(
            bus.interface(),
            [this] {
                m_begun.release();
                m_released.acquire();
                m_ended.release();
            },
            Qt::QueuedConnection);
    }
    ~BusyThread()
    {
        m_released.release();
        m_ended.acquire();
    }
    Q_DISABLE_COPY(BusyThread)

    void awaitBegin() { m_begun.acquire(); }

private:
    QSemaphore m_begun;
    QSemaphore m_released;
    QSemaphore m_ended;
};

/// Runs the event loop once, with all timers that have expired.
void runEventLoop()
{
    QEventLoop loop;
    QTimer::singleShot(0, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

class SystemBusTest : public QObject
{
    Q_OBJECT

public:
    // As the installed daemon: the event loop that Qt builds on GLib has no such moment.
    SystemBusTest() { qputenv("QT_NO_GLIB", "1"); }

private Q_SLOTS:
    void theFirstMessagesArriveInTheirOrder();

public Q_SLOTS:
    void note(const QString& name) { m_noted.append(name); }

private:
    PrivateBus m_bus{{}, PrivateBus::Process::Unconnected};
    QStringList m_noted;
};

// Qt delivers the messages that it held back after those that it reads at that moment. The test keeps Qt's
// thread busy twice, so that the second message arrives at exactly that moment.
void SystemBusTest::theFirstMessagesArriveInTheirOrder()
{
    QDBusConnection bus = openSystemBus();
    QVERIFY(bus.isConnected());
    QVERIFY(bus.connect(busName, QString(), busName, QStringLiteral("NameOwnerChanged"), this,
                        SLOT(note(QString))));
    RawBusClient other(m_bus.socketPath());
    QVERIFY(other.enter());
    QVERIFY(other.own("com.vantre.First"));
    QVERIFY(bus.interface()->isServiceRegistered(QStringLiteral("com.vantre.First")));
    {
        auto before = std::make_unique<BusyThread>(bus);
        before->awaitBegin();
        runEventLoop();
        BusyThread meanwhile(bus);
        before.reset();
        meanwhile.awaitBegin();
        QVERIFY(other.own("com.vantre.Second"));
        QVERIFY(other.own("com.vantre.Third")); // its answer comes when the second message is sent
    }
    while (!m_noted.contains(QStringLiteral("com.vantre.Third")) ||
           !m_noted.contains(QStringLiteral("com.vantre.First"))) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QCOMPARE(m_noted.filter(QStringLiteral("com.vantre")),
             QStringList({"com.vantre.First", "com.vantre.Second", "com.vantre.Third"}));
}

QTEST_GUILESS_MAIN(SystemBusTest)
#include "SystemBusTest.moc"
