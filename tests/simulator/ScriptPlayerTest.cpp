// SPDX-License-Identifier: MIT
#include "simulator/script/ScriptPlayer.h"

#include "simulator/script/KeyScriptText.h"
#include "tests/virtual/DeviceTest.h"

namespace {

/// Records all calls with their times.
class RecordingTarget : public ScriptTarget
{
public:
    void press(int device, const QString& key) override
    {
        add(QStringLiteral("press %1 %2").arg(device).arg(key));
    }
    void release(int device, const QString& key) override
    {
        add(QStringLiteral("release %1 %2").arg(device).arg(key));
    }
    void record(int device, const RawRecord& record) override
    {
        add(QStringLiteral("record %1 %2").arg(device).arg(record.value));
    }
    void setState(const QString& state) override { add("state " + state); }
    void setService(const ServiceChange& change) override { add("service " + change.service); }
    void sendCommand(const QVariantMap& command) override
    {
        add("command " + command.value(commandIdKey).toString());
    }
    void typeLine(const QString& line) override { add("console " + line); }

    QStringList lines;

private:
    void add(const QString& text)
    {
        const auto time = VirtualDevice::clock().now() - m_start;
        lines << QString::number(time.count()) + ' ' + text;
    }

    std::chrono::milliseconds m_start = VirtualDevice::clock().now();
};

} // namespace

class ScriptPlayerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKindOfStepReachesTheTarget();
    void simultaneousStepsKeepTheirOrder();
    void manyStepsDoNotBlockTheEventLoop();
    void stepsAreReportedBeforeTheyArePlayed();
    void theEndIsReportedAfterTheLastExpectation();
    void anEmptyScriptEnds();
    void aDeletedPlayerPlaysNothing();
    void aPlayerCanBeStopped_data();
    void aPlayerCanBeStopped();
};

void ScriptPlayerTest::everyKindOfStepReachesTheTarget()
{
    RecordingTarget target;
    ScriptPlayer player(
        parseKeyScript("## Title\nwait 10\ndevice 1\ntap Up\nwait 5\nrecord 4 4 7\nstate Print\n"
                       "command GetLastKey\nconsole C 4")
            .script,
        target);
    player.start();
    VirtualDevice::clock().advance(1s);
    QCOMPARE(target.lines, QStringList({"10 press 1 Up", "60 release 1 Up", "65 record 1 7", "65 state Print",
                                        "65 command GetLastKey", "65 console C 4"}));
}

void ScriptPlayerTest::simultaneousStepsKeepTheirOrder()
{
    RecordingTarget target;
    ScriptPlayer player(parseKeyScript("press Up\npress Ok\nrelease Up\nwait 0\nrelease Ok").script, target);
    player.start();
    VirtualDevice::clock().advance(0ms);
    QCOMPARE(target.lines, QStringList({"0 press 0 Up", "0 press 0 Ok", "0 release 0 Up", "0 release 0 Ok"}));
}

void ScriptPlayerTest::manyStepsDoNotBlockTheEventLoop()
{
    RecordingTarget target;
    const QString burst = QStringLiteral("press Up\nrelease Up\n").repeated(1000);
    ScriptPlayer player(parseKeyScript(burst + "wait 1\npress Ok").script, target);
    const QSignalSpy finished(&player, &ScriptPlayer::finished);
    int takenAtFirstTurn = 0;
    player.start();
    QTimer::singleShot(0, this, [&] { takenAtFirstTurn = target.lines.size(); });
    VirtualDevice::clock().advance(501ms);
    QVERIFY2(takenAtFirstTurn <= 100, qPrintable(QString::number(takenAtFirstTurn)));
    QCOMPARE(target.lines.size(), 2001);
    QCOMPARE(target.lines.mid(1999), QStringList({"0 release 0 Up", "1 press 0 Ok"}));
    QCOMPARE(finished.size(), 1);
}

void ScriptPlayerTest::stepsAreReportedBeforeTheyArePlayed()
{
    RecordingTarget target;
    ScriptPlayer player(parseKeyScript("## Title\npress Up").script, target);
    connect(&player, &ScriptPlayer::aboutToPlay, this,
            [&](const ScriptStep& step) { target.lines << "shown " + step.text; });
    player.start();
    VirtualDevice::clock().advance(1s);
    QCOMPARE(target.lines, QStringList({"shown Title", "shown Up", "0 press 0 Up"}));
}

void ScriptPlayerTest::theEndIsReportedAfterTheLastExpectation()
{
    RecordingTarget target;
    ScriptPlayer player(parseKeyScript("tap Up\nexpect 1550 announce SingleKey UserMenu - Up").script,
                        target);
    const QSignalSpy finished(&player, &ScriptPlayer::finished);
    player.start();
    VirtualDevice::clock().advance(2049ms);
    QCOMPARE(finished.size(), 0);
    VirtualDevice::clock().advance(1ms);
    QCOMPARE(finished.size(), 1);
}

void ScriptPlayerTest::anEmptyScriptEnds()
{
    RecordingTarget target;
    ScriptPlayer player(KeyScript(), target);
    const QSignalSpy finished(&player, &ScriptPlayer::finished);
    player.start();
    VirtualDevice::clock().advance(1s);
    QCOMPARE(finished.size(), 1);
}

void ScriptPlayerTest::aDeletedPlayerPlaysNothing()
{
    RecordingTarget target;
    auto player = std::make_unique<ScriptPlayer>(parseKeyScript("wait 10\npress Up").script, target);
    player->start();
    player.reset();
    VirtualDevice::clock().advance(1s);
    QCOMPARE(target.lines, QStringList());
}

void ScriptPlayerTest::aPlayerCanBeStopped_data()
{
    QTest::addColumn<QString>("stopAt");
    QTest::addColumn<QStringList>("taken");
    QTest::newRow("before a simultaneous step") << "Ok" << QStringList("0 press 0 Up");
    QTest::newRow("before a later step") << "Down" << QStringList({"0 press 0 Up", "0 press 0 Ok"});
}

void ScriptPlayerTest::aPlayerCanBeStopped()
{
    QFETCH(QString, stopAt);
    RecordingTarget target;
    ScriptPlayer player(parseKeyScript("press Up\npress Ok\nwait 10\npress Down").script, target);
    const QSignalSpy finished(&player, &ScriptPlayer::finished);
    connect(&player, &ScriptPlayer::aboutToPlay, this, [&](const ScriptStep& step) {
        if (step.text == stopAt) {
            player.stop();
        }
    });
    player.start();
    VirtualDevice::clock().advance(1s);
    QTEST(target.lines, "taken");
    QCOMPARE(finished.size(), 0);
}

VIRTUAL_TIME_TEST_MAIN(ScriptPlayerTest)
#include "ScriptPlayerTest.moc"
