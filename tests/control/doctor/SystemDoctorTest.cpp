// SPDX-License-Identifier: MIT
#include "simulator/device/ChildProcess.h"
#include "tests/delivery/documents/FencedBlocks.h"
#include "tests/support/Waiting.h"
#include "tests/whole/system/SystemTest.h"

#include <ls/BusNames.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <csignal>
#include <functional>

#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace {

const QString combinations = QStringLiteral("modifierKeyList.json");
const QString registered = QStringLiteral("Successfully registered on DBus: \"com.vantre.KeyboardHandler\"");

/// Without process ids and times, which vary.
QString comparable(QString text)
{
    static const QRegularExpression time(QStringLiteral("\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d"));
    static const QRegularExpression process(QStringLiteral("(process(?:es)?|and|-CONT) \\d+"));
    return text.replace(time, QStringLiteral("TIME")).replace(process, QStringLiteral("\\1 N"));
}

} // namespace

/// `keyboard-handlerctl doctor` on the simulated device, in the daemon's view of the file system.
class SystemDoctorTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void aHealthyDeviceHasNoFailure();
    void theNextAnnouncementNamesTheFormerSender();
    void theMainThreadAnswers();
    void aNodeThatWasPluggedInAgainIsRecognised();
    void hostileTextsAreHarmless();
    void anotherPrefixHasNoDaemon();
    void aRestartedBusIsRecognised();
    void aBusThatHangsIsRecognised();
    void faultsOfTheDocumentAreNamed_data();
    void faultsOfTheDocumentAreNamed();
    void monitorShowsWhatTheDocumentShows();
    void everyFaultOfTheDocumentIsTested();

private:
    void startInView(QProcess& process, const QStringList& arguments);
    QString doctor(const QStringList& arguments = {});
    void changeList(const QByteArray& content);
    using Step = std::function<bool()>;
    QVector<QPair<QString, Step>> faultsOfTheDocument();

    int m_status = -1;
    std::unique_ptr<DaemonProcess> m_second;
};

/// Starts the program in the daemon's view of the file system.
void SystemDoctorTest::startInView(QProcess& process, const QStringList& arguments)
{
    const DeviceFolder& folder = device().folder();
    QFile groups(folder.runFolder() + QStringLiteral("/group"));
    groups.open(QIODevice::WriteOnly);
    groups.write("root:x:0:\nembosser-services:x:990:\n");
    groups.close();
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.remove(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"));
    if (!device().bus().address().isEmpty()) {
        variables.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), device().bus().address());
    }
    process.setProcessEnvironment(variables);
    process.start(QStringLiteral("bwrap"), QStringList{"--die-with-parent",
                                                       "--ro-bind",
                                                       "/",
                                                       "/",
                                                       "--dev",
                                                       "/dev",
                                                       "--bind",
                                                       folder.inputFolder(),
                                                       "/dev/input",
                                                       "--bind",
                                                       folder.libraryFolder(),
                                                       "/var/lib",
                                                       "--bind",
                                                       folder.runFolder(),
                                                       "/run",
                                                       "--ro-bind",
                                                       groups.fileName(),
                                                       "/etc/group",
                                                       "--",
                                                       KEYBOARD_HANDLERCTL} +
                                               arguments);
}

QString SystemDoctorTest::doctor(const QStringList& arguments)
{
    ChildProcess process;
    startInView(process, QStringList{QStringLiteral("doctor")} + arguments);
    WAIT_FOR_EQUAL(process.state(), QProcess::NotRunning);
    m_status = process.exitCode();
    const QString complaints = QString::fromUtf8(process.readAllStandardError());
    if (!complaints.isEmpty()) {
        qWarning().noquote() << complaints;
    }
    return QString::fromUtf8(process.readAllStandardOutput());
}

/// Replaces the list until the file system records a later time than that of the readiness.
void SystemDoctorTest::changeList(const QByteArray& content)
{
    const QDateTime ready =
        QFileInfo(device().folder().runFolder() + QStringLiteral("/service-watcher/keyboard-handler"))
            .lastModified();
    const QString path = device().folder().keyList(combinations);
    const auto write = [&] {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
    };
    WAIT_FOR(write() && QFileInfo(path).metadataChangeTime() > ready);
}

void SystemDoctorTest::aHealthyDeviceHasNoFailure()
{
    QVERIFY(launch());
    const QString output = doctor();
    QVERIFY2(!output.startsWith("failure:") && !output.contains("\nfailure:"), qPrintable(output));
    for (const char* expected :
         {"ok: bus: The system bus answers.",
          "ok: unit: This system does not run systemd, so there is no unit.",
          "ok: process: One daemon runs, the process N.", "ok: ready: The daemon has declared itself ready.",
          "ok: name: The process N has the name com.vantre.KeyboardHandler.",
          "ok: answer: The daemon answers.", "ok: nodes: The daemon has /dev/input/event0 open.",
          "ok: nodes: The daemon has /dev/input/event1 open.",
          "unknown: autorepeat: /dev/input/event0 is a FIFO, as on a simulated device, and does not say what "
          "it can "
          "do.",
          "ok: lists: No list was changed since the daemon started.",
          "ok: rows: Keys announce each of the 17 rows on the disk.",
          "ok: speech: The speech daemon is on the bus.",
          "ok: state: The state handler reports Idle, in which all gestures work."}) {
        QVERIFY2(comparable(output).contains(QLatin1String(expected) + '\n'), qPrintable(output));
    }
    QCOMPARE(m_status, 8); // the receivers are not simulated
}

