// SPDX-License-Identifier: MIT
#include "simulator/script/KeyScript.h"

#include <QDir>
#include <QProcess>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

namespace {

constexpr int patienceMs = 30'000;
constexpr int answerPatienceMs = 5000;
const QString panelLine = QStringLiteral("\nThe front panel: http://127.0.0.1:");

bool mentions(const QString& file, const QString& text)
{
    QFile source(file);
    return source.open(QIODevice::ReadOnly) && source.readAll().contains(text.toUtf8());
}

/// The processes that were started with files in `folder`, or see files of it in places of their own.
int processesIn(const QString& folder)
{
    int count = 0;
    const QStringList processes =
        QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")}, QDir::Dirs);
    for (const QString& process : processes) {
        const QString path = QStringLiteral("/proc/%1/").arg(process);
        if (mentions(path + QStringLiteral("cmdline"), folder) ||
            mentions(path + QStringLiteral("mountinfo"), folder)) {
            ++count;
        }
    }
    return count;
}

} // namespace

/// `keyboard-handler-simulator`, run with a folder of its own for temporary files.
class SimulatorProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aScriptThatComesTrueSucceeds();
    void aScriptThatDoesNotComeTrueFails_data();
    void aScriptThatDoesNotComeTrueFails();
    void aFaultyScriptIsExplained();
    void aDaemonThatEndsIsTold();
    void aRecordingComesTrueAgain();
    void aSignalCleansUp_data();
    void aSignalCleansUp();
    void evenKilledItLeavesNothingRunning();
    void wrongArgumentsAreExplained_data();
    void wrongArgumentsAreExplained();
    void aServedDeviceStaysUntilASignal_data() { aSignalCleansUp_data(); }
    void aServedDeviceStaysUntilASignal();
    void clientsOfThePanelHoldNothingUp();
    void aPortInUseIsTold();
    void aCrashDoesNotEndAServedDevice();
    void aCrashDuringTheScriptIsTold();
    void aDaemonThatEndsBeforeItIsServedIsTold();
    void atATerminalTheDeviceStays_data();
    void atATerminalTheDeviceStays();
    void whatIsTypedAtTheTerminalIsDone();
    void whatIsTypedIsForTheForeground();

private:
    QString write(const QByteArray& script);
    void start(const QStringList& arguments);
    int run(const QStringList& arguments);
    bool awaitOutput(const QString& text);
    bool expectStatus(int status);
    void type(const QByteArray& line);
    QByteArray openTerminal();
    void startInBackground(const QStringList& arguments);
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
    if (!m_program->waitForFinished(patienceMs) || m_program->exitStatus() != QProcess::NormalExit) {
        return -1;
    }
    m_output = QString::fromUtf8(m_program->readAll());
    return m_program->exitCode();
}

bool SimulatorProgramTest::awaitOutput(const QString& text)
{
    return QTest::qWaitFor(
        [&] { return m_output.append(QString::fromUtf8(m_program->readAll())).contains(text); }, patienceMs);
}

bool SimulatorProgramTest::expectStatus(int status)
{
    return m_program->waitForFinished(patienceMs) && m_program->exitStatus() == QProcess::NormalExit &&
           m_program->exitCode() == status;
}

QByteArray SimulatorProgramTest::openTerminal()
{
    m_terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    const bool isOpen = m_terminal != -1 && grantpt(m_terminal) == 0 && unlockpt(m_terminal) == 0;
    return isOpen ? QByteArray(ptsname(m_terminal)) : QByteArray();
}

/// From a shell that has the terminal and fetches the program into the foreground when it gets SIGUSR1.
void SimulatorProgramTest::startInBackground(const QStringList& arguments)
{
    m_program = std::make_unique<QProcess>();
    m_program->setProcessChannelMode(QProcess::MergedChannels);
    m_program->setStandardInputFile(QString::fromLocal8Bit(m_input));
    m_program->start("setsid",
                     QStringList{"--ctty", "sh", "-c", "set -m; trap : USR1; \"$0\" \"$@\" & wait; fg",
                                 QStringLiteral(SIMULATOR)} +
                         arguments);
}

