// SPDX-License-Identifier: MIT
#include "simulator/device/ChildProcess.h"
#include "simulator/script/KeyScriptText.h"
#include "tests/control/PanelNodes.h"
#include "tests/support/Attempts.h"
#include "tests/support/Waiting.h"
#include "tests/whole/system/SystemTest.h"

#include <QTemporaryDir>

#include <csignal>

namespace {

const QString socketName = QStringLiteral("/keyboard-handler-recorder/socket");

} // namespace

/// `keyboard-handlerctl record` next to the real daemon.
class SystemRecordTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void aRecordedSessionPlaysAgain();
    void ctrlCWritesTheWholeRecording();
    void aReaderThatHangsDoesNotHoldUpCtrlC();
    void aFullDiskLeavesNoFileAndLosesNothing();
    void withoutADaemonNothingIsKnown();
    void whatCannotBeDoneIsSaid_data();
    void whatCannotBeDoneIsSaid();

private:
    /// A device without a daemon.
    bool prepareWithNodes();
    bool launchWithNodes();
    /// Starts the program in the device's view of the file system. `shell` are commands before it.
    std::unique_ptr<ChildProcess> start(const QStringList& arguments, const QString& shell = {});
    /// The process of the program itself.
    static qint64 programOf(const ChildProcess& process);
    QString recordSession(QByteArray& script);
    /// What differs if the daemon's classes play the script on a virtual clock.
    QString replay(const QByteArray& script);

    std::unique_ptr<PanelNodes> m_nodes;
};

bool SystemRecordTest::prepareWithNodes()
{
    m_nodes = std::make_unique<PanelNodes>();
    if (!prepare()) {
        return false;
    }
    m_nodes->follow(device().panel());
    return QDir(device().folder().runFolder()).mkdir(QStringLiteral("keyboard-handler-recorder"));
}

bool SystemRecordTest::launchWithNodes()
{
    return prepareWithNodes() && launch();
}

std::unique_ptr<ChildProcess> SystemRecordTest::start(const QStringList& arguments, const QString& shell)
{
    auto process = std::make_unique<ChildProcess>();
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), device().bus().address());
    process->setProcessEnvironment(variables);
    QStringList line{"--die-with-parent", "--ro-bind", "/", "/", "--bind", "/tmp", "/tmp"};
    line << m_nodes->viewOf(device().folder()) << "--"
         << "sh"
         << "-c" << shell + QStringLiteral(" exec \"$0\" record \"$@\"") << KEYBOARD_HANDLERCTL;
    process->start(QStringLiteral("bwrap"), line + arguments);
    return process;
}

qint64 SystemRecordTest::programOf(const ChildProcess& process)
{
    const QString path = QStringLiteral("/proc/%1/task/%1/children").arg(process.processId());
    QFile children(path);
    children.open(QIODevice::ReadOnly);
    return children.readAll().simplified().split(' ').first().toLongLong();
}

QString SystemRecordTest::replay(const QByteArray& script)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("recorded.keys")));
    if (!file.open(QIODevice::WriteOnly) || file.write(script) != script.size()) {
        return file.errorString();
    }
    file.close();
    ChildProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.insert(QStringLiteral("KEY_SCRIPTS"), folder.path());
    process.setProcessEnvironment(variables);
    process.start(QStringLiteral("bwrap"),
                  {"--die-with-parent", "--ro-bind", "/", "/", "--bind", "/tmp", "/tmp", "--dev", "/dev",
                   "--dir", "/dev/input", "--tmpfs", "/var/lib", "--tmpfs", "/run", "--", GOLDEN_TEST});
    WAIT_FOR_EQUAL(process.state(), QProcess::NotRunning);
    const QString output = QString::fromUtf8(process.readAll());
    return process.exitCode() == 0 && output.contains("scriptGoesAsExpected(recorded)") ? QString() : output;
}

