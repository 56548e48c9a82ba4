// SPDX-License-Identifier: MIT
#include "checker/CauseSearch.h"
#include "checker/RowStates.h"
#include "checker/ScriptArgument.h"
#include "model/KeyFacts.h"
#include "simulator/script/KeyScriptText.h"
#include "tests/checker/CommandRun.h"
#include "tests/checker/DaemonTrial.h"
#include "tests/model/ListMaps.h"
#include "tests/support/Seeds.h"
#include "tests/virtual/DeviceTest.h"
#include "tests/whole/random/RandomScript.h"

#include <QTemporaryDir>

#include <algorithm>

using checker::CauseSearch;
using checker::Edit;
using checker::Swallowed;

namespace {

constexpr int seedCount = 100;
constexpr const char* seedsVariable = "WHY_SEEDS";
constexpr int maxActions = 12;
constexpr int maxExhaustive = 8;

CommandRun why(const QStringList& arguments)
{
    return {checker::Commands::why, QStringList{"why"} + arguments + QStringList{KEY_LISTS}};
}

KeyScript randomScript(quint64 seed)
{
    KeyScript script = RandomScript::roll(seed, maxActions);
    // The console is not part of the model.
    script.steps.erase(
        std::remove_if(script.steps.begin(), script.steps.end(),
                       [](const ScriptStep& step) { return step.kind == ScriptStep::Kind::Console; }),
        script.steps.end());
    script.end += 10s;
    return script;
}

/// The causes of everything in `statements`, which begin in Idle.
QVector<QVector<Edit>> causesIn(const QVector<KeyRow>& rows, const QString& statements)
{
    const CauseSearch search(ListMaps::ofRows(rows),
                             checker::ScriptArgument::ofStatements(statements).script);
    QVector<QVector<Edit>> causes;
    for (const Swallowed& swallowed : search.swallowed()) {
        causes.append(search.causesOf(swallowed));
    }
    return causes;
}

QVector<int> sizesOf(const QVector<QVector<Edit>>& causes)
{
    QVector<int> sizes;
    for (const QVector<Edit>& edits : causes) {
        sizes.append(edits.size());
    }
    return sizes;
}

/// All sets with some of the edits; of many edits, all of them and all but one.
QVector<QVector<Edit>> subsets(const QVector<Edit>& edits)
{
    QVector<QVector<Edit>> sets;
    if (edits.size() > maxExhaustive) {
        sets.fill(edits, edits.size() + 1);
        for (int i = 0; i < edits.size(); ++i) {
            sets[i].removeAt(i);
        }
        return sets;
    }
    for (int mask = (1 << edits.size()) - 1; mask > 0; --mask) {
        QVector<Edit> some;
        for (int i = 0; i < edits.size(); ++i) {
            if (mask & (1 << i)) {
                some.append(edits.at(i));
            }
        }
        sets.append(some);
    }
    return sets;
}

} // namespace

class WhyTest : public DeviceTest
{
    Q_OBJECT

private Q_SLOTS:
    void refusedShortcutIsExplained();
    void refusedLongPressNamesTheStateInWhichItWorks();
    void announcedGestureIsExplained();
    void atSelectsTheKeysAroundATime();
    void scriptFilesHaveTheirOwnRows();
    void unusableArgumentsAreRefused();
    void eitherOfTwoGesturesSilences();
    void eachLaterKeyKeepsAKeyFromBeingSent();
    void changedStateDropsTheWaitingKey();
    void factoryResetSilencesItsOwnKey();
    void longPressWithoutDelayIsPartOfItsStep();
    void keyReleasedTwiceAtOnceIsSent();
    void stateAndGestureTogetherSilence();
    void answersThatListRowsMayChange();
    void causesHoldOnTheDaemon();

private:
    void compare(const CauseSearch& search, const DaemonTrial& daemon, const KeyScript& script);
    void compare(const CauseSearch& search, const DaemonTrial& daemon, const Swallowed& swallowed);
    void noStateHelps(const CauseSearch& search, const DaemonTrial& daemon, Swallowed swallowed);

