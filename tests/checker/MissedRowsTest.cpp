// SPDX-License-Identifier: MIT
#include "checker/EffectWords.h"
#include "checker/ScriptArgument.h"
#include "checker/ScriptPlayback.h"
#include "tests/checker/CommandRun.h"
#include "tests/model/ListMaps.h"
#include "tests/virtual/DeviceTest.h"
#include "tests/whole/random/Player.h"

#include <algorithm>

namespace {

/// All phrases of `why` about the key of `statements`.
QStringList phrasesOf(const QVector<KeyRow>& rows, const QString& state, const QString& statements)
{
    KeyScript script = checker::ScriptArgument::ofStatements(statements).script;
    script.initialState = state;
    const model::KeyLists lists = ListMaps::ofRows(rows);
    const model::KeyModel keyModel(lists);
    checker::ScriptPlayback playback(keyModel, script);
    playback.settle();
    const checker::EffectWords words(lists, [](model::RowId) { return QString(); });
    QStringList phrases;
    const auto& steps = playback.playback().steps();
    for (int step = 0; step < steps.size(); ++step) {
        phrases += words.phrasesOf(steps, step);
    }
    return phrases;
}

/// Whether the daemon's classes announce `action` when they get the statements.
bool isAnnounced(const QVector<KeyRow>& rows, const QString& state, const QString& statements,
                 const QString& action)
{
    KeyScript script = checker::ScriptArgument::ofStatements(statements).script;
    script.initialState = state;
    script.rows = rows;
    const Play play = Player::play(script);
    return std::any_of(play.events.begin(), play.events.end(), [&](const PlayEvent& event) {
        return event.text.startsWith("announce " + action + ' ');
    });
}

QVector<KeyRow> installedRows()
{
    const model::KeyLists lists = ListMaps::installed();
    QVector<KeyRow> rows;
    for (const model::RowId id : lists.ids()) {
        const KeyEntry& entry = lists.row(id);
        const KeyRow::Kind kind = id.list == model::List::LongPresses    ? KeyRow::Kind::Long
                                  : id.list == model::List::Combinations ? KeyRow::Kind::Modifier
                                                                         : KeyRow::Kind::Shortcut;
        rows.append({kind, entry.eAction(), entry.receiverService(), entry.validOnState(),
                     entry.timeout() / 1000, entry.keys()});
    }
    return rows;
}

} // namespace

/// Gestures that a person has missed by little.
class MissedRowsTest : public DeviceTest
{
    Q_OBJECT

private Q_SLOTS:
    void missedGestureIsNamed_data();
    void missedGestureIsNamed();
    void doneGestureIsNotMissed();
    void rowThatCouldNotWorkIsNotNamed();
    void longPressThatWasReleasedTooEarlySaysHowMuch();
    void releaseAfterACompletedLongPressIsNotTooEarly();
};

/// For each installed row of two keys: the missed gesture, the right one, and what is said about the first.
void MissedRowsTest::missedGestureIsNamed_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("missed");
    QTest::addColumn<QString>("right");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("reason");
    const QString pressed =
        QStringLiteral("press %1; wait 50; press %2; wait 50; release %2; wait 50; release %1");
    for (const KeyRow& row : installedRows()) {
        if (row.keys.size() != 2) {
            continue;
        }
        const QString first = row.keys.first();
        const QString second = row.keys.last();
        const auto add = [&](const char* name, const QString& state, const QString& missed,
                             const QString& right, const QString& reason) {
            QTest::addRow("%s, %s", qPrintable(row.action), name)
                << state << missed << right << row.action << reason;
        };
        const QString taps = QStringLiteral("tap %1 %2").arg(first, second);
        if (row.kind == KeyRow::Kind::Shortcut) {
            const QString state = row.validOnState;
            add("first key released", state, taps, pressed.arg(first, second),
                QStringLiteral("%1 was released before %2 was pressed").arg(first, second));
            add("wrong order", state, pressed.arg(second, first), pressed.arg(first, second),
                QStringLiteral("%1 must be pressed before %2").arg(first, second));
        } else if (row.kind == KeyRow::Kind::Modifier) {
            const QString slow = QStringLiteral("tap %1; wait 2000; tap %2").arg(first, second);
            add("too slow", "Idle", slow, taps,
                QStringLiteral("%1 was released 2.05 s after %2, and 1.5 s is the limit").arg(second, first));
            add("wrong order", "Idle", QStringLiteral("tap %1 %2").arg(second, first), taps,
                QStringLiteral("%1 must be released before %2").arg(first, second));
        }
    }
    QTest::newRow("outside Idle") << "Print"
                                  << "tap Help Feed"
                                  << "state Idle; tap Help Feed"
                                  << "PaperStatus"
                                  << "in Print, each key is sent at once";
}

void MissedRowsTest::missedGestureIsNamed()
{
    QFETCH(QString, state);
    QFETCH(QString, missed);
    QFETCH(QString, right);
    QFETCH(QString, action);
    QFETCH(QString, reason);
    const QVector<KeyRow> rows = installedRows();
    const QStringList phrases = phrasesOf(rows, state, missed);
    QVERIFY2(phrases.contains(action + " is not completed: " + reason), qPrintable(phrases.join('\n')));
    QVERIFY(!isAnnounced(rows, state, missed, action));
    QVERIFY(isAnnounced(rows, state, right, action));
}

void MissedRowsTest::doneGestureIsNotMissed()
{
    const QVector<KeyRow> rows = installedRows();
    for (const char* statements :
         {"tap Help Feed", "press Function; wait 50; press Up; release Up; release Function",
          "tap Help; wait 6000; tap Feed", "tap Up; wait 50; tap Down"}) {
        const QStringList missed = phrasesOf(rows, "Idle", statements).filter("is not completed");
        QVERIFY2(missed.isEmpty(), qPrintable(missed.join('\n')));
    }
}

void MissedRowsTest::rowThatCouldNotWorkIsNotNamed()
{
    const QVector<KeyRow> rows{modifierRow({"Function", "Help", "One"}, "Idle", "Sequence"),
                               modifierRow({"Help", "Feed"}, "Idle", "Hidden"),
                               shortcutRow({"Up", "Down"}, "Print", "Elsewhere")};
    QCOMPARE(phrasesOf(rows, "Idle", "tap Help; wait 2000; tap Feed").filter("is not completed"),
             QStringList());
    QCOMPARE(phrasesOf(rows, "Idle", "tap Up Down").filter("is not completed"), QStringList());
}

void MissedRowsTest::longPressThatWasReleasedTooEarlySaysHowMuch()
{
    const QVector<KeyRow> rows = installedRows();
    const QStringList phrases = phrasesOf(rows, "Idle", "hold Help 2000");
    QVERIFY2(phrases.contains("stops the time of KeyDescription, 0.25 s too early  []"),
             qPrintable(phrases.join('\n')));
    QVERIFY(!isAnnounced(rows, "Idle", "hold Help 2000", "KeyDescription"));
    QVERIFY(isAnnounced(rows, "Idle", "hold Help 2250", "KeyDescription"));
}

void MissedRowsTest::releaseAfterACompletedLongPressIsNotTooEarly()
{
    const QStringList phrases = phrasesOf(installedRows(), "Idle", "hold Help 2600");
    QVERIFY2(phrases.contains("stops the time of KeyDescription  []"), qPrintable(phrases.join('\n')));
}

VIRTUAL_TIME_TEST_MAIN(MissedRowsTest)
#include "MissedRowsTest.moc"