/// What is wrong with the recording of a session, at whose end a command comes between two announcements.
QString SystemRecordTest::recordSession(QByteArray& script)
{
    device().setState(ls::StateId::Idle);
    const auto recorder = start({"--serve"});
    WAIT_FOR(QFileInfo::exists(device().folder().runFolder() + socketName));
    play(loadKeyScript(QStringLiteral(SESSION)).script);
    command(ls::KeyboardHandlerCmdId::GetLongKeysTimeout);
    tap(ls::KeyId::Down);
    const QString last = QStringLiteral("announce SingleKey PrintManager ServiceTool Down");
    awaitAction(last);
    // The signal may reach this test before it reaches the recorder.
    WAIT_FOR([&] {
        const auto save = start({"--save"});
        save->waitForFinished(-1);
        script = save->readAllStandardOutput();
        return script.contains(last.toUtf8());
    }());
    ::kill(pid_t(programOf(*recorder)), SIGTERM);
    WAIT_FOR_EQUAL(recorder->state(), QProcess::NotRunning);
    QFile::remove(device().folder().runFolder() + socketName);
    const ParsedScript recorded = parseScriptFile(script);
    QStringList expected;
    for (const Observation& observation : recorded.script.expectations) {
        expected << observation.text;
    }
    const bool isRight = recorded.faults.isEmpty() && recorder->exitCode() == 0 &&
                         expected == QStringList(actions().filter(QRegularExpression("^announce "))) &&
                         script.contains("\npress Help\n") && script.contains("\nstate Print\n") &&
                         script.contains("\nrecord 1 30 1\n") && script.contains("\ncommand GetLastKey\n");
    return isRight ? replay(script) : QString::fromUtf8(script);
}

void SystemRecordTest::aRecordedSessionPlaysAgain()
{
    QVERIFY(launchWithNodes());
    QByteArray script;
    QCOMPARE(Attempts::outcome([&] { return recordSession(script); }), QString());
    QCOMPARE(script.count("\nrow "), 17);
    QCOMPARE(script.count("\nexpect "), 8);
    const QByteArray wrong = QByteArray(script).replace("announce PaperStatus", "announce PaperStatsu");
    QVERIFY(replay(wrong).contains("announce PaperStatsu"));
}

void SystemRecordTest::ctrlCWritesTheWholeRecording()
{
    QVERIFY(launchWithNodes());
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("a.keys"));
    const auto recorder = start({"--output", file});
    QByteArray said;
    WAIT_FOR((said += recorder->readAllStandardError()).contains("Recording; Ctrl-C ends it.\n"));
    tap(ls::KeyId::Menu);
    // The recorder sent the daemon no command, so that the first announcement still has no sender.
    QVERIFY(awaitAction("announce SingleKey UserMenu - Menu"));
    QVERIFY(!QFileInfo::exists(file));
    QCOMPARE(::kill(pid_t(programOf(*recorder)), SIGINT), 0);
    WAIT_FOR_EQUAL(recorder->state(), QProcess::NotRunning);
    QCOMPARE(recorder->exitCode(), 0);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"a.keys"});
    QFile written(file);
    QVERIFY(written.open(QIODevice::ReadOnly));
    const QByteArray script = written.readAll();
    QVERIFY2(parseScriptFile(script).faults.isEmpty(), script.constData());
    // Too early to know that no key counted before.
    QVERIFY2(script.contains("## ? device 0 press Menu\n"), script.constData());
    QVERIFY2(script.contains("## ? device 0 release Menu\n"), script.constData());
}

