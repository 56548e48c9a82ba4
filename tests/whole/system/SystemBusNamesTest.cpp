// SPDX-License-Identifier: MIT
#include "tests/support/ProcessFigures.h"
#include "tests/support/Waiting.h"
#include "tests/whole/system/SystemTest.h"

#include <ls/BusNames.h>

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>

#include <sys/resource.h>
#include <unistd.h>

namespace {

const QString nameTaken = QStringLiteral("Unable to register Service: Service-name already in use.");

const QString registered = QStringLiteral("Successfully registered on DBus: \"com.vantre.KeyboardHandler\"");
const QString lost = QStringLiteral("The connection to the system bus is lost.");

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
    void withoutABusTheDaemonBecomesReadyAndItsConsoleWorks();
    void withoutABusKeysAreStillHandled();
    void aTakenNameIsLogged();
    void aRefusedNameIsLoggedWithTheReason();
    void aSecondInstanceDoesNotAffectTheFirst();
    void theServiceDescribesItself();
    void theLossOfTheBusIsLoggedOnceAndTheConsoleKeepsWorking_data();
    void theLossOfTheBusIsLoggedOnceAndTheConsoleKeepsWorking();
};

void SystemBusNamesTest::withoutABusTheDaemonBecomesReadyAndItsConsoleWorks()
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

void SystemBusNamesTest::aSecondInstanceDoesNotAffectTheFirst()
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

void SystemBusNamesTest::theLossOfTheBusIsLoggedOnceAndTheConsoleKeepsWorking_data()
{
    QTest::addColumn<bool>("byDescriptors");
    QTest::newRow("the bus ends") << false;
    QTest::newRow("more descriptors arrive than the daemon may have") << true;
}

void SystemBusNamesTest::theLossOfTheBusIsLoggedOnceAndTheConsoleKeepsWorking()
{
    QFETCH(bool, byDescriptors);
    constexpr int descriptorsOfACall = 16; // the limit of the bus
    QVERIFY(launch());
    QVERIFY(nextKeyWorks());
    QVERIFY(awaitLog(registered));
    QCOMPARE(log(), QStringList{registered});
    if (byDescriptors) {
        const qint64 process = device().daemon().processId();
        const rlim_t limit = rlim_t(ProcessFigures::descriptors(process)) + descriptorsOfACall / 2;
        const rlimit64 limits{limit, limit};
        QCOMPARE(::prlimit64(pid_t(process), RLIMIT_NOFILE, &limits, nullptr), 0);
        QVariantMap command{{ls::commandIdKey, "GetLastKey"}, {ls::senderIdKey, "WwwApi"}};
        for (int i = 0; i < descriptorsOfACall; ++i) {
            command.insert(QString::number(i), QVariant::fromValue(QDBusUnixFileDescriptor(STDERR_FILENO)));
        }
        device().sendCommand(command);
    } else {
        device().bus().stop();
    }
    QVERIFY(awaitLog(lost));
    tap(ls::KeyId::Up);
    device().typeLine(QStringLiteral("C 4"));
    QVERIFY(awaitLog(QStringLiteral("Process command response")));
    QVERIFY(device().isRunning());
    QCOMPARE(log().mid(0, 3), QStringList({registered, lost, QStringLiteral("Process command response")}));
    QCOMPARE(log().count(lost), 1);
}

QTEST_GUILESS_MAIN(SystemBusNamesTest)
#include "SystemBusNamesTest.moc"