    QMap<Swallowed::Kind, int> m_counts;
    int m_sets = 0;
    int m_plays = 0;
};

void WhyTest::refusedShortcutIsExplained()
{
    const CommandRun run =
        why({"press Feed; wait 100; press Ok; wait 50; release Ok; wait 50; release Feed"});
    QCOMPARE(run.status, int(checker::Clean));
    const QString file = QStringLiteral(KEY_LISTS "/shortcutKeyList.json");
    const QStringList expected{
        "   0.000  Feed down         opens shortcuts with Feed  [" + file + ":6]",
        "   0.100  Ok down           completes LoadPaper  [" + file + ":6]",
        "   0.100  Ok down           LoadPaper is refused: it is valid in PrintOff and the state is Idle",
        "   0.150  Ok up             closes the shortcuts with Feed",
        "   0.150  Ok up             is not spoken: LoadPaper was refused 0.05 s before",
        "   0.150  Ok up             waits 1.5 s for further keys",
        "   0.200  Feed up           is not spoken: LoadPaper was refused 0.1 s before",
        "   0.200  Feed up           Ok waits no longer and is not sent",
        "   0.200  Feed up           waits 1.5 s for further keys",
        "   1.700  1.5 s over        Feed is not sent: LoadPaper was refused 1.6 s before",
        "Nothing was spoken and nothing was announced.",
        "LoadPaper is refused (0.1 s):",
        "  row 4 of shortcutKeyList.json, LoadPaper is valid in PrintOff, and the state was Idle. It would "
        "have "
        "worked in PrintOff.",
        "Ok is not spoken (0.15 s), Feed is not spoken (0.2 s), Feed is not sent (1.7 s):",
        "  row 4 of shortcutKeyList.json, LoadPaper was completed, which uses up keys even if the action is "
        "refused.",
        "Ok is not sent (0.2 s):",
        "  Feed was released at 0.2 s."};
    QCOMPARE(run.lines(), expected);
}

void WhyTest::refusedLongPressNamesTheStateInWhichItWorks()
{
    const CommandRun run = why({"hold Ok 1300"});
    QVERIFY2(
        run.out.contains("row 6 of longKeyList.json, AcknowledgeError is valid in Error, and the state was "
                         "Idle. It would have worked in Error."),
        qPrintable(run.out));
}

void WhyTest::announcedGestureIsExplained()
{
    const CommandRun run = why({"tap Help Feed"});
    QVERIFY2(run.out.contains("Help up           opens combinations with Help"), qPrintable(run.out));
    QVERIFY2(run.out.contains("PaperStatus is announced to PrintManager"), qPrintable(run.out));
    QVERIFY(!run.out.contains("Nothing was spoken"));
}

void WhyTest::atSelectsTheKeysAroundATime()
{
    const QString statements = QStringLiteral("tap Up; wait 5000; tap Down; wait 5000; tap Right");
    QVERIFY(why({statements}).out.contains("Up down"));
    const CommandRun run = why({statements, "--at", "7.5"});
    QVERIFY2(run.out.contains("Down down") && !run.out.contains("Up down") && !run.out.contains("Right down"),
             qPrintable(run.out));
    QCOMPARE(why({statements, "--at", "noon"}).status, int(checker::Unusable));
}

void WhyTest::scriptFilesHaveTheirOwnRows()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("mine.keys"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("model Orvane\nstate Print\nrow shortcut Mine UserMenu Print Up Down\npress Up\npress Down\n");
    file.close();
    const CommandRun run = why({file.fileName()});
    QVERIFY2(run.out.contains("Mine is announced to UserMenu"), qPrintable(run.out));
    QVERIFY2(run.out.contains("[shortcut row 1 of " + file.fileName() + "]"), qPrintable(run.out));
}

