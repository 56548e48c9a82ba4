// SPDX-License-Identifier: MIT
#include "model/Witness.h"
#include "model/RowProofs.h"
#include "simulator/script/KeyScriptText.h"
#include "simulator/script/Transcript.h"
#include "tests/model/ListMaps.h"
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

} // namespace

/// Plays the witness of each row that is said to be announced on the daemon's classes, which must do exactly
/// what the model expects.
class WitnessTest : public DeviceTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_played = 0; }
    void witnessGoesAsExpected_data();
    void witnessGoesAsExpected();

private:
    void play(const KeyLists& lists, const Environment& environment);
    void playScript(const KeyLists& lists, const QString& text);

    QVector<KeyLists> m_lists;
    int m_played = 0;
};

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
            QVERIFY(verdict.kind != RowVerdict::Kind::NotProved);
            if (verdict.kind != RowVerdict::Kind::Announced) {
                continue;
            }
            const Playback playback = Witness::play(keyModel, verdict.proof.environment, verdict.witness);
            QVERIFY(Witness::announces(playback, row));
            if (playback.now() < maxScript) { // a script lasts no longer
                playScript(lists, Witness::toScript(playback, lists));
            }
            if (QTest::currentTestFailed()) {
                return;
            }
        }
    }
}

void WitnessTest::playScript(const KeyLists& lists, const QString& text)
{
    const ParsedScript parsed = parseKeyScript(text);
    QVERIFY2(parsed.faults.isEmpty(), qPrintable(text));
    const KeyScript& script = parsed.script;
    device = std::make_unique<VirtualDevice>();
    device->setModel(script.model);
    const auto files = ListMaps::filesOf(lists);
    for (auto it = files.begin(); it != files.end(); ++it) {
        device->setKeyList(it.key(), it.value());
    }
    // An unknown answer leaves the state unknown, like a state handler that does not answer.
    device->start(script.services.isEmpty() ? script.initialState : QStringLiteral("Dreaming"));
    device->take();
    for (const ScriptStep& step : script.steps) {
        device->waitUntil(step.at);
        if (step.kind != ScriptStep::Kind::Service) {
            device->play(step);
        }
    }
    device->waitUntil(script.duration());
    const QStringList difference =
        Transcript::difference(script, device->takeObservations(), Transcript::Clock::Virtual);
    QVERIFY2(difference.isEmpty(), qPrintable(difference.join('\n') + '\n' + text));
    QVERIFY(text.contains(QStringLiteral(" announce ")));
    ++m_played;
}

VIRTUAL_TIME_TEST_MAIN(WitnessTest)
#include "WitnessTest.moc"
