// SPDX-License-Identifier: MIT
#include "simulator/script/KeyScript.h"
#include "simulator/script/KeyScriptText.h"
#include "tests/support/Waiting.h"

#include <QDir>
#include <QProcess>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

namespace {

constexpr int noTimeout = -1;
const QString panelLine = QStringLiteral("\nThe front panel: http://127.0.0.1:");

bool mentions(const QString& file, const QString& text)
{
    QFile source(file);
    return source.open(QIODevice::ReadOnly) && source.readAll().contains(text.toUtf8());
}

/// Identifies the temporary folder in a list of mounts, where its path may be relative to its file system.
QString mountMarkOf(const QString& folder)
{
    return QDir(folder).dirName();
}

/// The number of processes that have files of `folder` as arguments or mounts.
int processesIn(const QString& folder)
{
    int count = 0;
    const QStringList processes =
        QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")}, QDir::Dirs);
    for (const QString& process : processes) {
        const QString path = QStringLiteral("/proc/%1/").arg(process);
        if (mentions(path + QStringLiteral("cmdline"), folder) ||
            mentions(path + QStringLiteral("mountinfo"), mountMarkOf(folder))) {
            ++count;
        }
    }
    return count;
}

} // namespace

/// Tests `keyboard-handler-simulator` with a private folder for temporary files.
class SimulatorProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aScriptAsExpectedSucceeds();
    void aScriptNotAsExpectedFails_data();
    void aScriptNotAsExpectedFails();
    void aFaultyScriptIsExplained();
    void theEndOfTheDaemonIsReported();
    void aRecordingCanBeReplayed();
    void anUnwritableRecordingIsReportedBeforeTheScript();
    void aRecordingThatBecomesUnwritableIsSavedElsewhere();
    void theRecordingFileIsUnchangedUntilTheEnd();
    void aSignalCleansUp_data();
    void aSignalCleansUp();
    void aKilledProgramLeavesNothingRunning();
    void wrongArgumentsAreExplained_data();
    void wrongArgumentsAreExplained();
    void aServedDeviceRunsUntilASignal_data() { aSignalCleansUp_data(); }
    void aServedDeviceRunsUntilASignal();
    void clientsDoNotDelayTheExit();
    void aPortInUseIsReported();
    void aCrashDoesNotEndAServedDevice();
    void aCrashDuringTheScriptIsReported();
    void anEarlyEndOfTheDaemonIsReported();
    void atATerminalTheDeviceKeepsRunning_data();
    void atATerminalTheDeviceKeepsRunning();
    void typedStatementsAreExecuted();
    void thePromptListsTheStatements_data();
    void thePromptListsTheStatements();
    void theModelCanBeChosen_data();
    void theModelCanBeChosen();
    void theScriptsDeviceIsKept();
    void thePrintedBusCommandWorks();
    void mistakesInTheKeyListsAreReported();
    void servicesFailAndRecover();
    void theDaemonStartsWithoutItsServices_data();
    void theDaemonStartsWithoutItsServices();
    void onlyTheForegroundProcessReadsTheTerminal();

private:
    QString write(const QByteArray& script);
    void start(const QStringList& arguments);
    int run(const QStringList& arguments);
    bool awaitOutput(const QString& text);
    bool expectStatus(int status);
    void type(const QByteArray& line);
    QByteArray openTerminal();
    void startInBackgroundOfTerminal(const QStringList& arguments);
    bool answers();
    qint64 daemon() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<QProcess> m_program;
    QString m_output;
    QByteArray m_input = QProcess::nullDevice().toLocal8Bit();
    int m_terminal = -1;
};

void SimulatorProgramTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("tmp")));
    m_output.clear();
}

void SimulatorProgramTest::cleanup()
{
    m_program.reset();
    m_folder.reset();
    if (m_terminal != -1) {
        close(m_terminal);
    }
    m_terminal = -1;
    m_input = QProcess::nullDevice().toLocal8Bit();
}

QString SimulatorProgramTest::write(const QByteArray& script)
{
    QFile file(m_folder->filePath(QStringLiteral("test.keys")));
    if (!file.open(QIODevice::WriteOnly) || file.write(script) != script.size()) {
        return {};
    }
    return file.fileName();
}

