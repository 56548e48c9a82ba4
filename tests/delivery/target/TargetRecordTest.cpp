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

constexpr int tapMs = 50;
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
    const Replay replay = Replay::of(recording);
    QCOMPARE(replay.fault, QString());
    QVERIFY2(replay.differences.isEmpty(), qPrintable(replay.differences.join('\n') + recording));
    // The first key follows a key that was pressed before, and a command pressed and counted keys.
    const QStringList unknown = unknownParts(recording);
    QVERIFY2(unknown.size() == 2 && unknown.first().endsWith(QLatin1String("earlier keys may still count")) &&
                 unknown.last().contains(QLatin1String("not explained by the keys; a command may have come")),
             recording.constData());
    QVERIFY2(!recording.contains(nearLimit), recording.constData());
}

void TargetRecordTest::whatTheCommandRecordedPlaysAgain()
{
    QVERIFY(restartDaemon());
    // Feed completes the combination if it is released within 1.5 s after Help.
    QString steps = QStringLiteral("wait 1700\n");
    for (const int time : {1400, 1490, 1500, 1510, 1600}) {
        steps += QStringLiteral("tap Help\nwait %1\ntap Feed\nwait 1800\n").arg(time - tapMs);
    }
    const QByteArray recording = record(steps);
    QCOMPARE(announcementsIn(recording), observedAnnouncements());
    QCOMPARE(unknownParts(recording), QStringList());
    QVERIFY2(recording.count(nearLimit) == 3, recording.constData());
    const Replay replay = Replay::of(recording);
    QCOMPARE(replay.fault, QString());
    QVERIFY2(replay.differences.isEmpty(), qPrintable(replay.differences.join('\n') + recording));
    qInfo("Near the limit, %d announcements differ: %s", int(replay.apart.size()),
          qPrintable(replay.apart.join('\n')));

    // Wrong announcements are found, and those near a limit are apart.
    const QByteArray announce = "announce ";
    QByteArray wrong = recording;
    wrong.insert(wrong.indexOf(announce) + announce.size(), 'X');
    QCOMPARE(Replay::of(wrong).differences.size(), 2);
    wrong = recording;
    wrong.insert(wrong.indexOf(announce, wrong.indexOf(nearLimit)) + announce.size(), 'X');
    const Replay apart = Replay::of(wrong);
    QCOMPARE(apart.differences, QStringList());
    QVERIFY(apart.apart.size() >= 2);
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