/// Whether the page is served.
bool SimulatorProgramTest::answers()
{
    QTcpSocket client;
    client.connectToHost(QStringLiteral("127.0.0.1"),
                         m_output.section(panelLine, 1).section('/', 0, 0).toUShort());
    client.write("GET / HTTP/1.0\r\nHost: 127.0.0.1\r\n\r\n");
    return client.waitForConnected(patienceMs) && client.waitForReadyRead(answerPatienceMs);
}

void SimulatorProgramTest::type(const QByteArray& line)
{
    QCOMPARE(::write(m_terminal, line.constData(), size_t(line.size())), ssize_t(line.size()));
}

/// The daemon is the process that has the device's folder of services as its own.
qint64 SimulatorProgramTest::daemon() const
{
    const QStringList processes =
        QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")}, QDir::Dirs);
    for (const QString& process : processes) {
        const QString path = QStringLiteral("/proc/%1/").arg(process);
        if (mentions(path + "mountinfo", m_folder->path()) && !mentions(path + "cmdline", "bwrap")) {
            return process.toLongLong();
        }
    }
    return 0;
}

void SimulatorProgramTest::aScriptThatComesTrueSucceeds()
{
    QCOMPARE(run({write("## A key\ntap Menu\nexpect +0 announce SingleKey UserMenu - Menu\n")}), 0);
    QVERIFY2(m_output.contains(QStringLiteral("\nA key\n")), qPrintable(m_output));
    QVERIFY2(m_output.contains(QStringLiteral(" s  announced  SingleKey Menu  to UserMenu, no sender\n")),
             qPrintable(m_output));
    QVERIFY2(
        m_output.endsWith(QStringLiteral("\nAll 1 expectations came true, and nothing else happened.\n")),
        qPrintable(m_output));
}

void SimulatorProgramTest::aScriptThatDoesNotComeTrueFails_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("line");
    QTest::newRow("something is missing") << QByteArray("expect 10 cancel\n") << "missing     10 ms: cancel";
    QTest::newRow("something is too much")
        << QByteArray("state Startup\npress Up\nexpect 0 speak EmbosserError 69\n") << "ms: cancel";
}

void SimulatorProgramTest::aScriptThatDoesNotComeTrueFails()
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
    QCOMPARE(m_output, path + QStringLiteral(":2: \"a while\" is no time from 0 to 86400000 ms.\n"));
}

void SimulatorProgramTest::aDaemonThatEndsIsTold()
{
    QCOMPARE(run({QStringLiteral("--daemon"), QStringLiteral("/bin/false"), write("wait 20000\n")}), 2);
    QVERIFY2(m_output.endsWith(QStringLiteral("The daemon has ended with status 1.\n")),
             qPrintable(m_output));
}

void SimulatorProgramTest::aRecordingComesTrueAgain()
{
    // A busy machine can hold a play up for longer than a recording allows, but not each time.
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
    QTRY_VERIFY(m_output.append(QString::fromUtf8(m_program->readAll())).contains(QStringLiteral("Begun")));
    QVERIFY(processesIn(m_folder->path()) >= 3);
    QCOMPARE(kill(pid_t(m_program->processId()), signal), 0);
    QVERIFY(m_program->waitForFinished(patienceMs));
    QCOMPARE(m_program->exitCode(), 128 + signal);
    QCOMPARE(processesIn(m_folder->path()), 0);
    QCOMPARE(
        QDir(m_folder->filePath(QStringLiteral("tmp"))).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
        QStringList());
}

void SimulatorProgramTest::evenKilledItLeavesNothingRunning()
{
    start({write("## Begun\nwait 20000\n")});
    QTRY_VERIFY(m_output.append(QString::fromUtf8(m_program->readAll())).contains(QStringLiteral("Begun")));
    QVERIFY(processesIn(m_folder->path()) >= 3);
    m_program->kill();
    QVERIFY(m_program->waitForFinished(patienceMs));
    QTRY_COMPARE(processesIn(m_folder->path()), 0);
}

