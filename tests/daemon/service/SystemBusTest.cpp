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

/// Blocks Qt's bus thread, which neither delivers nor reads messages until it is released.
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

/// Runs the event loop once, including all expired timers.
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
    // Like the installed daemon; Qt's event loop on GLib does not have this problem.
    SystemBusTest() { qputenv("QT_NO_GLIB", "1"); }

private Q_SLOTS:
    void theFirstMessagesKeepTheirOrder();

public Q_SLOTS:
    void note(const QString& name) { m_noted.append(name); }

private:
    PrivateBus m_bus{{}, PrivateBus::Process::Unconnected};
    QStringList m_noted;
};

// Qt delivers delayed messages after those that it reads at that moment. The test blocks Qt's thread twice,
// so that the second message arrives at exactly that moment.
void SystemBusTest::theFirstMessagesKeepTheirOrder()
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
        QVERIFY(other.own("com.vantre.Third")); // answered after the second message is sent
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
