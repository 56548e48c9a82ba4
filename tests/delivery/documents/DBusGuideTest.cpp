// SPDX-License-Identifier: MIT
#include "tests/delivery/documents/FencedBlocks.h"
#include "tests/support/Waiting.h"
#include "tests/whole/system/SystemTest.h"

#include "simulator/device/ChildProcess.h"
#include "simulator/script/KeyScriptText.h"

namespace {

const QString shell = QStringLiteral("sh");
const QString userMenu = QStringLiteral("user-menu");
const QString registered = QStringLiteral("Successfully registered on DBus: \"com.vantre.KeyboardHandler\"");
const QString notServed = QStringLiteral("KeyboardHandler::process ERROR: \"GetKeyList\" command n/a!");

/// Removes the daemon's connection number, which varies.
QString comparable(QString output)
{
    static const QRegularExpression uniqueName(QStringLiteral(":1\\.\\d+"));
    return output.replace(uniqueName, QStringLiteral(":1.N"));
}

} // namespace

/// Runs each example of the guide to the bus interface on a device with the key lists of the guide. A block
/// "sh" is the example. Blocks of the same name are "text", its output; "log", the daemon's log during the
/// example; and "keys", a key script that is played before it. An example whose name starts with "watch" runs
/// until it is terminated, and its keys are played once it listens. The keys start with a wait, because gdbus
/// prints the owner of a service shortly before it delivers its signals.
class DBusGuideTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void everyCommandHasAnExample_data();
    void everyCommandHasAnExample();
    void calls_data();
    void calls();
    void watches_data();
    void watches();
    void theProgramWorks();

private:
    void startExample(ChildProcess& process, const QString& command);
    void playKeys(const QString& example);
    void watch(const QString& example, const QString& command, const QString& listening);

    const FencedBlocks m_guide{QStringLiteral("dbus.md")};
};

void DBusGuideTest::init()
{
    const QStringList lists = m_guide.names(QStringLiteral("json"));
    QCOMPARE(lists.size(), 3);
    options.keyListFolder.clear();
    for (const QString& list : lists) {
        options.keyLists.insert(list, m_guide.text(QStringLiteral("json"), list).toUtf8());
    }
}

void DBusGuideTest::everyCommandHasAnExample_data()
{
    QTest::addColumn<QString>("command");
    for (const QString& command : ls::KeyboardHandlerCmdId::meta.keys()) {
        QTest::newRow(qPrintable(command)) << command;
    }
}

void DBusGuideTest::everyCommandHasAnExample()
{
    QFETCH(QString, command);
    const QStringList examples = m_guide.names(shell);
    QVERIFY(examples.contains(QStringLiteral("busctl-") + command));
    QCOMPARE(QSet<QString>(examples.cbegin(), examples.cend()).size(), examples.size());
}

void DBusGuideTest::calls_data()
{
    QTest::addColumn<QString>("example");
    for (const QString& example : m_guide.names(shell)) {
        if (!example.startsWith(QLatin1String("watch"))) {
            QTest::newRow(qPrintable(example)) << example;
        }
    }
}

void DBusGuideTest::calls()
{
    QFETCH(QString, example);
    QVERIFY(launch());
    QVERIFY(awaitLog(registered));
    playKeys(example);
    const int earlierLines = log().size();
    ChildProcess process;
    startExample(process, m_guide.text(shell, example));
    WAIT_FOR_EQUAL(process.state(), QProcess::NotRunning);
    QCOMPARE(QString::fromUtf8(process.readAll()), m_guide.text(QStringLiteral("text"), example));
    // The log line of an unserved command marks the end of the example's effects.
    command(ls::KeyboardHandlerCmdId::GetKeyList);
    WAIT_FOR_EQUAL(log().mid(earlierLines),
                   m_guide.lines(QStringLiteral("log"), example) + QStringList(notServed));
}

void DBusGuideTest::watches_data()
{
    QTest::addColumn<QString>("example");
    for (const QString& example : m_guide.names(shell).filter(QRegularExpression(QStringLiteral("^watch")))) {
        QTest::newRow(qPrintable(example)) << example;
    }
}

void DBusGuideTest::watches()
{
    QFETCH(QString, example);
    watch(example, m_guide.text(shell, example), QStringLiteral("is owned by"));
}

void DBusGuideTest::theProgramWorks()
{
    watch(userMenu, QStringLiteral(USER_MENU_EXAMPLE), QStringLiteral("Menu: "));
}

void DBusGuideTest::startExample(ChildProcess& process, const QString& command)
{
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), device().bus().address());
    variables.insert(QStringLiteral("PATH"),
                     QStringLiteral(CONTROL_PROGRAM_FOLDER ":") + variables.value(QStringLiteral("PATH")));
    process.setProcessEnvironment(variables);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QStringLiteral("exec ") + command});
}

void DBusGuideTest::playKeys(const QString& example)
{
    const QString keys = m_guide.text(QStringLiteral("keys"), example);
    const ParsedScript parsed = parseKeyScriptSteps(keys);
    QVERIFY(parsed.faults.isEmpty());
    if (!keys.isNull()) {
        QCOMPARE(play(parsed.script).join('\n'), QString());
    }
}

void DBusGuideTest::watch(const QString& example, const QString& command, const QString& listening)
{
    const QString expected = m_guide.text(QStringLiteral("text"), example);
    QVERIFY(expected.contains(listening));
    QVERIFY(launch());
    ChildProcess process;
    QString output;
    connect(&process, &QProcess::readyRead, this, [&] { output += QString::fromUtf8(process.readAll()); });
    startExample(process, command);
    WAIT_FOR(output.contains(listening));
    playKeys(example);
    WAIT_FOR_EQUAL(comparable(output), comparable(expected));
    process.end();
}

QTEST_GUILESS_MAIN(DBusGuideTest)
#include "DBusGuideTest.moc"
