// SPDX-License-Identifier: MIT
#include "control/record/RecordingScript.h"
#include "simulator/script/KeyScriptText.h"
#include "simulator/script/Transcript.h"
#include "tests/virtual/DeviceTest.h"

using namespace control;
using std::chrono::microseconds;

namespace {

const QVector<KeyRow> rows{{KeyRow::Kind::Modifier,
                            "PaperStatus",
                            ServiceId::PrintManager,
                            StateId::Idle,
                            0,
                            {KeyId::Help, KeyId::Feed}}};
const QString header = "recorded announcements\nmodel Pellit\nstate Idle\n"
                       "row modifier PaperStatus PrintManager Idle Help Feed\ndevice 0\n";

} // namespace

/// Writes what was seen at a device as key scripts, and plays these on the daemon's classes.
class RecordingScriptTest : public DeviceTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void keysStatesAndAnnouncementsBecomeStatements();
    void whatBeganBeforeTheRecordingIsUnknown();
    void aKeyThatWasDownBeforeTheRecordingCountsUntilItIsReleased();
    void aGapIsUnknownUpToTheNextQuietKey();
    void nothingIsKnownWithoutTheState();
    void anAnnouncementWithoutKeysMayBeThatOfACommand();
    void aMissingAnnouncementIsNotExplained();
    void differencesNextToATimeLimitAreMarked();
    void repetitionsAreNotNextToATimeLimit();
    void theSenderOfACommandIsThatOfTheNextAnnouncement();
    void otherRepetitionsAreWrittenAsRecords();
    void keysWithoutANameAreWrittenAsRecords();
    void aLateRecordIsPutInOrder();
    void theOldestIsDropped();
    void whatIsDroppedIsRememberedAsTheBeginning();
    void listsThatRowsCannotExpressAreNamed();
    void aRecordedHoldPlaysAgain();

