// SPDX-License-Identifier: MIT
#include "model/RowProofs.h"
#include "model/KeyFacts.h"
#include "model/Witness.h"
#include "tests/model/DaemonStep.h"
#include "tests/model/ListMaps.h"
#include "tests/support/Seeds.h"
#include "tests/virtual/DeviceTest.h"
#include "tests/whole/random/RandomRows.h"

#include <QSet>

using namespace model;

namespace {

constexpr int seedCount = 3;
constexpr quint64 wholeModelSeeds = 10;
constexpr const char* seedsVariable = "MODEL_SEEDS";

/// Actions and the states in which they are announced.
using Announced = QSet<QString>;

QString announced(const QString& action, State state)
{
    return action + QStringLiteral(" in ") + Alphabet::nameOf(state);
}

Environment anyInputInIdle()
{
    Environment environment;
    environment.stateChanges = false;
    environment.keyboardTest = false;
    environment.startStates = {KeyFacts::idle};
    return environment;
}

Environment fingers(int count)
{
    Environment environment;
    environment.kind = Environment::Kind::Person;
    environment.fingers = count;
    return environment;
}

Environment inFixedState(Environment environment)
{
    environment.stateChanges = false;
    environment.keyboardTest = false;
    return environment;
}

Environment paced(int fingerCount, std::chrono::milliseconds pace)
{
    Environment environment = fingers(fingerCount);
    environment.time = Environment::Time::Digital;
    environment.devices = 1;
    environment.pace = pace;
    environment.stateChanges = false;
    environment.keyboardTest = false;
    environment.startStates = {KeyFacts::idle};
    return environment;
}

/// Explores the daemon's classes instead of the model.
Announced byDaemon(const KeyLists& lists, const Environment& environment)
{
    const KeyModel keyModel(lists); // only for its canonical situations
    const EnvironmentStep around(environment, keyModel.rows());
    DaemonStep daemon(lists);
    NodeStore<Node> nodes;
    for (const Node& start : around.starts()) {
        nodes.insert(start, NodeStore<Node>::noNode, {});
    }
    Announced all;
    Inputs inputs;
    for (quint32 from = 0; from < nodes.size(); ++from) {
        around.allow(nodes.at(from), inputs);
        for (const Input input : qAsConst(inputs)) {
            const auto result = daemon.step(nodes.at(from).situation, input, from);
            nodes.insert({keyModel.canonical(result.situation), {}}, from, input);
            for (const QString& output : result.outputs) {
                if (output.startsWith(QStringLiteral("announce "))) {
                    all.insert(announced(output.section(QLatin1Char(' '), 1, 1), result.situation.state));
                }
            }
        }
    }
    all.remove(announced(KeyboardActionId::SingleKey, KeyFacts::idle));
    all.remove(announced(KeyboardActionId::FactoryReset, KeyFacts::idle));
    return all;
}

Announced byProofs(const KeyLists& lists, const Environment& environment)
{
    const RowProofs proofs(lists, environment);
    Announced all;
    for (const RowId row : lists.ids()) {
        for (const State state : environment.startStates) {
            const RowVerdict verdict = proofs.of(row, state);
            if (verdict.kind == RowVerdict::Kind::Announced) {
                all.insert(announced(lists.row(row).eAction(), state));
            } else if (verdict.kind == RowVerdict::Kind::NotProved) {
                all.insert(QStringLiteral("not proved"));
            }
        }
    }
    return all;
}

/// Explores all recognisers at once.
Announced byWholeModel(const KeyLists& lists, const Environment& environment)
{
    const KeyModel keyModel(lists);
    Announced all;
    Explorer explorer(keyModel, environment);
    explorer.explore([&](const Explorer::Transition& transition) {
        for (const Effect& effect : transition.effects) {
            if (effect.rule == Rule::Announces) {
                all.insert(announced(lists.row(effect.row).eAction(), transition.after.situation.state));
            }
        }
        return Explorer::Next::Continue;
    });
    return all;
}

/// Few rows, because exploring the daemon's classes is slow.
KeyLists smallLists(quint64 seed)
{
    Dice dice(seed);
    KeyLists lists = ListMaps::ofRows(RandomRows::roll(dice));
    lists.longPresses = lists.longPresses.mid(0, 1);
    lists.combinations = lists.combinations.mid(0, 3);
    lists.shortcuts = lists.shortcuts.mid(0, 1);
    return lists;
}

} // namespace

