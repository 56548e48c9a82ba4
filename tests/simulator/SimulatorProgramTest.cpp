// SPDX-License-Identifier: MIT
#include "simulator/script/KeyScript.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <signal.h>

namespace {

constexpr int patienceMs = 30'000;

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

private:
    QString write(const QByteArray& script);
    void start(const QStringList& arguments);
    int run(const QStringList& arguments);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<QProcess> m_program;
    QString m_output;
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
    m_program->setStandardInputFile(QProcess::nullDevice());
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
    const QString recording = m_folder->filePath(QStringLiteral("recording.keys"));
    QCOMPARE(run({QStringLiteral("--record"), recording,
                  write("state Print\ntap Up\nwait 300\ncommand GetLastKey\n")}),
             1);
    const ParsedScript parsed = loadKeyScript(recording);
    QVERIFY(parsed.faults.isEmpty());
    QCOMPARE(parsed.script.steps.size(), 3);
    QCOMPARE(parsed.script.expectations.size(), 2);
    QCOMPARE(run({recording}), 0);
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

QTEST_GUILESS_MAIN(SimulatorProgramTest)
#include "SimulatorProgramTest.moc"