void WhyTest::unusableArgumentsAreRefused()
{
    QCOMPARE(why({"/nowhere/some.keys"}).status, int(checker::Unusable));
    QCOMPARE(why({"tap Bell"}).status, int(checker::Unusable));
    QCOMPARE(why({"console C 5"}).status, int(checker::Unusable));
    QCOMPARE(CommandRun(checker::Commands::why, {"why"}).status, int(checker::Unusable));
}

void WhyTest::eitherOfTwoGesturesSilences()
{
    const QVector<KeyRow> rows{shortcutRow({"Feed", "Ok"}, "Print", "One"),
                               shortcutRow({"Feed", "Up"}, "Print", "Two")};
    const auto causes = causesIn(
        rows, "press Feed; wait 50; press Ok; wait 50; press Up; wait 50; release Up; wait 1600; release Ok");
    // Refused, refused, Up is not spoken and not sent, Ok is a lone key.
    QCOMPARE(sizesOf(causes), (QVector<int>{1, 1, 2, 2}));
}

void WhyTest::eachLaterKeyKeepsAKeyFromBeingSent()
{
    QCOMPARE(sizesOf(causesIn({}, "tap Up Down Right")), (QVector<int>{2, 1}));
}

void WhyTest::changedStateDropsTheWaitingKey()
{
    const auto causes = causesIn({}, "tap Up; wait 100; state Print; wait 100; state Error");
    QCOMPARE(sizesOf(causes), QVector<int>{2});
    QCOMPARE(sizesOf(causesIn({}, "tap Up; state Print; state Idle")), QVector<int>());
}

void WhyTest::factoryResetSilencesItsOwnKey()
{
    const auto causes = causesIn({}, "hold FactoryReset 6000");
    QCOMPARE(sizesOf(causes), (QVector<int>{1, 1}));
    QCOMPARE(causes.first().first().kind, Edit::Kind::ReleaseAtOnce);
}

void WhyTest::longPressWithoutDelayIsPartOfItsStep()
{
    const KeyRow row = longRow("Up", 0, "Print", "Now");
    KeyScript script = checker::ScriptArgument::ofStatements("record 1 103 2").script;
    script.rows.append(row);
    const CauseSearch search(ListMaps::ofRows({row}), script);
    QCOMPARE(search.swallowed().size(), 1);
    compare(search, DaemonTrial(script), search.swallowed().first());
}

void WhyTest::keyReleasedTwiceAtOnceIsSent()
{
    const QString releases = QStringLiteral("press Feed; wait 50; release Feed; %1record 1 101 0");
    QCOMPARE(sizesOf(causesIn({}, releases.arg("wait 1; "))), QVector<int>{1});
    QCOMPARE(sizesOf(causesIn({}, releases.arg(""))), QVector<int>());
}

void WhyTest::stateAndGestureTogetherSilence()
{
    const QString gesture =
        QStringLiteral("press Feed; wait 50; press Ok; wait 50; release Ok; release Feed");
    const auto causes =
        causesIn({shortcutRow({"Feed", "Ok"}, "Print", "One")}, gesture + "; state Startup; tap Unknown");
    const auto areBoth = [](const QVector<Edit>& edits) {
        return edits.size() == 2 && edits.first().kind == Edit::Kind::InsertState &&
               edits.last().kind == Edit::Kind::RemoveRow;
    };
    QCOMPARE(std::count_if(causes.begin(), causes.end(), areBoth), 1);
}

void WhyTest::answersThatListRowsMayChange()
{
    const KeyRow row = longRow("Up", 1, "Idle", "Now", "Undefined");
    KeyScript script =
        checker::ScriptArgument::ofStatements("command GetLongKeysTimeout as PrintManager; hold Up 1500")
            .script;
    script.rows.append(row);
    const CauseSearch search(ListMaps::ofRows({row}), script);
    QVERIFY(!search.swallowed().isEmpty());
    compare(search, DaemonTrial(script), search.swallowed().first());
}