void SimulatorProgramTest::start(const QStringList& arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TMPDIR"), m_folder->filePath(QStringLiteral("tmp")));
    m_program = std::make_unique<QProcess>();
    m_program->setProcessEnvironment(environment);
    m_program->setProcessChannelMode(QProcess::MergedChannels);
    m_program->setStandardInputFile(QString::fromLocal8Bit(m_input));
    m_program->start(QStringLiteral(SIMULATOR), arguments);
}

int SimulatorProgramTest::run(const QStringList& arguments)
{
    start(arguments);
    if (!m_program->waitForFinished(noTimeout) || m_program->exitStatus() != QProcess::NormalExit) {
        return -1;
    }
    m_output = QString::fromUtf8(m_program->readAll());
    return m_program->exitCode();
}

bool SimulatorProgramTest::awaitOutput(const QString& text)
{
    const auto isRead = [&] {
        return m_output.append(QString::fromUtf8(m_program->readAll())).contains(text);
    };
    WAIT_FOR(isRead() || m_program->state() == QProcess::NotRunning);
    return isRead();
}

bool SimulatorProgramTest::expectStatus(int status)
{
    return m_program->waitForFinished(noTimeout) && m_program->exitStatus() == QProcess::NormalExit &&
           m_program->exitCode() == status;
}

QByteArray SimulatorProgramTest::openTerminal()
{
    m_terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    const bool isOpen = m_terminal != -1 && grantpt(m_terminal) == 0 && unlockpt(m_terminal) == 0;
    return isOpen ? QByteArray(ptsname(m_terminal)) : QByteArray();
}

/// Starts the program from a shell, which brings it to the foreground of the terminal on SIGUSR1.
void SimulatorProgramTest::startInBackgroundOfTerminal(const QStringList& arguments)
{
    m_program = std::make_unique<QProcess>();
    m_program->setProcessChannelMode(QProcess::MergedChannels);
    m_program->setStandardInputFile(QString::fromLocal8Bit(m_input));
    m_program->start("setsid",
                     QStringList{"--ctty", "sh", "-c", "set -m; trap : USR1; \"$0\" \"$@\" & wait; fg",
                                 QStringLiteral(SIMULATOR)} +
                         arguments);
}

/// Whether the server of the page answers.
bool SimulatorProgramTest::answers()
{
    QTcpSocket client;
    client.connectToHost(QStringLiteral("127.0.0.1"),
                         m_output.section(panelLine, 1).section('/', 0, 0).toUShort());
    client.write("GET / HTTP/1.0\r\nHost: 127.0.0.1\r\n\r\n");
    return client.waitForConnected(noTimeout) && client.waitForReadyRead(noTimeout);
}

void SimulatorProgramTest::type(const QByteArray& line)
{
    QCOMPARE(::write(m_terminal, line.constData(), size_t(line.size())), ssize_t(line.size()));
}

/// Finds the daemon by the device's folders among its mounts.
qint64 SimulatorProgramTest::daemon() const
{
    const QStringList processes =
        QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")}, QDir::Dirs);
    for (const QString& process : processes) {
        const QString path = QStringLiteral("/proc/%1/").arg(process);
        if (mentions(path + "mountinfo", mountMarkOf(m_folder->path())) &&
            !mentions(path + "cmdline", "bwrap")) {
            return process.toLongLong();
        }
    }
    return 0;
}

void SimulatorProgramTest::aScriptAsExpectedSucceeds()
{
    QCOMPARE(run({write("## A key\ntap Menu\nexpect +0 announce SingleKey UserMenu - Menu\n")}), 0);
    QVERIFY2(m_output.contains(QStringLiteral("\nA key\n")), qPrintable(m_output));
    QVERIFY2(m_output.contains(QStringLiteral(" s  announced  SingleKey Menu  to UserMenu, no sender\n")),
             qPrintable(m_output));
    QVERIFY2(m_output.endsWith(QStringLiteral("\nAll 1 expectations were met, and nothing else happened.\n")),
             qPrintable(m_output));
}

void SimulatorProgramTest::aScriptNotAsExpectedFails_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("line");
    QTest::newRow("a missing observation") << QByteArray("expect 10 cancel\n") << "missing     10 ms: cancel";
    QTest::newRow("an unexpected observation")
        << QByteArray("state Startup\npress Up\nexpect 0 speak EmbosserError 69\n") << "ms: cancel";
}