void SystemDoctorTest::theNextAnnouncementNamesTheFormerSender()
{
    QVERIFY(launch());
    device().request(
        {{ls::commandIdKey, ls::KeyboardHandlerCmdId::GetLastKey}, {ls::senderIdKey, ls::ServiceId::WwwApi}});
    QVERIFY(doctor().contains(QLatin1String("ok: answer:")));
    QVERIFY(nextKeyWorks());
    QVERIFY(actions().contains(QStringLiteral("announce SingleKey UserMenu WwwApi Menu")));
}

/// A daemon whose other threads run, and whose main thread does not, gives no answer.
void SystemDoctorTest::theMainThreadAnswers()
{
    QVERIFY(launch());
    const auto process = static_cast<pid_t>(device().daemon().processId());
    QCOMPARE(::ptrace(PTRACE_SEIZE, process, nullptr, nullptr), 0L);
    QCOMPARE(::ptrace(PTRACE_INTERRUPT, process, nullptr, nullptr), 0L);
    int status = 0;
    QCOMPARE(::waitpid(process, &status, __WALL), process);
    const QString output = doctor();
    QCOMPARE(::ptrace(PTRACE_DETACH, process, nullptr, nullptr), 0L);
    QVERIFY2(
        output.contains(QLatin1String("\nfailure: answer: The daemon has its name, but does not answer")),
        qPrintable(output));
    QVERIFY(doctor().contains(QLatin1String("\nok: answer: The daemon answers.\n")));
}

void SystemDoctorTest::aNodeThatWasPluggedInAgainIsRecognised()
{
    QVERIFY(launch());
    const QString node = device().folder().keyboardFile(1);
    QVERIFY(QFile::remove(node));
    QCOMPARE(mkfifo(QFile::encodeName(node).constData(), S_IRUSR | S_IWUSR), 0);
    const QString output = doctor();
    QVERIFY2(
        output.contains(QLatin1String("\nfailure: nodes: The daemon has a former /dev/input/event1 open")),
        qPrintable(output));
    QCOMPARE(m_status, 1);
}

void SystemDoctorTest::hostileTextsAreHarmless()
{
    options.keyLists.insert(combinations,
                            R"({"ModifierKeys": [{"keys": ["Help", "Up"], "eAction": "\n\ud800", )"
                            R"("receiverService": "\u001b]0;red\u0007\u202e", "validOnState": "Idle"}]})");
    QVERIFY(launch());
    const QString text = doctor();
    QVERIFY2(text.contains(QLatin1String("\\u001b]0;red\\u0007\\u202e")), qPrintable(text));
    for (const char* raw : {"\x1b", "\x07", "\xe2\x80\xae"}) {
        QVERIFY(!text.contains(QString::fromUtf8(raw)));
    }
    const QByteArray json = doctor({QStringLiteral("--json")}).toUtf8();
    QCOMPARE(json.count('\n'), 1);
    QJsonParseError error{};
    const QJsonObject object = QJsonDocument::fromJson(json, &error).object();
    QCOMPARE(error.error, QJsonParseError::NoError);
    QVERIFY(object.value("checks").toArray().size() > 14);
}

void SystemDoctorTest::anotherPrefixHasNoDaemon()
{
    QVERIFY(launch());
    const QString output = doctor({QStringLiteral("--prefix"), QStringLiteral("org.example")});
    QVERIFY2(output.contains(QLatin1String(
                 "\nfailure: name: No daemon has the name org.example.KeyboardHandler, but there is one with "
                 "another "
                 "prefix: com.vantre.\n    remedy: keyboard-handlerctl doctor --prefix com.vantre\n")),
             qPrintable(output));
}

void SystemDoctorTest::aRestartedBusIsRecognised()
{
    QVERIFY(launch());
    QVERIFY(device().restartBus());
    const QString output = doctor();
    QVERIFY2(
        output.contains(QLatin1String(
            "\nfailure: name: The daemon runs, but the name com.vantre.KeyboardHandler is not on the bus")),
        qPrintable(output));
}

void SystemDoctorTest::aBusThatHangsIsRecognised()
{
    QVERIFY(prepare());
    const auto bus = static_cast<pid_t>(device().bus().processId());
    QCOMPARE(kill(bus, SIGSTOP), 0);
    const QString output = doctor();
    QCOMPARE(kill(bus, SIGCONT), 0);
    QVERIFY2(output.contains(
                 QLatin1String(" accepts clients, but does not respond: the bus hangs), so keys are ")),
             qPrintable(output));
}

