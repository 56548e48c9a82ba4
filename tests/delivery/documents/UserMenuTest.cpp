// SPDX-License-Identifier: MIT
#include "simulator/device/ChildProcess.h"
#include "tests/support/ListeningSocket.h"
#include "tests/support/Waiting.h"
#include "tests/whole/system/SystemTest.h"

#include <ls/BusNames.h>

#include <QDBusConnection>
#include <QDBusMessage>

#include <sys/socket.h>
#include <unistd.h>

namespace {

const QString times = QStringLiteral("Menu: 2000 ms");

} // namespace

/// The example receivers in docs/examples, each on a device whose daemon and bus are restarted.
class UserMenuTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void onlyOwnAnnouncementsAreShown_data();
    void onlyOwnAnnouncementsAreShown();
    void restartsAreSurvived_data() { onlyOwnAnnouncementsAreShown_data(); }
    void restartsAreSurvived();
    void aBusThatIsLateIsAwaited_data() { onlyOwnAnnouncementsAreShown_data(); }
    void aBusThatIsLateIsAwaited();

private:
    void start();
    /// Waits until these are all lines since the last call.
    void expect(const QStringList& lines);
    void sendForeignNotification();

    std::unique_ptr<ChildProcess> m_example;
    QString m_output;
};

void UserMenuTest::init()
{
    m_output.clear();
    m_example = std::make_unique<ChildProcess>();
    connect(m_example.get(), &QProcess::readyRead, this,
            [this] { m_output += QString::fromUtf8(m_example->readAll()); });
}

void UserMenuTest::start()
{
    QFETCH(QStringList, command);
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), device().bus().address());
    m_example->setProcessEnvironment(variables);
    m_example->setProcessChannelMode(QProcess::MergedChannels);
    m_example->start(command.first(), command.mid(1));
}

void UserMenuTest::expect(const QStringList& lines)
{
    const QString text = lines.join('\n') + '\n';
    WAIT_FOR(m_output.size() >= text.size() || m_example->state() == QProcess::NotRunning);
    QCOMPARE(m_output, text);
    m_output.clear();
}

/// Any process may send this signal.
void UserMenuTest::sendForeignNotification()
{
    const QString name = QStringLiteral("foreign");
    const QString daemon = ls::busName(ls::ServiceId::KeyboardHandler);
    QDBusMessage signal = QDBusMessage::createSignal("/", daemon, "notification");
    signal << QVariantMap{{"actionId", "Foreign"}, {"receiverId", "UserMenu"}};
    QDBusConnection bus = QDBusConnection::connectToBus(device().bus().address(), name);
    QVERIFY(bus.send(signal));
    QDBusConnection::disconnectFromBus(name);
}

void UserMenuTest::onlyOwnAnnouncementsAreShown_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::newRow("C++") << QStringList{USER_MENU_EXAMPLE};
    QTest::newRow("Python") << QStringList{"/usr/bin/python3", PROJECT_FOLDER "/docs/examples/user-menu.py"};
}

void UserMenuTest::onlyOwnAnnouncementsAreShown()
{
    QVERIFY(launch());
    start();
    expect({times});
    sendForeignNotification();
    tap(ls::KeyId::Feed); // announced to the print manager and to the user menu
    QVERIFY(awaitAction("announce SingleKey UserMenu KeyboardHandler Feed"));
    tap(ls::KeyId::Menu);
    expect({"SingleKey Feed", "SingleKey Menu"});
}

void UserMenuTest::restartsAreSurvived()
{
    QVERIFY(launch());
    start();
    expect({times});
    device().stopDaemon();
    expect({"The daemon is not there."});
    QVERIFY(launch());
    expect({times});
    tap(ls::KeyId::Menu);
    expect({"SingleKey Menu"});
    device().stopDaemon();
    expect({"The daemon is not there."});
    QVERIFY(device().restartBus());
    expect({"The bus is not there.", "The daemon is not there."});
    QVERIFY(launch());
    expect({times});
    tap(ls::KeyId::Menu);
    expect({"SingleKey Menu"});
}

/// The first attempt of the example meets a bus that ends at once.
void UserMenuTest::aBusThatIsLateIsAwaited()
{
    QVERIFY(prepare());
    const QString path = device().bus().address().section('=', 1).section(',', 0, 0);
    device().bus().stop();
    QFile::remove(path);
    const int listener = listenAt(path);
    QVERIFY(listener != -1);
    start();
    const int client = ::accept(listener, nullptr, nullptr);
    QVERIFY(client != -1);
    QVERIFY(QFile::remove(path));
    ::close(client);
    ::close(listener);
    QVERIFY(device().restartBus());
    expect({"The daemon is not there."});
    QVERIFY(launch());
    expect({times});
}

QTEST_GUILESS_MAIN(UserMenuTest)
#include "UserMenuTest.moc"