void SimulatorProgramTest::aScriptNotAsExpectedFails()
{
    QFETCH(QByteArray, script);
    QFETCH(QString, line);
    QCOMPARE(run({write(script)}), 1);
    const QString judgement = m_output.section(QStringLiteral("\nNot as expected:\n"), 1);
    QVERIFY2(judgement.contains(line), qPrintable(m_output));
    QCOMPARE(judgement.count('\n'), 1);
}

void SimulatorProgramTest::aFaultyScriptIsExplained()
{
    const QString path = write("tap Up\nwait a while\n");
    QCOMPARE(run({path}), 2);
    QCOMPARE(m_output, path + QStringLiteral(":2: \"a while\" is not a time from 0 to 86400000 ms.\n"));
}

void SimulatorProgramTest::theEndOfTheDaemonIsReported()
{
    QCOMPARE(run({QStringLiteral("--daemon"), QStringLiteral("/bin/false"), write("wait 20000\n")}), 2);
    QVERIFY2(m_output.endsWith(QStringLiteral("The daemon has ended with status 1.\n")),
             qPrintable(m_output));
}

void SimulatorProgramTest::aRecordingCanBeReplayed()
{
    // A busy machine can delay a replay for longer than the tolerance of a recording, but not each time.
    int status = -1;
    for (int attempt = 0; attempt < 5 && status != 0; ++attempt) {
        const QString recording = m_folder->filePath(QStringLiteral("%1.keys").arg(attempt));
        QCOMPARE(run({QStringLiteral("--record"), recording,
                      write("state Print\ntap Up\nwait 300\ncommand GetLastKey\n")}),
                 1);
        const ParsedScript parsed = loadKeyScript(recording);
        QVERIFY(parsed.faults.isEmpty());
        QCOMPARE(parsed.script.steps.size(), 3);
        QCOMPARE(parsed.script.expectations.size(), 2);
        status = run({recording});
    }
    QCOMPARE(status, 0);
}

void SimulatorProgramTest::anUnwritableRecordingIsReportedBeforeTheScript()
{
    const QString path = m_folder->filePath("gone/recording.keys");
    QCOMPARE(run({"--record", path, write("wait 0\n")}), 2);
    QCOMPARE(m_output, path + " cannot be written: No such file or directory.\n");
}

void SimulatorProgramTest::aRecordingThatBecomesUnwritableIsSavedElsewhere()
{
    QDir folder(m_folder->path());
    QVERIFY(folder.mkdir("gone"));
    m_input = openTerminal();
    start({"--no-demo", "--port", "0", "--record", folder.filePath("gone/recording.keys")});
    QVERIFY(awaitOutput(QStringLiteral("\n> ")));
    type("tap Menu\n");
    QVERIFY(awaitOutput(QStringLiteral("announced  SingleKey Menu")));
    QVERIFY(QDir(folder.filePath("gone")).removeRecursively());
    type("quit\n");
    QVERIFY(expectStatus(1));
    QVERIFY(awaitOutput(QStringLiteral("recording.keys cannot be written: No such file or directory. "
                                       "The recording is in ")));
    const QString saved = m_output.section("The recording is in ", 1).section(".\n", 0, 0);
    QVERIFY2(saved.startsWith(m_folder->path()), qPrintable(saved));
    const ParsedScript parsed = loadKeyScript(saved);
    QVERIFY(parsed.faults.isEmpty());
    QCOMPARE(parsed.script.steps.size(), 2);
}

void SimulatorProgramTest::theRecordingFileIsUnchangedUntilTheEnd()
{
    const QString path = write("# an older recording\n");
    m_input = openTerminal();
    start({"--no-demo", "--port", "0", "--record", path});
    QVERIFY(awaitOutput(QStringLiteral("\n> ")));
    QVERIFY(mentions(path, "# an older recording\n"));
    type("quit\n");
    QVERIFY(expectStatus(0));
    QVERIFY(mentions(path, "recorded\n") && !mentions(path, "older"));
}

void SimulatorProgramTest::aSignalCleansUp_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("interrupt") << SIGINT;
    QTest::newRow("terminate") << SIGTERM;
    QTest::newRow("hang up") << SIGHUP;
}

