// SPDX-License-Identifier: MIT
#include "simulator/script/KeyScriptText.h"
#include "tests/support/Attempts.h"
#include "tests/support/Waiting.h"
#include "tests/workbench/session/SessionTest.h"

#include <QProcess>
#include <QTemporaryDir>

using Status = Session::Status;

namespace {

const QString longFile = QStringLiteral("longKeyList.json");
const QByteArray oneLongRow =
    R"({"LongKeys": [{"keys": ["Up"], "eAction": "Rise", "receiverService": "WwwApi", "timeout": 1, "validOnState": "Idle | Error"}]})";

/// A lone key, a combination, a shortcut, a refused action, a long press, a command, a console line, an
/// unusual record and a change of state.
const QString busyHour = QStringLiteral("tap Up; wait 1900; tap Help; wait 100; tap Feed; wait 1900;"
                                        "press Function; wait 100; tap Up; release Function; wait 1900;"
                                        "press Feed; wait 100; tap Ok; release Feed; wait 1900;"
                                        "device 1; hold Help 2600; wait 1900;"
                                        "command GetLastKey as WwwApi; wait 100; console HELP C; wait 100;"
                                        "record 1 139 5; wait 100; state Print; wait 200; tap Up; wait 300");

} // namespace

class SessionRecordingTest : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void theFormerRecordingSurvivesARestart();
    void aRecordingCanBeReplayed_data();
    void aRecordingCanBeReplayed();
    void aFalsifiedRecordingFails();
    void otherKeyListsAreRecordedAsRows();
    void unrepresentableRowsAreFaults();
    void aRecordingStartsWithModelAndState();
    void aRecordingStartsWithFailedServices();
    void anUnusedDeviceIsNotRestartedForARecording();
    void aNewRecordingRestartsTheDaemon();
    void keysHeldAtTheEndStayDown();
    void keysHeldAtTheStartAreDropped();
    void actionsOfSeveralClientsAreRecorded();
    void aReplayIsRecorded();
    void aCrashEndsARecording();
    void aRecordingNeedsADevice();
    void aFullRecordingStopsAndIsAvailable();

private:
    /// The recording; empty, with a warning, if there are faults.
    QString recording();
    /// Plays a script in the golden test; returns its output on failure.
    QString playOnVirtualClock(const QString& text);
    /// Executes the statements when the device is ready; returns the recording.
    QString record(const QString& statements, int client = 0);
    /// Records the statements on a new device, sets `text` to the recording and plays it in the golden test.
    QString recordAndPlay(const QString& statements, QString& text);
    /// Replays a script on the device; returns the differences.
    QString replay(const QString& text);
};

QString SessionRecordingTest::recording()
{
    QStringList faults;
    const QString text = session().recording(&faults);
    if (!faults.isEmpty()) {
        qWarning() << faults;
    }
    return text;
}

QString SessionRecordingTest::playOnVirtualClock(const QString& text)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("recording.keys")));
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) == -1 || !file.flush()) {
        return file.errorString();
    }
    QStringList arguments = QStringLiteral(GOLDEN_ROOT).split(' ');
    const QString sandbox = arguments.takeFirst();
    arguments << QStringList{"--ro-bind",   folder.path(),  "/tmp/scripts", "--setenv",
                             "KEY_SCRIPTS", "/tmp/scripts", "--",           QStringLiteral(GOLDEN_TEST)};
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(sandbox, arguments);
    const bool ended = process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit;
    const QString output = QString::fromUtf8(process.readAll());
    const bool played = output.contains(QStringLiteral("scriptGoesAsExpected(recording)"));
    return ended && played && process.exitCode() == 0 ? QString() : output;
}

QString SessionRecordingTest::record(const QString& statements, int client)
{
    forgetEntries();
    if (!awaitStatus(Status::Ready) || !execute(statements + "; ## Done", client).isEmpty()) {
        return QStringLiteral("The statements cannot be executed.");
    }
    return awaitEntry("heading", "text", "Done") ? recording() : session().reason();
}

QString SessionRecordingTest::recordAndPlay(const QString& statements, QString& text)
{
    return Attempts::outcome([&] {
        session().restart({{}, {}, false, ls::StateId::Idle});
        text = record(statements);
        return playOnVirtualClock(text);
    });
}

QString SessionRecordingTest::replay(const QString& text)
{
    forgetEntries();
    const QVector<ScriptFault> faults = session().replay(text);
    if (!faults.isEmpty()) {
        return faults.first().text;
    }
    if (!awaitEntry("replay", "status", "finished")) {
        return session().reason();
    }
    return entries("replay").last().value("differences").toVariant().toStringList().join('\n');
}

void SessionRecordingTest::theFormerRecordingSurvivesARestart()
{
    QVERIFY(launch());
    QStringList faults;
    QVERIFY(!session().hasFormerRecording());
    QCOMPARE(session().formerRecording(&faults), QString());
    QCOMPARE(faults, QStringList("Nothing has been recorded yet."));
    QCOMPARE(execute("tap Chs"), QString());
    QVERIFY(awaitEntry("speech", "text", "Character set"));
    // The second restart ends a recording without actions.
    for (int restarts = 0; restarts < 2; ++restarts) {
        QCOMPARE(session().restart({}), QString());
        QVERIFY(awaitStatus(Status::Ready));
    }
    faults.clear();
    QVERIFY(session().formerRecording(&faults).contains("press Chs\n"));
    QCOMPARE(faults, QStringList());
    QVERIFY(session().hasFormerRecording());
}

