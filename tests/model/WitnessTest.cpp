// SPDX-License-Identifier: MIT
#include "model/Witness.h"
#include "model/KeyFacts.h"
#include "model/RowProofs.h"
#include "tests/model/ListMaps.h"
#include "tests/model/ScriptOnDevice.h"
#include "tests/support/Seeds.h"
#include "tests/virtual/DeviceTest.h"
#include "tests/whole/random/RandomRows.h"

using namespace model;

namespace {

constexpr int seedCount = 30;
constexpr const char* seedsVariable = "MODEL_SEEDS";
constexpr auto maxScript = std::chrono::hours(24);

Environment environmentOf(Environment::Kind kind)
{
    Environment environment;
    environment.kind = kind;
    return environment;
}

/// No real time fits a change of the state between the repetition that begins such a long press and its end.
bool hasNoHold(const KeyLists& lists, RowId row)
{
    return row.list == List::LongPresses && lists.row(row).timeout() <= 0;
}

} // namespace

/// Plays the witness of each row that is said to be announced on the daemon's classes, which must do exactly
/// what the model expects.
class WitnessTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_played = 0; }
    void keyWithoutIdentifierEndsARepetition();
    void witnessGoesAsExpected_data();
    void witnessGoesAsExpected();

private:
    void play(const KeyLists& lists, const Environment& environment);

    QVector<KeyLists> m_lists;
    int m_played = 0;
};

void WitnessTest::keyWithoutIdentifierEndsARepetition()
{
    const QString receiver = ServiceId::UserMenu;
    const KeyLists lists = ListMaps::ofRows({{KeyRow::Kind::Long, "A", receiver, "Idle", 1, {"Help"}},
                                             {KeyRow::Kind::Long, "B", receiver, "Idle", 0, {"Undefined"}}});
    const KeyModel keyModel(lists);
    Playback playback(keyModel, KeyFacts::idle);
    playback.press(KeyFacts::help);
    playback.wait(50ms);
    playback.press(*Alphabet::keyOf("Undefined"));
    playback.wait(300ms);
    playback.release(KeyFacts::help);
    const QString script = Witness::toScript(playback, lists);
    QVERIFY2(script.contains(" announce B "), qPrintable(script));
    QCOMPARE(ScriptOnDevice::difference(script, lists), QString());
}

void WitnessTest::witnessGoesAsExpected_data()
{
    QTest::addColumn<int>("index");
    const auto add = [this](const QString& name, const KeyLists& lists) {
        QTest::newRow(qPrintable(name)) << m_lists.size();
        m_lists.append(lists);
    };
    add("installed lists", ListMaps::installed());
    add("installed lists of the Orvane", ListMaps::installed(true));
    const auto scripts = ListMaps::ofScripts(GOLDEN_SCRIPTS);
    for (auto it = scripts.begin(); it != scripts.end(); ++it) {
        add(it.key(), it.value());
    }
    const Seeds seeds = chosenSeeds(seedsVariable, {1, seedCount}).value_or(Seeds{0, 0});
    for (int i = 0; i < seeds.count; ++i) {
        Dice dice(seeds.first + static_cast<quint64>(i));
        add(QStringLiteral("random lists %1").arg(seeds.first + static_cast<quint64>(i)),
            ListMaps::ofRows(RandomRows::roll(dice)));
    }
}

void WitnessTest::witnessGoesAsExpected()
{
    QFETCH(int, index);
    const KeyLists& lists = m_lists.at(index);
    for (const auto kind :
         {Environment::Kind::Person, Environment::Kind::AnyInput, Environment::Kind::Services}) {
        play(lists, environmentOf(kind));
        if (QTest::currentTestFailed()) {
            return;
        }
    }
    QVERIFY(m_played > 0 || index > 2);
}

void WitnessTest::play(const KeyLists& lists, const Environment& environment)
{
    const KeyModel keyModel(lists);
    const RowProofs proofs(lists, environment);
    for (const RowId row : lists.ids()) {
        for (const State state : Alphabet::states()) {
            const RowVerdict verdict = proofs.of(row, state);
            QVERIFY2(verdict.kind != RowVerdict::Kind::NotProved || hasNoHold(lists, row),
                     qPrintable(lists.row(row).eAction()));
            if (verdict.kind != RowVerdict::Kind::Announced) {
                continue;
            }
            const Playback playback = Witness::play(keyModel, verdict.proof.environment, verdict.witness);
            QVERIFY(Witness::announcedAtEnd(playback).contains(row));
            if (playback.now() < maxScript) { // a script lasts no longer
                const QString script = Witness::toScript(playback, lists);
                QVERIFY(script.contains(QStringLiteral(" announce ")));
                QCOMPARE(ScriptOnDevice::difference(script, lists), QString());
                ++m_played;
            }
        }
    }
}

VIRTUAL_TIME_TEST_MAIN(WitnessTest)
#include "WitnessTest.moc"