void SimulatorProgramTest::aSignalCleansUp()
{
    QFETCH(int, signal);
    start({write("## Begun\nwait 20000\n")});
    WAIT_FOR(m_output.append(QString::fromUtf8(m_program->readAll())).contains(QStringLiteral("Begun")));
    QVERIFY(processesIn(m_folder->path()) >= 3);
    QCOMPARE(kill(pid_t(m_program->processId()), signal), 0);
    QVERIFY(m_program->waitForFinished(noTimeout));
    QCOMPARE(m_program->exitCode(), 128 + signal);
    QCOMPARE(processesIn(m_folder->path()), 0);
    QCOMPARE(
        QDir(m_folder->filePath(QStringLiteral("tmp"))).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
        QStringList());
}

void SimulatorProgramTest::aKilledProgramLeavesNothingRunning()
{
    start({write("## Begun\nwait 20000\n")});
    WAIT_FOR(m_output.append(QString::fromUtf8(m_program->readAll())).contains(QStringLiteral("Begun")));
    QVERIFY(processesIn(m_folder->path()) >= 3);
    m_program->kill();
    QVERIFY(m_program->waitForFinished(noTimeout));
    WAIT_FOR_EQUAL(processesIn(m_folder->path()), 0);
}

void SimulatorProgramTest::wrongArgumentsAreExplained_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("sentence");
    const QString nothing = QStringLiteral("Nothing to do: name a key script or add --serve.\n");
    QTest::newRow("nothing to do") << QStringList("--no-demo") << nothing;
    QTest::newRow("a word as port") << QStringList({"--serve", "--port", "moo"})
                                    << "\"moo\" is not a port number.\n";
    QTest::newRow("a port too high") << QStringList({"--serve", "--port", "65536"})
                                     << "\"65536\" is not a port number.\n";
    QTest::newRow("a port and a blank")
        << QStringList({"--serve", "--port", "80 "}) << "\"80 \" is not a port number.\n";
    QTest::newRow("a port with a sign")
        << QStringList({"--serve", "--port", "+80"}) << "\"+80\" is not a port number.\n";
    QTest::newRow("an unknown option")
        << QStringList("--moo") << "Unknown option 'moo'.\n--help lists the options.\n";
    QTest::newRow("two scripts") << QStringList({"one.keys", "two.keys"})
                                 << "Only one key script can be played, not 2.\n";
    QTest::newRow("an unknown model") << QStringList({"--serve", "--no-demo", "--model", "Moo"})
                                      << "Unknown model \"Moo\"; known models: Orvane, Pellit.\n";
    QTest::newRow("a model for a script") << QStringList({"--model", "Orvane", "one.keys"})
                                          << "--model requires --no-demo and no script, because a script "
                                             "names its own model.\n";
    QTest::newRow("an empty port") << QStringList({"--serve", "--port", ""})
                                   << "\"\" is not a port number.\n";
}

void SimulatorProgramTest::wrongArgumentsAreExplained()
{
    QFETCH(QStringList, arguments);
    QCOMPARE(run(arguments), 3);
    QTEST(m_output, "sentence");
}

void SimulatorProgramTest::aServedDeviceRunsUntilASignal()
{
    QFETCH(int, signal);
    start({"--serve", "--port", "0", write("tap Menu\nexpect +0 announce SingleKey UserMenu - Menu\n")});
    QVERIFY(awaitOutput(panelLine));
    QVERIFY(m_output.contains(QStringLiteral("\nAll 1 expectations were met")));
    QVERIFY(processesIn(m_folder->path()) >= 3);
    QCOMPARE(kill(pid_t(m_program->processId()), signal), 0);
    QVERIFY(expectStatus(128 + signal));
    QCOMPARE(processesIn(m_folder->path()), 0);
    QVERIFY(QDir(m_folder->filePath(QStringLiteral("tmp"))).isEmpty());
}

void SimulatorProgramTest::clientsDoNotDelayTheExit()
{
    start({"--serve", "--no-demo", "--port", "0"});
    QVERIFY(awaitOutput(panelLine));
    const QString port = m_output.section(panelLine, 1).section('/', 0, 0);
    QTcpSocket silent;
    QTcpSocket slow;
    QTcpSocket stream;
    for (QTcpSocket* client : {&silent, &slow, &stream}) {
        client->connectToHost(QStringLiteral("127.0.0.1"), port.toUShort());
        QVERIFY(client->waitForConnected(noTimeout));
    }
    slow.write("GET / HT");
    stream.write("GET /api/events HTTP/1.1\r\nHost: 127.0.0.1:" + port.toLatin1() + "\r\n\r\n");
    WAIT_FOR(stream.peek(stream.bytesAvailable()).contains("event: snapshot"));
    QCOMPARE(kill(pid_t(m_program->processId()), SIGINT), 0);
    QVERIFY(expectStatus(128 + SIGINT));
    QCOMPARE(processesIn(m_folder->path()), 0);
    QVERIFY(QDir(m_folder->filePath(QStringLiteral("tmp"))).isEmpty());
    for (const QTcpSocket* client : {&silent, &slow, &stream}) {
        WAIT_FOR_EQUAL(client->state(), QAbstractSocket::UnconnectedState);
    }
}