/// Checks the verdicts on rows of known lists, and on random rows with the daemon's classes.
class RowProofsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void neverHoldsForTheDaemon();
    void oneRecogniserAtATimeIsExact();
    void everyInstalledRowIsAnnounced();
    void searchEndsWithTheLastNamedState();
    void longerRowHidesTheRowsBehindIt();
    void shortcutTakesTwoFingers();
    void shortcutTakesOneFingerThroughStartup();
    void rowInStartupTakesAService();
    void paceDecidesAboutPairs();
    void holdOfAnHourIsProvedOnClocks();
    void limitProvesNothing_data();
    void limitProvesNothing();
    void verdictNamesItsEnvironment();
};

/// MODEL_SEEDS=FIRST:COUNT selects the lists.
void RowProofsTest::neverHoldsForTheDaemon()
{
    const Seeds seeds = chosenSeeds(seedsVariable, {1, seedCount}).value_or(Seeds{0, 0});
    QVERIFY(seeds.count > 0);
    for (int i = 0; i < seeds.count; ++i) {
        const KeyLists lists = smallLists(seeds.first + static_cast<quint64>(i));
        QCOMPARE(byProofs(lists, anyInputInIdle()), byDaemon(lists, anyInputInIdle()));
    }
}

void RowProofsTest::oneRecogniserAtATimeIsExact()
{
    for (quint64 seed = 1; seed <= wholeModelSeeds; ++seed) {
        const KeyLists lists = smallLists(seed);
        QCOMPARE(byProofs(lists, anyInputInIdle()), byWholeModel(lists, anyInputInIdle()));
    }
}

void RowProofsTest::everyInstalledRowIsAnnounced()
{
    const KeyLists lists = ListMaps::installed();
    const RowProofs proofs(lists, fingers(2));
    for (const RowId row : lists.ids()) {
        for (const QString& state : lists.statesOf(row)) {
            const RowVerdict verdict = proofs.of(row, *Alphabet::stateOf(state));
            QVERIFY2(verdict.kind == RowVerdict::Kind::Announced, qPrintable(lists.row(row).eAction()));
        }
    }
    const RowVerdict elsewhere = proofs.of({List::LongPresses, 0}, *Alphabet::stateOf(StateId::Print));
    QVERIFY(elsewhere.kind == RowVerdict::Kind::Never);
    QVERIFY(elsewhere.proof.isComplete);
    QVERIFY(elsewhere.proof.environment.kind == Environment::Kind::AnyInput);
}

void RowProofsTest::searchEndsWithTheLastNamedState()
{
    const QStringList keys{KeyId::Feed, KeyId::Ok};
    KeyLists lists;
    lists.shortcuts.append(KeyEntry(keys, QStringLiteral("A"), 0, ServiceId::UserMenu, StateId::Idle));
    const RowProofs proofs(lists, Environment());
    QCOMPARE(proofs.searches().size(), 1);
    QVERIFY(!proofs.searches().first().isComplete);
    lists.shortcuts = {KeyEntry(keys, QStringLiteral("B"), 0, ServiceId::UserMenu, QStringLiteral("None"))};
    const RowProofs unneeded(lists, Environment());
    QVERIFY(unneeded.searches().isEmpty());
    QVERIFY(unneeded.isNever({List::Shortcuts, 0}));
}

void RowProofsTest::longerRowHidesTheRowsBehindIt()
{
    KeyLists lists = ListMaps::installed();
    lists.combinations.move(5, 0); // Function, Help, One
    const RowProofs proofs(lists, fingers(2));
    QVERIFY(!proofs.isNever({List::Combinations, 0}));
    for (int i = 1; i < lists.combinations.size(); ++i) {
        QVERIFY2(proofs.isNever({List::Combinations, i}), qPrintable(lists.combinations.at(i).eAction()));
    }
}

void RowProofsTest::shortcutTakesTwoFingers()
{
    const RowId volumeUp{List::Shortcuts, 0};
    QVERIFY(RowProofs(ListMaps::installed(), inFixedState(fingers(1))).isNever(volumeUp));
    const RowVerdict verdict =
        RowProofs(ListMaps::installed(), inFixedState(fingers(2))).of(volumeUp, KeyFacts::idle);
    QVERIFY(verdict.kind == RowVerdict::Kind::Announced);
    QCOMPARE(verdict.proof.environment.fingers, 2);
    QCOMPARE(verdict.witness.inputs.size(), 2);
}