private:
    void keyAt(int ms, const QString& key, int value, int keyboard = 0);
    void tapAt(int ms, const QString& key);
    void announceAt(int ms, const QString& action, const QStringList& keys,
                    const QString& sender = ServiceId::KeyboardHandler);
    /// The script without its header.
    QString steps(int endMs = 10'000) const;
    QString text(int endMs) const;
    /// What differs if the script is played on the daemon's classes.
    QString replayDifference(int endMs = 10'000);

    Recording m_recording;
    QString m_singleKeyReceiver;
    RecordedDevice m_device;
};

void RecordingScriptTest::init()
{
    m_recording = Recording(0us);
    m_singleKeyReceiver = ServiceId::UserMenu;
    m_device = {KeyListJson::filesOf(rows), false, {}};
    m_recording.add(Happening::state(StateId::Idle, 0us));
}

void RecordingScriptTest::keyAt(int ms, const QString& key, int value, int keyboard)
{
    const auto code = static_cast<quint16>(KeyId::meta.value(key));
    m_recording.add(Happening::key({keyboard, std::chrono::milliseconds(ms), 1, code, value}));
}

void RecordingScriptTest::tapAt(int ms, const QString& key)
{
    keyAt(ms, key, 1);
    keyAt(ms + 50, key, 0);
}

void RecordingScriptTest::announceAt(int ms, const QString& action, const QStringList& keys,
                                     const QString& sender)
{
    QVariantMap map{{notificationIdKey, KeyboardHandlerNotifId::KeyboardChange},
                    {actionIdKey, action},
                    {senderIdKey, sender},
                    {receiverIdKey,
                     action == KeyboardActionId::SingleKey ? m_singleKeyReceiver : ServiceId::PrintManager},
                    {firstKeyKey, keys.first()}};
    if (keys.size() > 1) {
        map.insert(secondKeyKey, keys.at(1));
    }
    m_recording.add(Happening::announcement(map, std::chrono::milliseconds(ms)));
}

QString RecordingScriptTest::text(int endMs) const
{
    return QString::fromUtf8(scriptOf(m_recording, std::chrono::milliseconds(endMs), m_device));
}

QString RecordingScriptTest::steps(int endMs) const
{
    const QString all = text(endMs);
    const int end = all.indexOf("device 0\n");
    return all.mid(end == -1 ? 0 : end + int(strlen("device 0\n")));
}

QString RecordingScriptTest::replayDifference(int endMs)
{
    const ParsedScript parsed = parseKeyScript(text(endMs));
    if (!parsed.faults.isEmpty()) {
        return parsed.faults.first().text;
    }
    start(parsed.script.initialState, parsed.script.rows, parsed.script.model);
    for (const ScriptStep& step : parsed.script.steps) {
        device->waitUntil(step.at);
        device->play(step);
    }
    device->waitUntil(parsed.script.duration());
    return Transcript::difference(parsed.script, device->takeObservations(), Transcript::Clock::Virtual)
        .join('\n');
}

void RecordingScriptTest::keysStatesAndAnnouncementsBecomeStatements()
{
    tapAt(2000, KeyId::Help);
    tapAt(2100, KeyId::Feed);
    announceAt(2151, "PaperStatus", {KeyId::Help, KeyId::Feed});
    m_recording.add(Happening::state(StateId::Print, 5000ms));
    m_singleKeyReceiver = ServiceId::PrintManager;
    keyAt(6000, KeyId::Up, 1, 1);
    keyAt(6050, KeyId::Up, 0, 1);
    announceAt(6051, KeyboardActionId::SingleKey, {KeyId::Up});
    QCOMPARE(text(10'000),
             header +
                 "wait 1075\ncommand GetLastKey as KeyboardHandler\nwait 925\n"
                 "press Help\nwait 50\nrelease Help\nwait 50\npress Feed\nwait 50\nrelease Feed\n"
                 "expect 2151 announce PaperStatus PrintManager KeyboardHandler Help Feed\n"
                 "wait 2850\nstate Print\nwait 1000\ndevice 1\npress Up\nwait 50\nrelease Up\nwait 3950\n"
                 "expect 6051 announce SingleKey PrintManager KeyboardHandler Up\n");
    QCOMPARE(replayDifference(), QString());
}

void RecordingScriptTest::whatBeganBeforeTheRecordingIsUnknown()
{
    tapAt(100, KeyId::Feed);
    announceAt(151, "PaperStatus", {KeyId::Help, KeyId::Feed});
    QCOMPARE(steps(1000),
             QString("## unknown: earlier keys may still count\nwait 100\n"
                     "## ? device 0 press Feed\nwait 50\n## ? device 0 release Feed\nwait 1\n"
                     "## ? expect 151 announce PaperStatus PrintManager KeyboardHandler Help Feed\n"
                     "wait 849\n"));
    QCOMPARE(replayDifference(1000), QString());
}

void RecordingScriptTest::aKeyThatWasDownBeforeTheRecordingCountsUntilItIsReleased()
{
    m_recording.setInitialKeys({{0, static_cast<quint16>(KeyId::meta.value(KeyId::Help))}});
    tapAt(3000, KeyId::Up);
    keyAt(4000, KeyId::Help, 0);
    tapAt(6000, KeyId::Up);
    announceAt(7550, KeyboardActionId::SingleKey, {KeyId::Up});
    const QString all = steps();
    QVERIFY2(all.startsWith("## unknown: earlier keys"), qPrintable(all));
    QVERIFY2(all.contains("## ? device 0 press Up\n") && all.contains("\npress Up\n"), qPrintable(all));
    QCOMPARE(replayDifference(), QString());
}

void RecordingScriptTest::aGapIsUnknownUpToTheNextQuietKey()
{
    keyAt(2000, KeyId::Help, 1);
    m_recording.add(Happening::gap("input device 0 lost records", 2020ms));
    tapAt(3000, KeyId::Feed);
    tapAt(6000, KeyId::Help);
    tapAt(6100, KeyId::Feed);
    announceAt(6151, "PaperStatus", {KeyId::Help, KeyId::Feed});
    const QString all = steps();
    QVERIFY2(all.contains("## unknown: input device 0 lost records\n## ? device 0 press Help\n"),
             qPrintable(all));
    QVERIFY2(all.contains("## ? device 0 press Feed") && all.count("\npress Feed") == 1, qPrintable(all));
    QCOMPARE(replayDifference(), QString());
}

void RecordingScriptTest::nothingIsKnownWithoutTheState()
{
    m_recording = Recording(0us);
    tapAt(2000, KeyId::Up);
    m_recording.add(Happening::state(StateId::Print, 3000ms));
    m_singleKeyReceiver = ServiceId::PrintManager;
    tapAt(5000, KeyId::Up);
    announceAt(5051, KeyboardActionId::SingleKey, {KeyId::Up});
    const QString all = steps();
    QVERIFY2(all.contains("## unknown: the state is not known\n## ? device 0 press Up\n"), qPrintable(all));
    QVERIFY2(all.contains("\npress Up\n"), qPrintable(all));
    QCOMPARE(replayDifference(), QString());
}

void RecordingScriptTest::anAnnouncementWithoutKeysMayBeThatOfACommand()
{
    tapAt(2000, KeyId::Help);
    announceAt(2080, "PaperStatus", {KeyId::Help, KeyId::Feed}, ServiceId::WwwApi);
    tapAt(6000, KeyId::Up);
    announceAt(7550, KeyboardActionId::SingleKey, {KeyId::Up});
    const QString all = steps();
    QVERIFY2(all.contains("## unknown: not explained by the keys; a command may have come (missing 80 ms: "
                          "announce PaperStatus PrintManager - Help Feed)\n## ? device 0 press Help\n"),
             qPrintable(all));
    QVERIFY2(all.contains("\npress Up\n") && !all.contains("\npress Help\n"), qPrintable(all));
    QCOMPARE(replayDifference(), QString());
}

void RecordingScriptTest::aMissingAnnouncementIsNotExplained()
{
    tapAt(2000, KeyId::Up);
    const QString all = steps();
    QVERIFY2(all.contains("## unknown: not explained by the keys; a command may have come (unexpected "),
             qPrintable(all));
    QCOMPARE(replayDifference(), QString());
}

void RecordingScriptTest::differencesNextToATimeLimitAreMarked()
{
    tapAt(2000, KeyId::Help);
    keyAt(3500, KeyId::Feed, 1);
    keyAt(3553, KeyId::Feed, 0); // 3 ms after the end of the window, which the daemon saw end later
    announceAt(3554, "PaperStatus", {KeyId::Help, KeyId::Feed});
    const QString all = steps();
    QVERIFY2(all.contains("## within 20 ms of a time limit: a replay may differ\npress Help\n"),
             qPrintable(all));
    QVERIFY2(!all.contains("?"), qPrintable(all));
    QVERIFY(!replayDifference().isEmpty());
}

void RecordingScriptTest::theSenderOfACommandIsThatOfTheNextAnnouncement()
{
    tapAt(2000, KeyId::Up);
    announceAt(3550, KeyboardActionId::SingleKey, {KeyId::Up});
    tapAt(6000, KeyId::Up);
    announceAt(7550, KeyboardActionId::SingleKey, {KeyId::Up}, ServiceId::WwwApi);
    const QString all = steps();
    QVERIFY2(all.contains("command GetLastKey as WwwApi\n"), qPrintable(all));
    QCOMPARE(replayDifference(), QString());
}

void RecordingScriptTest::otherRepetitionsAreWrittenAsRecords()
{
    keyAt(2000, KeyId::Up, 1);
    keyAt(2600, KeyId::Up, 2);
    keyAt(2700, KeyId::Up, 0);
    const QString all = steps(2800);
    QVERIFY2(all.contains("\nrecord 1 103 1\nwait 600\nrecord 1 103 2\nwait 100\nrecord 1 103 0\n"),
             qPrintable(all));
}

void RecordingScriptTest::keysWithoutANameAreWrittenAsRecords()
{
    m_recording.add(Happening::key({1, 2000ms, 1, 30, 1}));
    m_recording.add(Happening::key({1, 2050ms, 1, 30, 0}));
    tapAt(2100, KeyId::Help);
    const QString all = steps(2200);
    QVERIFY2(all.contains("\ndevice 1\nrecord 1 30 1\nwait 50\nrecord 1 30 0\n"), qPrintable(all));
    QVERIFY2(all.contains("\ndevice 0\npress Help\n"), qPrintable(all));
}

void RecordingScriptTest::aLateRecordIsPutInOrder()
{
    keyAt(2000, KeyId::Help, 1);
    announceAt(2060, "PaperStatus", {KeyId::Help, KeyId::Feed});
    keyAt(2050, KeyId::Help, 0);
    QCOMPARE(m_recording.happenings().back().kind, Happening::Kind::Announcement);
}

void RecordingScriptTest::theOldestIsDropped()
{
    for (int i = 0; i < Recording::maxCount + 99; ++i) {
        keyAt(2000 + i, KeyId::Up, i % 3);
    }
    QVERIFY(m_recording.isFull());
    QCOMPARE(m_recording.happenings().size(), size_t(Recording::maxCount));
    QCOMPARE(m_recording.evicted(), qint64(100)); // with the first state
    const ParsedScript parsed = parseScriptFile(text(100'000).toUtf8());
    QVERIFY2(parsed.faults.isEmpty(), qPrintable(parsed.faults.value(0).text));
    m_recording = Recording(0us);
    const QString longName(10'000, 'x');
    for (int i = 0; i < 1000; ++i) {
        announceAt(i, longName, {KeyId::Up});
    }
    QVERIFY(m_recording.happenings().size() < 12 && m_recording.evicted() > 980);
}

void RecordingScriptTest::whatIsDroppedIsRememberedAsTheBeginning()
{
    keyAt(2000, KeyId::Help, 1);
    m_recording.dropBefore(3000ms);
    QCOMPARE(m_recording.begin(), microseconds(3000ms));
    QCOMPARE(m_recording.initialState(), StateId::Idle);
    QCOMPARE(m_recording.initialKeys().size(), 1);
    keyAt(6000, KeyId::Help, 0);
    tapAt(9000, KeyId::Up);
    announceAt(10'550, KeyboardActionId::SingleKey, {KeyId::Up});
    const QString all = text(12'000);
    QVERIFY2(all.contains("\nstate Idle\n") && all.contains("## ? device 0 release Help\n") &&
                 all.contains("\npress Up\n"),
             qPrintable(all));
    QCOMPARE(replayDifference(12'000), QString());
}

void RecordingScriptTest::listsThatRowsCannotExpressAreNamed()
{
    m_device.files.insert("longKeyList.json", R"({"longKeyList": [{"keys": ["Up"], "timeout": 0.5}]})");
    m_device.remarks << "two\nlines";
    const QString all = text(1000);
    QVERIFY2(all.startsWith("# two lines\n# The key lists of the device are not in this file: "),
             qPrintable(all));
    QVERIFY(!all.contains("\nrow "));
    QVERIFY(parseKeyScript(all).faults.isEmpty());
}

/// The kernel repeats every 33 ms, rounded up to its clock.
void RecordingScriptTest::aRecordedHoldPlaysAgain()
{
    const QVector<KeyRow> list{longRow(KeyId::Up, 1, StateId::Idle, "Reprint", ServiceId::PrintManager)};
    m_device.files = KeyListJson::filesOf(list);
    keyAt(2000, KeyId::Up, 1);
    int at = 2252;
    for (; at < 3700; at += 36) {
        keyAt(at, KeyId::Up, 2);
    }
    keyAt(at, KeyId::Up, 0);
    announceAt(3253, "Reprint", {KeyId::Up});
    const QString all = steps();
    QVERIFY2(all.contains("\npress Up\n") && all.contains("\nrelease Up\n") && !all.contains("record"),
             qPrintable(all));
    QCOMPARE(replayDifference(), QString());
}

void RecordingScriptTest::repetitionsAreNotNextToATimeLimit()
{
    const QVector<KeyRow> list{longRow(KeyId::Up, 1, StateId::Idle, "Reprint", ServiceId::PrintManager)};
    m_device.files = KeyListJson::filesOf(list);
    keyAt(2000, KeyId::Up, 1);
    for (int at = 2280; at < 3700; at += 40) {
        keyAt(at, KeyId::Up, 2);
    }
    keyAt(3700, KeyId::Up, 0);
    announceAt(3281, "Reprint", {KeyId::Up});
    const QString all = steps();
    QVERIFY2(all.contains("\nrecord 1 103 2\n") && !all.contains("time limit"), qPrintable(all));
    QCOMPARE(replayDifference(), QString());
}

VIRTUAL_TIME_TEST_MAIN(RecordingScriptTest)
#include "RecordingScriptTest.moc"