void SimulatorProgramTest::aPortInUseIsReported()
{
    start({"--serve", "--no-demo", "--port", "0"});
    QVERIFY(awaitOutput(panelLine));
    const QString port = m_output.section(panelLine, 1).section('/', 0, 0);
    const std::unique_ptr<QProcess> first = std::move(m_program);
    QCOMPARE(run({"--serve", "--no-demo", "--port", port}), 2);
    QVERIFY2(m_output.contains(port), qPrintable(m_output));
    QVERIFY2(m_output.endsWith(". --port chooses another port; --port 0 chooses a free one.\n"),
             qPrintable(m_output));
    QCOMPARE(first->state(), QProcess::Running);
    first->terminate();
    QVERIFY(first->waitForFinished(noTimeout));
}

void SimulatorProgramTest::aCrashDoesNotEndAServedDevice()
{
    start({"--serve", "--no-demo", "--port", "0"});
    QVERIFY(awaitOutput(panelLine));
    QVERIFY(daemon() != 0);
    QCOMPARE(kill(pid_t(daemon()), SIGKILL), 0);
    QVERIFY(awaitOutput(QStringLiteral("\nThe daemon was ended by the signal SIGKILL (killed).\n")));
    QVERIFY(!m_program->waitForFinished(500));
    QCOMPARE(kill(pid_t(m_program->processId()), SIGINT), 0);
    QVERIFY(expectStatus(128 + SIGINT));
}

void SimulatorProgramTest::aCrashDuringTheScriptIsReported()
{
    m_input = openTerminal();
    start({"--port", "0", write("## Begun\nwait 20000\n")});
    QVERIFY(awaitOutput(QStringLiteral("Begun")));
    QVERIFY(daemon() != 0);
    QCOMPARE(kill(pid_t(daemon()), SIGKILL), 0);
    QVERIFY(awaitOutput(QStringLiteral("\nThe daemon was ended by the signal SIGKILL (killed).\n")));
    QVERIFY(awaitOutput(panelLine));
    QVERIFY(awaitOutput(QStringLiteral("\n> ")));
    QVERIFY(answers());
    type("quit\n");
    QVERIFY(expectStatus(1));
}

void SimulatorProgramTest::anEarlyEndOfTheDaemonIsReported()
{
    QCOMPARE(run({"--serve", "--no-demo", "--port", "0", "--daemon", "/bin/false"}), 2);
    QVERIFY2(m_output.endsWith(QStringLiteral("The daemon has ended with status 1.\n")),
             qPrintable(m_output));
    QVERIFY(!m_output.contains(panelLine));
}

void SimulatorProgramTest::atATerminalTheDeviceKeepsRunning_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QByteArray>("typed");
    QTest::addColumn<int>("status");
    const QByteArray endOfInput(1, '\x04');
    QTest::newRow("as expected") << QByteArray("wait 0\n") << QByteArray("quit\n") << 0;
    QTest::newRow("not as expected") << QByteArray("expect 0 cancel\n") << QByteArray("quit\n") << 1;
    QTest::newRow("end of input") << QByteArray("wait 0\n") << endOfInput << 0;
}

void SimulatorProgramTest::atATerminalTheDeviceKeepsRunning()
{
    QFETCH(QByteArray, script);
    QFETCH(QByteArray, typed);
    QFETCH(int, status);
    m_input = openTerminal();
    start({"--port", "0", write(script)});
    QVERIFY(awaitOutput(panelLine));
    QVERIFY(awaitOutput(QStringLiteral("\n> ")));
    QCOMPARE(m_program->state(), QProcess::Running);
    type(typed);
    QVERIFY(expectStatus(status));
}