void SessionRecordingTest::aRecordingCanBeReplayed_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("done");
    QTest::addColumn<QString>("mark");
    QTest::newRow("nothing at all") << "Pellit"
                                    << "wait 300"
                                    << "recorded\n";
    QTest::newRow("a pending lone key") << "Pellit"
                                        << "tap Up; wait 300"
                                        << "release Up\n";
    QTest::newRow("everything") << "Orvane" << busyHour << "announce PaperStatus PrintManager";
    QTest::newRow("keys while starting up")
        << "Pellit"
        << "state Startup; wait 300; tap Up; wait 200; state Idle; wait 300; tap Menu; wait 600"
        << "EmbosserError 69";
}

void SessionRecordingTest::aRecordingCanBeReplayed()
{
    QFETCH(QString, model);
    QFETCH(QString, done);
    QFETCH(QString, mark);
    options.model = model;
    QString text;
    QCOMPARE(recordAndPlay(done, text), QString());
    QVERIFY2(text.startsWith("recorded\nmodel " + model + "\nstate Idle\n"), qPrintable(text));
    QVERIFY2(text.contains(mark), qPrintable(text));
    QCOMPARE(Attempts::outcome([&] { return replay(text); }), QString());
}

void SessionRecordingTest::aFalsifiedRecordingFails()
{
    QVERIFY(launch());
    record("tap Menu");
    QVERIFY(awaitEntry("announcement", "action", "SingleKey"));
    const QString text = record("wait 300").replace(QStringLiteral("UserMenu"), QStringLiteral("WwwApi"));
    QVERIFY(playOnVirtualClock(text).contains(QStringLiteral("announce SingleKey WwwApi - Menu")));
    QVERIFY(replay(text).contains(QStringLiteral("announce SingleKey WwwApi - Menu")));
}

void SessionRecordingTest::otherKeyListsAreRecordedAsRows()
{
    options.keyLists.insert(longFile, oneLongRow);
    QString text;
    QCOMPARE(recordAndPlay("hold Up 1400; wait 300", text), QString());
    QVERIFY2(text.contains("\nrow long Rise WwwApi Idle|Error 1 Up\n"), qPrintable(text));
    QVERIFY(text.contains("\nrow shortcut VolumeUp UserMenu Idle Function Up\n"));
    QCOMPARE(Attempts::outcome([&] { return replay(text); }), QString());
}

void SessionRecordingTest::unrepresentableRowsAreFaults()
{
    options.keyLists.insert(longFile, QByteArray(oneLongRow).replace("\"timeout\": 1", "\"timeout\": 1.5"));
    QVERIFY(launch());
    QStringList faults;
    QCOMPARE(session().recording(&faults), QString());
    QCOMPARE(faults.size(), 1);
    QVERIFY(faults.first().startsWith("Row 1 of longKeyList.json cannot be written in a script: "));
}

void SessionRecordingTest::aRecordingStartsWithModelAndState()
{
    QVERIFY(launch());
    QCOMPARE(execute("state Update"), QString());
    QVERIFY(session().restart({QStringLiteral("Orvane"), {}, false, {}}).isEmpty());
    QVERIFY(awaitStatus(Status::Ready));
    QVERIFY(recording().startsWith("recorded\nmodel Orvane\nstate Update\ndevice 0\n"));
    QCOMPARE(members("recording", "status"), QStringList({"recording", "recording"}));
}

void SessionRecordingTest::aRecordingStartsWithFailedServices()
{
    QVERIFY(launch());
    QCOMPARE(execute("service speechd stop"), QString());
    const QString steps = recording().section("device 0\n", 1);
    QVERIFY2(steps.contains("service speechd stop\n"), qPrintable(recording()));
    QVERIFY(session().restart({}).isEmpty());
    QVERIFY(awaitStatus(Status::Ready));
    QVERIFY2(recording().contains("service speechd stop\ndevice 0\n"), qPrintable(recording()));
    QVERIFY(session().replay(QStringLiteral("tap Menu")).isEmpty());
    QVERIFY(awaitEntry("replay", "status", "finished"));
    QVERIFY2(!recording().contains("service"), qPrintable(recording()));
}

void SessionRecordingTest::anUnusedDeviceIsNotRestartedForARecording()
{
    QVERIFY(launch());
    const qint64 daemon = session().daemonProcess();
    QTest::qWait(300);
    QElapsedTimer sinceRestart;
    sinceRestart.start();
    session().restartRecording();
    QCOMPARE(session().daemonProcess(), daemon);
    QCOMPARE(members("recording", "status"), QStringList({"recording", "recording"}));
    const qint64 end = parseKeyScript(recording()).script.end.count();
    QVERIFY(end <= sinceRestart.elapsed());
}