/// The faults of the document that a simulated device can have.
QVector<QPair<QString, SystemDoctorTest::Step>> SystemDoctorTest::faultsOfTheDocument()
{
    return {
        {"printing", [this] { return options.state = ls::StateId::Print, launch(); }},
        {"absent-state-handler", [this] { return options.stateHandler = false, launch(); }},
        {"waiting-daemon",
         [this] {
             options.dependenciesReady = false;
             return prepare() && (device().declareReady(QStringLiteral("speechd")), device().startDaemon());
         }},
        {"stopped-process",
         [this] {
             return launch() && kill(static_cast<pid_t>(device().daemon().processId()), SIGSTOP) == 0;
         }},
        {"two-daemons",
         [this] {
             QStringList lines;
             m_second = std::make_unique<DaemonProcess>();
             connect(m_second.get(), &DaemonProcess::logLine, this,
                     [&](const QString& line) { lines << line; });
             if (!launch() || !m_second->start(device().folder(), options).isEmpty()) {
                 return false;
             }
             WAIT_FOR(!lines.filter(QStringLiteral("Unable to register Service")).isEmpty());
             disconnect(m_second.get(), nullptr, this, nullptr);
             return true;
         }},
        {"changed-list", [this] { return launch() && (changeList("{\"ModifierKeys\": []}"), true); }},
        {"lost-comma",
         [this] {
             options.keyLists.insert(combinations, "{\n    \"ModifierKeys\": [\n"
                                                   "        { \"keys\": [\"Help\", \"Feed\"] }\n"
                                                   "        { \"keys\": [\"Help\", \"Up\"] }\n    ]\n}\n");
             return launch();
         }},
        {"missing-node", [this] { return options.keyboards[1] = false, launch(); }},
        {"absent-bus", [this] { return options.bus = false, launch(); }},
        {"absent-speech", [this] { return options.speechDaemon = false, launch(); }},
    };
}

void SystemDoctorTest::faultsOfTheDocumentAreNamed_data()
{
    QTest::addColumn<QString>("name");
    const auto faults = faultsOfTheDocument();
    for (const auto& fault : faults) {
        QTest::newRow(qPrintable(fault.first)) << fault.first;
    }
}

void SystemDoctorTest::faultsOfTheDocumentAreNamed()
{
    QFETCH(QString, name);
    const auto faults = faultsOfTheDocument();
    const auto isNamed = [&name](const QPair<QString, Step>& fault) { return fault.first == name; };
    QVERIFY(std::find_if(faults.begin(), faults.end(), isNamed)->second());
    const QString output = doctor();
    if (m_second) {
        m_second->stop();
        m_second.reset();
    }
    if (device().daemon().processId() != 0) {
        kill(static_cast<pid_t>(device().daemon().processId()), SIGCONT);
    }
    const QString shown =
        FencedBlocks(QStringLiteral("key-does-nothing.md")).text(QStringLiteral("text"), name);
    QVERIFY2(!shown.isEmpty() && comparable(output).contains(comparable(shown)), qPrintable('\n' + output));
}

void SystemDoctorTest::monitorShowsWhatTheDocumentShows()
{
    static const QRegularExpression time(QStringLiteral("\\d\\d:\\d\\d:\\d\\d\\.\\d{3}"));
    options.state = ls::StateId::Print;
    QVERIFY(launch());
    ChildProcess process;
    QString output;
    connect(&process, &QProcess::readyRead, this, [&] { output += QString::fromUtf8(process.readAll()); });
    startInView(process, QStringList{QStringLiteral("monitor")});
    WAIT_FOR(output.contains(QLatin1String("the state is")));
    tap(ls::KeyId::Help);
    tap(ls::KeyId::Feed);
    QString shown = FencedBlocks(QStringLiteral("key-does-nothing.md"))
                        .text(QStringLiteral("text"), QStringLiteral("monitor"));
    WAIT_FOR(output.count('\n') == shown.count('\n') || process.state() == QProcess::NotRunning);
    QCOMPARE(output.replace(time, QStringLiteral("TIME")), shown.replace(time, QStringLiteral("TIME")));
    process.end();
}

/// The names of the document's examples are those of the tests, here and in DoctorTest.
void SystemDoctorTest::everyFaultOfTheDocumentIsTested()
{
    QFile unitTest(QStringLiteral(PROJECT_FOLDER "/tests/control/doctor/DoctorTest.cpp"));
    QVERIFY(unitTest.open(QIODevice::ReadOnly));
    QString names = QString::fromUtf8(unitTest.readAll()) + QStringLiteral("{\"monitor\",");
    const auto faults = faultsOfTheDocument();
    for (const auto& fault : faults) {
        names += '{' + ('"' + fault.first + '"') + ',';
    }
    const QStringList examples =
        FencedBlocks(QStringLiteral("key-does-nothing.md")).names(QStringLiteral("text"));
    QVERIFY(examples.size() > faults.size());
    for (const QString& example : examples) {
        QVERIFY2(names.contains("{\"" + example + "\","), qPrintable(example));
    }
}

QTEST_GUILESS_MAIN(SystemDoctorTest)
#include "SystemDoctorTest.moc"