void SimulatorProgramTest::typedStatementsAreExecuted()
{
    m_input = openTerminal();
    start({"--no-demo", "--port", "0"});
    QVERIFY(awaitOutput(QStringLiteral("\n> ")));
    type("state Print; wait 100; tap Up\n");
    QVERIFY(awaitOutput(QStringLiteral("announced  SingleKey Up  to PrintManager, no sender\n> ")));
    type("jump\n");
    QVERIFY(awaitOutput(QStringLiteral("\"jump\" is not a keyword of a key script.\n> ")));
    type("exit\n");
    QVERIFY(expectStatus(0));
}

void SimulatorProgramTest::thePromptListsTheStatements_data()
{
    QTest::addColumn<QByteArray>("question");
    QTest::newRow("help") << QByteArray("help\n");
    QTest::newRow("question mark") << QByteArray(" ?\n");
}

void SimulatorProgramTest::thePromptListsTheStatements()
{
    QFETCH(QByteArray, question);
    m_input = openTerminal();
    start({"--no-demo", "--port", "0"});
    QVERIFY(awaitOutput(QStringLiteral("\n> ")));
    type(question);
    QVERIFY(awaitOutput(QStringLiteral("\nSeparate several statements on a line with \";\".\n> ")));
    QVERIFY2(m_output.contains("  hold KEY MS "), qPrintable(m_output));
    QVERIFY2(!m_output.contains("keyword"), qPrintable(m_output));
    type("quit\n");
    QVERIFY(expectStatus(0));
}

void SimulatorProgramTest::theModelCanBeChosen_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("model");
    QTest::newRow("that of the demonstration") << QStringList() << "Orvane";
    QTest::newRow("another one") << QStringList({"--model", "Pellit"}) << "Pellit";
}

void SimulatorProgramTest::theModelCanBeChosen()
{
    QFETCH(QStringList, options);
    QFETCH(QString, model);
    m_input = openTerminal();
    start(QStringList({"--no-demo", "--port", "0"}) + options);
    QVERIFY(awaitOutput(QStringLiteral("An embosser of the model %1, in the state Idle.\n").arg(model)));
    QVERIFY(awaitOutput(QStringLiteral("\n> ")));
    type("tap Function\n");
    QVERIFY(awaitOutput(QStringLiteral("announced  SingleKey Function  to UserMenu")));
    QCOMPARE(m_output.contains("(EmbosserCore 30)"), model == "Orvane");
    type("quit\n");
    QVERIFY(expectStatus(0));
}

void SimulatorProgramTest::theScriptsDeviceIsKept()
{
    m_input = openTerminal();
    start({"--port", "0", write("model Orvane\nstate Print\nrow long Test UserMenu Idle 0 Up\nwait 100\n")});
    QVERIFY(awaitOutput(QStringLiteral("\n> ")));
    type("tap Function; wait 100; command GetLongKeysTimeout\n");
    QVERIFY(awaitOutput(QStringLiteral("announced  SingleKey Function  to PrintManager")));
    QVERIFY(awaitOutput(QStringLiteral("keyTimeouts={\"Up\":0}")));
    QCOMPARE(m_output.count("An embosser of the model"), 1);
    type("quit\n");
    QVERIFY(expectStatus(0));
}

void SimulatorProgramTest::thePrintedBusCommandWorks()
{
    m_input = openTerminal();
    start({"--no-demo", "--port", "0"});
    QVERIFY(awaitOutput(QStringLiteral("\n> ")));
    type("tap Menu\n");
    QVERIFY(awaitOutput(QStringLiteral("announced  SingleKey Menu")));
    const QString begin = QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS=");
    const QString line = begin + m_output.section(begin, 1).section('\n', 0, 0);
    QProcess shell;
    shell.start("sh", {"-c", line});
    QVERIFY(shell.waitForFinished(-1));
    QCOMPARE(shell.readAllStandardOutput(),
             QByteArray("a{sv} 3 \"errorId\" s \"Undefined\" \"key\" i 139 \"resultId\" s \"Success\"\n"));
    type("quit\n");
    QVERIFY(expectStatus(0));
}