void SessionRecordingTest::aNewRecordingRestartsTheDaemon()
{
    QVERIFY(launch());
    QCOMPARE(execute("state Error; command StartTestMode; wait 100; tap Up"), QString());
    QVERIFY(awaitEntry("speech", "text", "Up"));
    QString text;
    const auto attempt = [&] {
        session().restartRecording();
        text = record("tap Up; wait 1800");
        return playOnVirtualClock(text);
    };
    QCOMPARE(Attempts::outcome(attempt), QString());
    QVERIFY(text.startsWith("recorded\nmodel Pellit\nstate Error\ndevice 0\n"));
    QVERIFY(text.contains("announce SingleKey ErrorHandler - Up"));
}

void SessionRecordingTest::keysHeldAtTheEndStayDown()
{
    QString text;
    QCOMPARE(recordAndPlay("press Help; wait 100; device 1; press Up; wait 600", text), QString());
    QVERIFY(text.contains("press Help\n") && !text.contains("release"));
    QCOMPARE(Attempts::outcome([&] { return replay(text); }), QString());
    QVERIFY(keys().contains("0 Help 0") && keys().contains("1 Up 0"));
}

void SessionRecordingTest::keysHeldAtTheStartAreDropped()
{
    QVERIFY(launch());
    QString text;
    const auto attempt = [&] {
        forgetEntries();
        execute("press Help", 1);
        WAIT_FOR(keys().contains("0 Help 2"));
        session().restartRecording();
        text = record("release Help; tap Menu; wait 300", 1);
        return playOnVirtualClock(text);
    };
    QCOMPARE(Attempts::outcome(attempt), QString());
    QVERIFY(!text.contains("press Help"));
    QVERIFY(text.contains("announce SingleKey UserMenu - Menu"));
}

void SessionRecordingTest::actionsOfSeveralClientsAreRecorded()
{
    QVERIFY(launch());
    QString text;
    const auto attempt = [&] {
        session().restartRecording();
        record("press Function; wait 50", 1);
        execute("press Up", 2);
        awaitEntry("announcement", "observation", "announce VolumeUp UserMenu - Function Up");
        session().releaseKeysOf(2);
        text = record("wait 50; release Function; wait 300", 1);
        return playOnVirtualClock(text);
    };
    QCOMPARE(Attempts::outcome(attempt), QString());
    QStringList texts;
    for (const ScriptStep& step : parseKeyScript(text).script.steps) {
        texts << (step.kind == ScriptStep::Kind::Press ? '+' : '-') + step.text;
    }
    QCOMPARE(texts, QStringList({"+Function", "-Done", "+Up", "-Up", "-Function", "-Done"}));
    QVERIFY(text.contains("announce VolumeUp UserMenu - Function Up"));
}

void SessionRecordingTest::aReplayIsRecorded()
{
    const QString script = QStringLiteral("model Orvane\nrow modifier Both WwwApi Idle Up Down\n"
                                          "tap Up Down\n");
    QString text;
    const auto attempt = [&] {
        replay(script);
        text = recording();
        return playOnVirtualClock(text);
    };
    QCOMPARE(Attempts::outcome(attempt), QString());
    QVERIFY(text.startsWith("recorded\nmodel Orvane\nstate Idle\nrow modifier Both WwwApi Idle Up Down\n"));
    QVERIFY(text.contains("announce Both WwwApi - Up Down"));
}

void SessionRecordingTest::aCrashEndsARecording()
{
    QString text;
    const auto attempt = [&] {
        session().restart({});
        record("tap Menu; wait 300");
        crash();
        text = recording();
        return playOnVirtualClock(text);
    };
    QCOMPARE(Attempts::outcome(attempt), QString());
    QTest::qWait(300);
    QCOMPARE(recording(), text);
    QVERIFY(text.contains("announce SingleKey UserMenu - Menu"));
}

void SessionRecordingTest::aRecordingNeedsADevice()
{
    QStringList faults;
    QCOMPARE(session().recording(&faults), QString());
    QCOMPARE(faults, QStringList("Nothing has been recorded yet."));
}

void SessionRecordingTest::aFullRecordingStopsAndIsAvailable()
{
    options.state = ls::StateId::Print;
    QVERIFY(launch());
    const QString burst = QString("console " + QString(20'000, 'x') + ';').repeated(3);
    while (session().isRecording()) {
        // A slow daemon first reads its pending input.
        WAIT_FOR(execute(burst).isEmpty());
    }
    QCOMPARE(members("recording", "status"), QStringList({"recording", "full"}));
    const QString text = recording();
    QVERIFY(text.size() > 500'000);
    WAIT_FOR(execute("tap Up").isEmpty());
    QVERIFY(awaitEntry("announcement", "action", "SingleKey"));
    QCOMPARE(recording(), text);
    session().restartRecording();
    QVERIFY(awaitStatus(Status::Ready));
    QVERIFY(recording().size() < 1000);
}

QTEST_GUILESS_MAIN(SessionRecordingTest)
#include "SessionRecordingTest.moc"