/// The pipe is full before the recorder writes to it.
void SystemRecordTest::aReaderThatHangsDoesNotHoldUpCtrlC()
{
    QVERIFY(prepareWithNodes());
    QFile idFile("/tmp/recorder");
    const auto recorder =
        start({}, "{ head -c 65536 /dev/zero; sh -c 'echo $$ >/tmp/recorder; exec \"$0\" record' \"$0\"; "
                  "} | { until [ -e /tmp/ended ]; do sleep 0.1; done; }; exit;");
    QByteArray said;
    WAIT_FOR((said += recorder->readAllStandardError()).contains("Recording; Ctrl-C ends it.\n"));
    QVERIFY(idFile.open(QIODevice::ReadOnly));
    const auto process = pid_t(idFile.readAll().trimmed().toInt());
    QVERIFY(process > 0);
    // One more often than necessary, as an impatient person would.
    WAIT_FOR(::kill(process, SIGINT) == -1);
    QFile ended("/tmp/ended");
    QVERIFY(ended.open(QIODevice::WriteOnly));
    WAIT_FOR_EQUAL(recorder->state(), QProcess::NotRunning);
}

void SystemRecordTest::aFullDiskLeavesNoFileAndLosesNothing()
{
    QVERIFY(prepareWithNodes());
    const QTemporaryDir folder;
    const auto recorder = start({"--for", "1", "--output", folder.filePath(QStringLiteral("a.keys"))},
                                "trap '' XFSZ; ulimit -f 1;");
    WAIT_FOR_EQUAL(recorder->state(), QProcess::NotRunning);
    QCOMPARE(recorder->exitCode(), 2);
    const QString said = QString::fromUtf8(recorder->readAllStandardError());
    QVERIFY2(said.contains("a.keys cannot be written: ") && said.contains("on the standard output instead."),
             qPrintable(said));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList());
    const QByteArray script = recorder->readAllStandardOutput();
    QVERIFY2(parseScriptFile(script).faults.isEmpty(), script.constData());
    QVERIFY2(script.contains("\nrow shortcut "), script.constData());
}

void SystemRecordTest::withoutADaemonNothingIsKnown()
{
    QVERIFY(launchWithNodes());
    const auto recorder = start({"--serve"});
    WAIT_FOR(QFileInfo::exists(device().folder().runFolder() + socketName));
    device().stopDaemon();
    QByteArray script;
    WAIT_FOR([&] {
        const auto save = start({"--save"});
        save->waitForFinished(-1);
        script = save->readAllStandardOutput();
        return script.contains("## unknown: the daemon ended\n");
    }());
}

void SystemRecordTest::whatCannotBeDoneIsSaid_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("text");
    QTest::newRow("word") << QStringList{"now"} << 2 << "\"now\" is one word too many.";
    QTest::newRow("time") << QStringList{"--for", "0"} << 2
                          << "The time is a whole number of seconds, from 1 to 86400.";
    QTest::newRow("two ways") << QStringList{"--for", "1", "--save"} << 2
                              << "--for, --save and --serve exclude each other.";
    QTest::newRow("file of the unit")
        << QStringList{"--serve", "--output", "a"} << 2 << "--serve writes no file; use --save.";
    QTest::newRow("no folder") << QStringList{"--output", "/nowhere/a.keys"} << 2
                               << "/nowhere/a.keys cannot be written: ";
    QTest::newRow("a device") << QStringList{"--for", "1", "--output", "/dev/null"} << 2
                              << "/dev/null is not a regular file";
    QTest::newRow("no recorder")
        << QStringList{"--save"} << 2
        << "The recorder does not run, unless systemctl enable --now "
           "keyboard-handler-recorder started it; it knows only what happens from then on.";
}

void SystemRecordTest::whatCannotBeDoneIsSaid()
{
    QFETCH(QStringList, arguments);
    QVERIFY(prepareWithNodes());
    const auto recorder = start(arguments);
    WAIT_FOR_EQUAL(recorder->state(), QProcess::NotRunning);
    QTEST(recorder->exitCode(), "status");
    QFETCH(QString, text);
    const QString said = QString::fromUtf8(recorder->readAllStandardError());
    QVERIFY2(said.contains(text), qPrintable(said));
}

QTEST_GUILESS_MAIN(SystemRecordTest)
#include "SystemRecordTest.moc"