/// The daemon's log says nothing of them.
void SimulatorProgramTest::mistakesInTheKeyListsAreReported()
{
    QFile file(m_folder->filePath(QStringLiteral("longKeyList.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(R"({ "LongKeys": [
        { "keys": ["Off"], "eAction": "PowerOff", "receiverService": "UserMenue", "timeOut": 3, "validOnState": "Idle" },
        { "keys": ["Up"], "eaction": "A", "recieverService": "UserMenu", "timeout": 3000, "validOnState": "Idle" } ] })");
    file.close();
    QCOMPARE(run({"--data", m_folder->path(), write("wait 0\n")}), 0);
    for (const QString& mistake : {QStringLiteral("\nFindings of keyboard-handler-keys check:\n"),
                                   QStringLiteral("error[unknown-service]: \"UserMenue\" is not a service"),
                                   QStringLiteral("error[member]: \"timeOut\" is ignored"),
                                   QStringLiteral("error[member]: \"eaction\" is ignored"),
                                   QStringLiteral("error[member]: \"recieverService\" is ignored"),
                                   QStringLiteral("warning[long-hold]: the key must be held for 3000 s"),
                                   QStringLiteral("--> longKeyList.json:2:")}) {
        QVERIFY2(m_output.contains(mistake), qPrintable(m_output));
    }
    QCOMPARE(run({write("row modifier A UserMenu Idle Up Ok\nrow modifier B UserMenu Idle Up Ok\nwait 0\n")}),
             0);
    QVERIFY2(m_output.contains("warning[same-keys]: row 1 has the same keys"), qPrintable(m_output));
    QCOMPARE(run({write("wait 0\n")}), 0);
    QVERIFY2(!m_output.contains("Findings"), qPrintable(m_output));
}

void SimulatorProgramTest::servicesFailAndRecover()
{
    const QByteArray script = "service speechd stop\n"
                              "tap Up\n"
                              "wait 2000\n"
                              "expect 1550 announce SingleKey UserMenu - Up\n"
                              "service speechd silent\n"
                              "tap Down\n"
                              "wait 2000\n"
                              "expect 3600 announce SingleKey UserMenu KeyboardHandler Down\n"
                              "service speechd start\n"
                              "service state-handler stop\n"
                              "state Print\n"
                              "wait 100\n"
                              "tap Ok\n"
                              "expect +0 speak EmbosserCore 26\n"
                              "wait 2000\n"
                              "expect 5700 announce SingleKey UserMenu KeyboardHandler Ok\n"
                              "service state-handler start\n"
                              "state Error\n"
                              "wait 500\n"
                              "tap One\n"
                              "expect +0 announce SingleKey ErrorHandler KeyboardHandler One\n";
    QVERIFY2(run({write("wait 0\n" + script)}) == 0, qPrintable(m_output));
    QVERIFY2(m_output.contains(" s  service    state-handler stop\n"), qPrintable(m_output));
}

void SimulatorProgramTest::theDaemonStartsWithoutItsServices_data()
{
    QTest::addColumn<QByteArray>("condition");
    QTest::addColumn<QString>("reason");
    QTest::newRow("stopped") << QByteArray("stop") << "org.freedesktop.DBus.Error.NameHasNoOwner";
    QTest::newRow("silent") << QByteArray("silent") << "org.freedesktop.DBus.Error.NoReply";
}

void SimulatorProgramTest::theDaemonStartsWithoutItsServices()
{
    QFETCH(QByteArray, condition);
    QFETCH(QString, reason);
    QVERIFY2(run({write("service state-handler " + condition +
                        "\nservice speechd stop\nwait 100\ntap Up\n"
                        "expect +0 announce SingleKey UserMenu - Up\n")}) == 0,
             qPrintable(m_output));
    QVERIFY2(m_output.contains("gave no answer: \"" + reason), qPrintable(m_output));
    QVERIFY2(m_output.contains("StateHandler::getState ERROR: invalid result!"), qPrintable(m_output));
}

void SimulatorProgramTest::onlyTheForegroundProcessReadsTheTerminal()
{
    m_input = openTerminal();
    startInBackgroundOfTerminal({"--no-demo", "--port", "0"});
    QVERIFY(awaitOutput(QStringLiteral("\n> ")));
    type("quit\n");
    // Long enough for a second check of the terminal.
    QVERIFY(!m_program->waitForFinished(1500));
    QVERIFY(answers());
    QCOMPARE(kill(pid_t(m_program->processId()), SIGUSR1), 0);
    QVERIFY(expectStatus(0));
}

QTEST_GUILESS_MAIN(SimulatorProgramTest)
#include "SimulatorProgramTest.moc"