/// A release in Startup is ignored, so the key stays held for the shortcut.
void RowProofsTest::shortcutTakesOneFingerThroughStartup()
{
    const RowId volumeUp{List::Shortcuts, 0};
    const RowVerdict verdict = RowProofs(ListMaps::installed(), fingers(1)).of(volumeUp, KeyFacts::idle);
    QVERIFY(verdict.kind == RowVerdict::Kind::Announced);
    QVERIFY(verdict.witness.inputs.contains(Input::state(KeyFacts::startup)));
}

void RowProofsTest::rowInStartupTakesAService()
{
    KeyLists lists;
    lists.shortcuts.append(KeyEntry({KeyId::Function, KeyId::Up}, QStringLiteral("Early"), 0,
                                    ServiceId::UserMenu, StateId::Startup));
    QVERIFY(RowProofs(lists, fingers(2)).isNever({List::Shortcuts, 0}));
    Environment services;
    services.kind = Environment::Kind::Services;
    QVERIFY(RowProofs(lists, services).of({List::Shortcuts, 0}, KeyFacts::startup).kind ==
            RowVerdict::Kind::Announced);
}

/// From one release to the next, one finger needs two movements and two fingers need one.
void RowProofsTest::paceDecidesAboutPairs()
{
    KeyLists lists;
    lists.combinations.append(
        KeyEntry({KeyId::Help, KeyId::Feed}, QStringLiteral("Pair"), 0, ServiceId::UserMenu, StateId::Idle));
    const auto kindAt = [&lists](int count, std::chrono::milliseconds pace) {
        return RowProofs(lists, paced(count, pace)).of({List::Combinations, 0}, KeyFacts::idle).kind;
    };
    QVERIFY(kindAt(1, 500ms) == RowVerdict::Kind::Announced);
    QVERIFY(kindAt(1, 750ms) == RowVerdict::Kind::Never);
    QVERIFY(kindAt(2, 1250ms) == RowVerdict::Kind::Announced);
    QVERIFY(kindAt(2, 1500ms) == RowVerdict::Kind::Never);
}

/// The clocks skip what only a long press waits for.
void RowProofsTest::holdOfAnHourIsProvedOnClocks()
{
    KeyLists lists;
    lists.longPresses.append(
        KeyEntry({KeyId::Help}, QStringLiteral("Long"), 3'600'000, ServiceId::UserMenu, StateId::Idle));
    const RowVerdict verdict =
        RowProofs(lists, paced(2, 500ms), {20'000, 1'000'000}).of({List::LongPresses, 0}, KeyFacts::idle);
    QVERIFY(verdict.kind == RowVerdict::Kind::Announced);
    const KeyModel keyModel(lists);
    const Playback playback = Witness::play(keyModel, verdict.proof.environment, verdict.witness);
    QVERIFY(Witness::announcedAtEnd(playback).contains({List::LongPresses, 0}));
    QVERIFY(playback.now() >= 1h);
}

void RowProofsTest::limitProvesNothing_data()
{
    QTest::addColumn<quint32>("situations");
    QTest::addColumn<quint64>("steps");
    QTest::newRow("situations") << quint32(20) << quint64(1'000'000);
    QTest::newRow("steps") << quint32(1'000'000) << quint64(100);
}

void RowProofsTest::limitProvesNothing()
{
    QFETCH(quint32, situations);
    QFETCH(quint64, steps);
    const KeyLists lists = ListMaps::installed();
    const RowProofs proofs(lists, fingers(2), {situations, steps});
    bool isNotProved = false;
    for (const RowId row : lists.ids()) {
        for (const QString& state : lists.statesOf(row)) {
            const RowVerdict verdict = proofs.of(row, *Alphabet::stateOf(state));
            QVERIFY(verdict.kind != RowVerdict::Kind::Never);
            isNotProved = isNotProved || verdict.kind == RowVerdict::Kind::NotProved;
            QVERIFY(verdict.proof.situations <= situations + 1);
            QVERIFY(verdict.proof.steps <= steps + 1);
        }
    }
    QVERIFY(isNotProved);
}

void RowProofsTest::verdictNamesItsEnvironment()
{
    QCOMPARE(Environment().toText(), QStringLiteral("any input"));
    QCOMPARE(fingers(1).toText(), QStringLiteral("a person with one finger"));
    QCOMPARE(paced(2, 500ms).toText(),
             QStringLiteral("a person with 2 fingers, on one device, at least 500 ms between two movements, "
                            "the state stays as it is, no keyboard test, on a clock of 250 ms"));
}

VIRTUAL_TIME_TEST_MAIN(RowProofsTest)
#include "RowProofsTest.moc"
