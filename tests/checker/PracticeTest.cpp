// SPDX-License-Identifier: MIT
#include "checker/Practice.h"

#include "card/KeyCard.h"
#include "checker/ScriptArgument.h"
#include "tests/model/ListMaps.h"

#include <ls/Identifiers.h>

#include <QtTest>

using namespace checker;
using namespace std::chrono_literals;

namespace {

KeyScript scriptOf(const QString& statements, const QString& state = "Idle")
{
    KeyScript script = ScriptArgument::ofStatements(statements).script;
    script.initialState = state;
    return script;
}

/// What a person does for an entry, with `pause` ms between the movements.
QString statementsOf(const KeyCardEntry& entry, int pause)
{
    const QString wait = QStringLiteral("wait %1; ").arg(pause);
    switch (entry.kind) {
    case KeyCardKind::Single:
    case KeyCardKind::Combination:
        return "tap " + entry.keys.join("; " + wait + "tap ");
    case KeyCardKind::Shortcut:
        return QStringLiteral("press %1; %3tap %2; %3release %1")
            .arg(entry.keys.first(), entry.keys.last(), wait);
    case KeyCardKind::Long:
    case KeyCardKind::Hold:
        break;
    }
    return QStringLiteral("hold %1 %2").arg(entry.keys.first()).arg(entry.holdMs + pause);
}

KeyCardEntry entryOf(const QString& action, const QString& state = "Idle", const QString& key = {})
{
    const KeyCard card = KeyCard::of(ListMaps::installed());
    for (const KeyCardState& each : card.states) {
        for (const KeyCardEntry& entry : each.entries) {
            if (each.state == state && entry.action == action &&
                (key.isEmpty() || entry.keys.first() == key)) {
                return entry;
            }
        }
    }
    return {};
}

} // namespace

class PracticeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatTheCardSaysIsRight();
    void otherKeysAreNotRight();
    void wrongKeysAreExplained_data();
    void wrongKeysAreExplained();
    void noPauseIsTooLongAtOnesOwnPace();
    void holdsCountAtOnesOwnPace();
    void tasksAreCompleteWithTheirLastKey();
};

void PracticeTest::whatTheCardSaysIsRight()
{
    for (const bool isOrvane : {false, true}) {
        model::KeyLists lists = ListMaps::installed();
        lists.isOrvane = isOrvane;
        const KeyCard card = KeyCard::of(lists);
        for (const KeyCardState& state : card.states) {
            for (const KeyCardEntry& entry : state.entries) {
                const KeyScript script = scriptOf(statementsOf(entry, 50), state.state);
                const Practice::Judgement judgement = Practice::judge(lists, script, entry);
                QVERIFY2(judgement.isRight, qPrintable(state.state + ' ' + judgement.text));
            }
        }
    }
}

void PracticeTest::otherKeysAreNotRight()
{
    const model::KeyLists lists = ListMaps::installed();
    const KeyCard card = KeyCard::of(lists);
    for (const KeyCardState& state : card.states) {
        for (int i = 1; i < state.entries.size(); ++i) {
            // In the other states, the keys of gestures are announced as single keys, too.
            const KeyCardEntry& task = state.entries.at(i);
            const KeyCardEntry& other = state.entries.at(i - 1);
            const bool isOtherAction = task.kind == KeyCardKind::Single || task.action != other.action;
            const Practice::Judgement judgement =
                Practice::judge(lists, scriptOf(statementsOf(other, 50), state.state), task);
            QVERIFY2(!judgement.isRight || !isOtherAction, qPrintable(state.state + ' ' + judgement.text));
        }
    }
}

void PracticeTest::wrongKeysAreExplained_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("statements");
    QTest::addColumn<QString>("reason");
    QTest::newRow("too late")
        << "RepeatMessage"
        << "Idle"
        << "tap Help; wait 1650; tap Ok"
        << "RepeatMessage is not completed: Ok was released 1.7 s after Help, and 1.5 s "
           "is the limit.";
    QTest::newRow("the wrong order") << "VolumeUp"
                                     << "Idle"
                                     << "press Up; wait 100; tap Function; release Up"
                                     << "VolumeUp is not completed: Function must be pressed before Up.";
    QTest::newRow("released before") << "VolumeUp"
                                     << "Idle"
                                     << "tap Function; tap Up"
                                     << "VolumeUp is not completed: Function was released before Up was "
                                        "pressed.";
    QTest::newRow("too short") << "CancelJob"
                               << "Print"
                               << "hold Back 1000"
                               << "CancelJob is not completed: Back is released, 1.25 s too early.";
    QTest::newRow("the factory reset")
        << "FactoryReset"
        << "Print"
        << "hold FactoryReset 3000"
        << "FactoryReset is not completed: FactoryReset is released before 5 s "
           "are over.";
}

void PracticeTest::wrongKeysAreExplained()
{
    QFETCH(QString, action);
    QFETCH(QString, state);
    QFETCH(QString, statements);
    QFETCH(QString, reason);
    // Other rows that the keys miss are not named.
    const auto judgement =
        Practice::judge(ListMaps::installed(), scriptOf(statements, state), entryOf(action, state));
    QVERIFY2(!judgement.isRight, qPrintable(judgement.text));
    QVERIFY2(judgement.text.endsWith(". " + reason), qPrintable(judgement.text));
    QCOMPARE(judgement.text.count("is not completed"), 1);
}

void PracticeTest::noPauseIsTooLongAtOnesOwnPace()
{
    const model::KeyLists lists = ListMaps::installed();
    const KeyCard card = KeyCard::of(lists);
    int slow = 0;
    for (const KeyCardState& state : card.states) {
        for (const KeyCardEntry& entry : state.entries) {
            const KeyScript script = scriptOf(statementsOf(entry, 20'000), state.state);
            slow += Practice::judge(lists, script, entry).isRight ? 0 : 1;
            const auto judgement = Practice::judge(lists, Practice::atOwnPace(script, entry), entry);
            QVERIFY2(judgement.isRight, qPrintable(state.state + ' ' + judgement.text));
        }
    }
    QVERIFY(slow > 0);
}

void PracticeTest::holdsCountAtOnesOwnPace()
{
    const KeyCardEntry task = entryOf("CancelJob", "Print");
    const KeyScript tooShort = Practice::atOwnPace(scriptOf("wait 3000; hold Back 2200", "Print"), task);
    QVERIFY(!Practice::judge(ListMaps::installed(), tooShort, task).isRight);
    const KeyScript tooLong = Practice::atOwnPace(scriptOf("wait 3000; hold Back 20000", "Print"), task);
    QVERIFY(Practice::judge(ListMaps::installed(), tooLong, task).isRight);
    QVERIFY(tooLong.end < 3s);
    // For a task without a hold, a slow key is a tap.
    const KeyCardEntry tap = entryOf(ls::KeyboardActionId::SingleKey, "Idle", "Feed");
    const KeyScript slow = Practice::atOwnPace(scriptOf("hold Feed 4000"), tap);
    QVERIFY(Practice::judge(ListMaps::installed(), slow, tap).isRight);
}

void PracticeTest::tasksAreCompleteWithTheirLastKey()
{
    const KeyCardEntry task = entryOf("PrintSelfTest");
    QVERIFY(!Practice::isComplete(scriptOf("tap Function Help"), task));
    QVERIFY(!Practice::isComplete(scriptOf("tap Function Help; press One"), task));
    QVERIFY(Practice::isComplete(scriptOf("tap Function Help Up"), task));
}

QTEST_GUILESS_MAIN(PracticeTest)
#include "PracticeTest.moc"