/// Plays random scripts with the causes taken away on the daemon's classes: the expected then happens, with
/// only some of the causes it does not, and nothing before the earliest edit changes.
void WhyTest::causesHoldOnTheDaemon()
{
    const Seeds seeds = chosenSeeds(seedsVariable, {1, seedCount}).value_or(Seeds{0, 0});
    QVERIFY(seeds.count > 0);
    for (int i = 0; i < seeds.count && !QTest::currentTestFailed(); ++i) {
        const quint64 seed = seeds.first + static_cast<quint64>(i);
        const KeyScript script = randomScript(seed);
        const CauseSearch search(ListMaps::ofRows(script.rows, script.model == "Orvane"), script);
        compare(search, DaemonTrial(script), script);
        if (QTest::currentTestFailed()) {
            qWarning("seed %llu", seed);
        }
    }
    qInfo("%d swallowed keys, %d edited plays", m_sets, m_plays);
    for (const auto kind : {Swallowed::Kind::NotSpoken, Swallowed::Kind::NotSent, Swallowed::Kind::Refused,
                            Swallowed::Kind::RefusedAlways, Swallowed::Kind::Dropped, Swallowed::Kind::Hidden,
                            Swallowed::Kind::Ignored}) {
        QVERIFY2(m_counts.value(kind) > 0 || seeds.count < seedCount, qPrintable(QString::number(int(kind))));
    }
}

void WhyTest::compare(const CauseSearch& search, const DaemonTrial& daemon, const KeyScript& script)
{
    for (const Swallowed& swallowed : search.swallowed()) {
        if (daemon.timeOf(swallowed.occasion) > script.end) {
            continue; // a long press of many days
        }
        compare(search, daemon, swallowed);
        if (QTest::currentTestFailed()) {
            qWarning("kind %d at step %d, %lld ms", int(swallowed.kind), swallowed.step,
                     static_cast<long long>(daemon.timeOf(swallowed.occasion).count()));
            return;
        }
    }
}

void WhyTest::compare(const CauseSearch& search, const DaemonTrial& daemon, const Swallowed& swallowed)
{
    const QVector<Edit> causes = search.causesOf(swallowed);
    QVERIFY2(!causes.isEmpty(), qPrintable(writeKeyScript(daemon.script())));
    QVERIFY2(!daemon.isMended(swallowed, daemon, search), "the daemon does it without edits");
    ++m_sets;
    ++m_counts[swallowed.kind];
    if (swallowed.kind == Swallowed::Kind::RefusedAlways) {
        noStateHelps(search, daemon, swallowed);
    }
    const QVector<QVector<Edit>> sets = subsets(causes);
    for (const QVector<Edit>& some : sets) {
        const DaemonTrial edited(daemon, some, swallowed.occasion);
        ++m_plays;
        QCOMPARE(edited.isMended(swallowed, daemon, search), some.size() == causes.size());
        const auto begin = std::min(daemon.earliest(some, search), edited.end());
        QCOMPARE(edited.before(begin), daemon.before(begin));
    }
}

void WhyTest::noStateHelps(const CauseSearch& search, const DaemonTrial& daemon, Swallowed swallowed)
{
    swallowed.kind = Swallowed::Kind::Refused;
    const QVector<model::State> states =
        checker::RowStates::of(search.original().keyModel().lists(), swallowed.row);
    for (const model::State state : states) {
        Edit edit;
        edit.kind = Edit::Kind::InsertState;
        edit.state = state;
        edit.at = daemon.timeOf(swallowed.occasion);
        if (!swallowed.occasion.after) {
            edit.steps = {swallowed.occasion.scriptStep};
        }
        const bool isReachable = state != model::State::Undefined;
        QVERIFY(!isReachable ||
                !DaemonTrial(daemon, {edit}, swallowed.occasion).isMended(swallowed, daemon, search));
    }
}

VIRTUAL_TIME_TEST_MAIN(WhyTest)
#include "WhyTest.moc"
