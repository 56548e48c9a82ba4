// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/system/SystemTest.h"

#include <ls/BusNames.h>

#include <QDBusConnectionInterface>
#include <QDBusMessage>

namespace {

const QString nameTaken = QStringLiteral("Unable to register Service: Service-name already in use.");

QString serviceName()
{
    return ls::busName(ls::ServiceId::KeyboardHandler);
}

QDBusMessage callOf(const QString& interface, const QString& member)
{
    return QDBusMessage::createMethodCall(serviceName(), ls::busPath, interface, member);
}

} // namespace

class SystemBusNamesTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void withoutABusTheDaemonGetsReadyAndItsConsoleWorks();
    void withoutABusKeysAreStillHandled();
    void aTakenNameIsLogged();
    void aRefusedNameIsLoggedWithTheReason();
    void aSecondInstanceLeavesTheFirstAtWork();
    void theServiceDescribesItself();
    void misshapenCallsAreRefused_data();
    void misshapenCallsAreRefused();
    void aFloodOfCommandsIsAnsweredWhole();
    void theEndOfTheBusLeavesTheConsoleAtWork();
};

void SystemBusNamesTest::withoutABusTheDaemonGetsReadyAndItsConsoleWorks()
{
    options.bus = false;
    QVERIFY(launch());
    QVERIFY(awaitLog(QStringLiteral("Unable to connect to system-bus!")));
    device().typeLine(QStringLiteral("C 4"));
    QVERIFY(awaitLog(QStringLiteral("Process command response")));
}

void SystemBusNamesTest::withoutABusKeysAreStillHandled()
{
    options.bus = false;
    options.loggingRules = QStringLiteral("Console.debug=true");
    QVERIFY(launch());
    tap(ls::KeyId::Menu);
    QVERIFY(awaitLog(QStringLiteral("Console: NotifcationId: \"KeyboardChange\"")));
}

void SystemBusNamesTest::aTakenNameIsLogged()
{
    QVERIFY(prepare());
    BusConnection squatter(device().bus().address());
    QVERIFY(squatter.get().registerService(serviceName()));
    QVERIFY(launch());
    QVERIFY(awaitLog(nameTaken));
    QVERIFY(nextKeyWorks());
}

void SystemBusNamesTest::aRefusedNameIsLoggedWithTheReason()
{
    options.namePolicy = DeviceOptions::NamePolicy::DenyOwnership;
    QVERIFY(launch());
    WAIT_FOR_EQUAL(log().size(), 1);
    const QRegularExpression line(
        QStringLiteral("^Unable to register Service:  \".*not allowed to own the service.*\"$"));
    QVERIFY2(line.match(log().first()).hasMatch(), qPrintable(log().first()));
    QVERIFY(nextKeyWorks());
}

void SystemBusNamesTest::aSecondInstanceLeavesTheFirstAtWork()
{
    QVERIFY(launch());
    DaemonProcess second;
    QStringList secondLog;
    connect(&second, &DaemonProcess::logLine, this, [&](const QString& line) { secondLog << line; });
    QCOMPARE(second.start(device().folder(), options), QString());
    WAIT_FOR(secondLog.contains(nameTaken));
    second.stop();
    QCOMPARE(command(ls::KeyboardHandlerCmdId::GetLastKey).value(ls::resultIdKey).toString(),
             QStringLiteral("Success"));
    QVERIFY(nextKeyWorks());
}

void SystemBusNamesTest::theServiceDescribesItself()
{
    QVERIFY(launch());
    BusConnection client(device().bus().address());
    const QDBusMessage reply = client.get().call(
        callOf(QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect")));
    const QString text = reply.arguments().value(0).toString().simplified();
    const QString interface =
        text.section(QStringLiteral("<interface name=\"com.vantre.KeyboardHandler\">"), 1)
            .section(QStringLiteral("</interface>"), 0, 0);
    QCOMPARE(interface.count(QStringLiteral("<method ")), 1);
    QCOMPARE(interface.count(QStringLiteral("<signal ")), 1);
    QVERIFY2(interface.contains(QStringLiteral("<method name=\"process\">")), qPrintable(interface));
    QVERIFY2(interface.contains(QStringLiteral("<signal name=\"notification\">")), qPrintable(interface));
    QCOMPARE(interface.count(QStringLiteral("type=\"a{sv}\"")), 3);
}

void SystemBusNamesTest::misshapenCallsAreRefused_data()
{
    QTest::addColumn<QString>("member");
    QTest::addColumn<QVariantList>("arguments");
    QTest::newRow("no argument") << "process" << QVariantList();
    QTest::newRow("a text") << "process" << QVariantList{"GetLastKey"};
    QTest::newRow("a list") << "process" << QVariantList{QStringList{"GetLastKey"}};
    QTest::newRow("two maps") << "process" << QVariantList{QVariantMap(), QVariantMap()};
}

void SystemBusNamesTest::misshapenCallsAreRefused()
{
    QFETCH(QString, member);
    QFETCH(QVariantList, arguments);
    QVERIFY(launch());
    BusConnection client(device().bus().address());
    QDBusMessage call = callOf(serviceName(), member);
    call.setArguments(arguments);
    QCOMPARE(client.get().call(call).type(), QDBusMessage::ErrorMessage);
    QVERIFY(nextKeyWorks());
}

void SystemBusNamesTest::aFloodOfCommandsIsAnsweredWhole()
{
    const QVariantMap getList{{ls::commandIdKey, "GetModifierKeyList"}, {ls::senderIdKey, "WwwApi"}};
    QVERIFY(launch());
    // In waves: the bus itself refuses a client that leaves more answers open.
    constexpr int waves = 20;
    constexpr int perWave = 100;
    for (int wave = 1; wave <= waves; ++wave) {
        for (int i = 0; i < perWave; ++i) {
            device().sendCommand(i % 2 == 0 ? getList : QVariantMap{{ls::commandIdKey, "Dance"}});
        }
        WAIT_FOR_EQUAL(actions().filter(QStringLiteral("answer ")).size(), wave * perWave);
    }
    QCOMPARE(actions().count(QStringLiteral("answer errorId=InvalidCmd resultId=Failure")),
             waves * perWave / 2);
    QVERIFY(nextKeyWorks());
}

void SystemBusNamesTest::theEndOfTheBusLeavesTheConsoleAtWork()
{
    QVERIFY(launch());
    QVERIFY(nextKeyWorks());
    device().bus().stop();
    tap(ls::KeyId::Up);
    device().typeLine(QStringLiteral("C 4"));
    QVERIFY(awaitLog(QStringLiteral("Process command response")));
    QVERIFY(device().isRunning());
}

QTEST_GUILESS_MAIN(SystemBusNamesTest)
#include "SystemBusNamesTest.moc"
