// SPDX-License-Identifier: MIT
#include "simulator/script/KeyScriptText.h"
#include "simulator/script/ObservationText.h"
#include "tests/delivery/target/Command.h"
#include "tests/delivery/target/Replay.h"
#include "tests/delivery/target/TargetTest.h"
#include "tests/support/Waiting.h"

#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <csignal>

namespace {

const QString program = QStringLiteral("/usr/bin/keyboard-handlerctl");
const QString recorderUnit = QStringLiteral("keyboard-handler-recorder.service");
const QString recorderSocket = QStringLiteral("/run/keyboard-handler-recorder/socket");
const QString demonstration = QStringLiteral("/usr/lib/keyboard-handler-tests/scripts/demonstration.keys");
const QByteArray nearLimit = "## within 20 ms of a time limit: a replay may differ\n";

/// All announcements of a recording in their order, also those of its unknown parts.
QStringList announcementsIn(const QByteArray& recording)
{
    static const QRegularExpression line(QStringLiteral("^(?:## \\? )?expect \\d+ (announce .*)$"),
                                         QRegularExpression::MultilineOption);
    QStringList texts;
    for (auto match = line.globalMatch(QString::fromUtf8(recording)); match.hasNext();) {
        texts << match.next().captured(1);
    }
    return texts;
}

/// The headings that say which parts are not known.
QStringList unknownParts(const QByteArray& recording)
{
    return QString::fromUtf8(recording).split('\n').filter(QRegularExpression(QStringLiteral("^## unknown")));
}

} // namespace

/// `keyboard-handlerctl record` next to the installed daemon: keys of kernel keyboards are recorded, and the
/// recording is played on the daemon's classes, on a virtual clock.
class TargetRecordTest : public TargetTest
{
    Q_OBJECT

private Q_SLOTS:
    void whatTheUnitRecordedPlaysAgain();
    void whatTheCommandRecordedPlaysAgain();
    void theRecorderCanOnlyReadThePanel();
    void onlyTheServicesGroupMayFetchTheRecording_data();
    void onlyTheServicesGroupMayFetchTheRecording();

private:
    QStringList observedAnnouncements();
    /// Records these steps with the command, until Ctrl-C; empty on failure.
    QByteArray record(const QString& steps);
};

QStringList TargetRecordTest::observedAnnouncements()
{
    QStringList texts;
    const Observations observations = device().observations();
    for (const Observation& observation : observations) {
        if (ObservationText::isAnnouncement(observation.text)) {
            texts << observation.text;
        }
    }
    return texts;
}

QByteArray TargetRecordTest::record(const QString& steps)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.keys"));
    QProcess recorder;
    recorder.start(program, {QStringLiteral("record"), QStringLiteral("--output"), path});
    QByteArray said;
    WAIT_FOR((said += recorder.readAllStandardError()).contains("Recording; Ctrl-C ends it.\n"));
    device().restartObserving();
    play(parseKeyScriptSteps(steps).script); // without expectations
    kill(pid_t(recorder.processId()), SIGINT);
    WAIT_FOR_EQUAL(recorder.state(), QProcess::NotRunning);
    QFile file(path);
    return recorder.exitCode() == 0 && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TargetRecordTest::whatTheUnitRecordedPlaysAgain()
{
    const KeyScript script = loadKeyScript(demonstration).script;
    QVERIFY(TargetDevice::giveDaemonConsole());
    QVERIFY(restartDaemon({}, script.initialState, script.model));
    QVERIFY(Unit::restart(recorderUnit));
    WAIT_FOR(QFile::exists(recorderSocket));
    QCOMPARE(play(script), QStringList());
    QByteArray recording;
    const auto isComplete = [&] {
        recording =
            Command::run(program, {QStringLiteral("record"), QStringLiteral("--save")}).output.toUtf8();
        return announcementsIn(recording) == observedAnnouncements();
    };
    WAIT_FOR(isComplete());
    QVERIFY(Unit::stop(recorderUnit));
    qInfo("%s", recording.constData());
    const Replay replay = Replay::of(recording);
    QCOMPARE(replay.fault, QString());
    QCOMPARE(replay.differences, QStringList());
    QCOMPARE(replay.apart, QStringList());
    QCOMPARE(unknownParts(recording), QStringList());
}

void TargetRecordTest::whatTheCommandRecordedPlaysAgain()
{
    QVERIFY(restartDaemon());
    // Feed counts as held for 1 s when it has been down for 1.25 s.
    QString steps = QStringLiteral("wait 1700\n");
    for (const int time : {1200, 1240, 1250, 1260, 1300}) {
        steps += QStringLiteral("hold Feed %1\nwait 1800\n").arg(time);
    }
    const QByteArray recording = record(steps);
    qInfo("%s", recording.constData());
    QCOMPARE(announcementsIn(recording), observedAnnouncements());
    QCOMPARE(unknownParts(recording), QStringList());
    QCOMPARE(recording.count(nearLimit), 3);
    const Replay replay = Replay::of(recording);
    QCOMPARE(replay.fault, QString());
    QCOMPARE(replay.differences, QStringList());
    qInfo("Near a time limit, %d announcements differ: %s", int(replay.apart.size()),
          qPrintable(replay.apart.join('\n')));

    // The long press that is not near the limit, and the one that is.
    const int last = recording.lastIndexOf("EjectPaper");
    const int before = recording.lastIndexOf("EjectPaper", last - 1);
    QCOMPARE(Replay::of(QByteArray(recording).replace(last, 10, "EjectPapre")).differences.size(), 2);
    const Replay wrongNearLimit = Replay::of(QByteArray(recording).replace(before, 10, "EjectPapre"));
    QCOMPARE(wrongNearLimit.differences, QStringList());
    QVERIFY(wrongNearLimit.apart.size() >= 2);
}

void TargetRecordTest::theRecorderCanOnlyReadThePanel()
{
    QVERIFY(Unit::restart(recorderUnit));
    const QString move = QStringLiteral("echo $$ >/sys/fs/cgroup%1/cgroup.procs && : ")
                             .arg(Unit::property(recorderUnit, QStringLiteral("ControlGroup")));
    for (const char* node : {"/dev/input/event0", "/dev/input/event1"}) {
        QCOMPARE(Command::shell(move + '<' + node).output, QString());
        const QString refused = Command::shell(move + "<>" + node).output;
        QVERIFY2(refused.contains(QLatin1String("Operation not permitted")), qPrintable(refused));
    }
    QVERIFY(Unit::stop(recorderUnit));
}

void TargetRecordTest::onlyTheServicesGroupMayFetchTheRecording_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("root") << 0;
    QTest::newRow("state-handler") << 0; // in the group
    QTest::newRow("games") << 4;
}

void TargetRecordTest::onlyTheServicesGroupMayFetchTheRecording()
{
    QFETCH(int, status);
    QVERIFY(Unit::restart(recorderUnit));
    WAIT_FOR(QFile::exists(recorderSocket));
    const Command::Result saved =
        Command::shell(QStringLiteral("runuser -u %1 -- %2 record --save")
                           .arg(QString::fromLatin1(QTest::currentDataTag()), program));
    QVERIFY2(saved.status == status, qPrintable(saved.output));
    QVERIFY2(saved.output.contains(status == 0
                                       ? QLatin1String("recorded announcements\n")
                                       : QLatin1String("become a member of the group embosser-services")),
             qPrintable(saved.output));
    QVERIFY(Unit::stop(recorderUnit));
}

QTEST_GUILESS_MAIN(TargetRecordTest)
#include "TargetRecordTest.moc"