void SimulatorProgramTest::wrongArgumentsAreExplained_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("sentence");
    const QString nothing = QStringLiteral("There is nothing to do: name a key script, or add --serve.\n");
    QTest::newRow("nothing to do") << QStringList("--no-demo") << nothing;
    QTest::newRow("a word as port") << QStringList({"--serve", "--port", "moo"})
                                    << "\"moo\" is no port number.\n";
    QTest::newRow("a port too high") << QStringList({"--serve", "--port", "65536"})
                                     << "\"65536\" is no port number.\n";
    QTest::newRow("a port and a blank")
        << QStringList({"--serve", "--port", "80 "}) << "\"80 \" is no port number.\n";
    QTest::newRow("a port with a sign")
        << QStringList({"--serve", "--port", "+80"}) << "\"+80\" is no port number.\n";
    QTest::newRow("an empty port") << QStringList({"--serve", "--port", ""}) << "\"\" is no port number.\n";
}

void SimulatorProgramTest::wrongArgumentsAreExplained()
{
    QFETCH(QStringList, arguments);
    QCOMPARE(run(arguments), 2);
    QTEST(m_output, "sentence");
}

void SimulatorProgramTest::aServedDeviceStaysUntilASignal()
{
    QFETCH(int, signal);
    start({"--serve", "--port", "0", write("tap Menu\nexpect +0 announce SingleKey UserMenu - Menu\n")});
    QVERIFY(awaitOutput(panelLine));
    QVERIFY(m_output.contains(QStringLiteral("\nAll 1 expectations came true")));
    QVERIFY(processesIn(m_folder->path()) >= 3);
    QCOMPARE(kill(pid_t(m_program->processId()), signal), 0);
    QVERIFY(expectStatus(128 + signal));
    QCOMPARE(processesIn(m_folder->path()), 0);
    QVERIFY(QDir(m_folder->filePath(QStringLiteral("tmp"))).isEmpty());
}

void SimulatorProgramTest::clientsOfThePanelHoldNothingUp()
{
    start({"--serve", "--no-demo", "--port", "0"});
    QVERIFY(awaitOutput(panelLine));
    const QString port = m_output.section(panelLine, 1).section('/', 0, 0);
    QTcpSocket silent;
    QTcpSocket slow;
    QTcpSocket stream;
    for (QTcpSocket* client : {&silent, &slow, &stream}) {
        client->connectToHost(QStringLiteral("127.0.0.1"), port.toUShort());
        QVERIFY(client->waitForConnected(patienceMs));
    }
    slow.write("GET / HT");
    stream.write("GET /api/events HTTP/1.1\r\nHost: 127.0.0.1:" + port.toLatin1() + "\r\n\r\n");
    QTRY_VERIFY(stream.peek(stream.bytesAvailable()).contains("event: snapshot"));
    QCOMPARE(kill(pid_t(m_program->processId()), SIGINT), 0);
    QVERIFY(expectStatus(128 + SIGINT));
    QCOMPARE(processesIn(m_folder->path()), 0);
    QVERIFY(QDir(m_folder->filePath(QStringLiteral("tmp"))).isEmpty());
    for (const QTcpSocket* client : {&silent, &slow, &stream}) {
        QTRY_COMPARE(client->state(), QAbstractSocket::UnconnectedState);
    }
}

void SimulatorProgramTest::aPortInUseIsTold()
{
    start({"--serve", "--no-demo", "--port", "0"});
    QVERIFY(awaitOutput(panelLine));
    const QString port = m_output.section(panelLine, 1).section('/', 0, 0);
    const std::unique_ptr<QProcess> first = std::move(m_program);
    QCOMPARE(run({"--serve", "--no-demo", "--port", port}), 2);
    QVERIFY2(m_output.contains(port) && m_output.endsWith(".\n"), qPrintable(m_output));
    QCOMPARE(first->state(), QProcess::Running);
    first->terminate();
    QVERIFY(first->waitForFinished(patienceMs));
}

void SimulatorProgramTest::aCrashDoesNotEndAServedDevice()
{
    start({"--serve", "--no-demo", "--port", "0"});
    QVERIFY(awaitOutput(panelLine));
    QVERIFY(daemon() != 0);
    QCOMPARE(kill(pid_t(daemon()), SIGKILL), 0);
    QVERIFY(awaitOutput(QStringLiteral("\nThe daemon has ended with status 137.\n")));
    QVERIFY(!m_program->waitForFinished(500));
    QCOMPARE(kill(pid_t(m_program->processId()), SIGINT), 0);
    QVERIFY(expectStatus(128 + SIGINT));
}

void SimulatorProgramTest::aCrashDuringTheScriptIsTold()
{
    m_input = openTerminal();
    start({"--port", "0", write("## Begun\nwait 20000\n")});
    QVERIFY(awaitOutput(QStringLiteral("Begun")));
    QVERIFY(daemon() != 0);
    QCOMPARE(kill(pid_t(daemon()), SIGKILL), 0);
    QVERIFY(awaitOutput(QStringLiteral("\nThe daemon has ended with status 137.\n")));
    QVERIFY(awaitOutput(panelLine));
    QVERIFY(awaitOutput(QStringLiteral("\n> ")));
    QVERIFY(answers());
    type("quit\n");
    QVERIFY(expectStatus(1));
}

void SimulatorProgramTest::aDaemonThatEndsBeforeItIsServedIsTold()
{
    QCOMPARE(run({"--serve", "--no-demo", "--port", "0", "--daemon", "/bin/false"}), 2);
    QVERIFY2(m_output.endsWith(QStringLiteral("The daemon has ended with status 1.\n")),
             qPrintable(m_output));
    QVERIFY(!m_output.contains(panelLine));
}

void SimulatorProgramTest::atATerminalTheDeviceStays_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QByteArray>("typed");
    QTest::addColumn<int>("status");
    const QByteArray endOfInput(1, '\x04');
    QTest::newRow("as expected") << QByteArray("wait 0\n") << QByteArray("quit\n") << 0;
    QTest::newRow("not as expected") << QByteArray("expect 0 cancel\n") << QByteArray("quit\n") << 1;
    QTest::newRow("end of input") << QByteArray("wait 0\n") << endOfInput << 0;
}

void SimulatorProgramTest::atATerminalTheDeviceStays()
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

void SimulatorProgramTest::whatIsTypedAtTheTerminalIsDone()
{
    m_input = openTerminal();
    start({"--no-demo", "--port", "0"});
    QVERIFY(awaitOutput(QStringLiteral("\n> ")));
    type("state Print; wait 100; tap Up\n");
    QVERIFY(awaitOutput(QStringLiteral("announced  SingleKey Up  to PrintManager, no sender\n> ")));
    type("jump\n");
    QVERIFY(awaitOutput(QStringLiteral("\"jump\" is no keyword of a key script.\n> ")));
    type("quit\n");
    QVERIFY(expectStatus(0));
}

void SimulatorProgramTest::whatIsTypedIsForTheForeground()
{
    m_input = openTerminal();
    startInBackground({"--no-demo", "--port", "0"});
    QVERIFY(awaitOutput(QStringLiteral("\n> ")));
    type("quit\n");
    // Long enough for a second look at the terminal.
    QVERIFY(!m_program->waitForFinished(1500));
    QVERIFY(answers());
    QCOMPARE(kill(pid_t(m_program->processId()), SIGUSR1), 0);
    QVERIFY(expectStatus(0));
}

QTEST_GUILESS_MAIN(SimulatorProgramTest)
#include "SimulatorProgramTest.moc"
