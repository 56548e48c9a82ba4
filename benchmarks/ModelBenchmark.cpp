// SPDX-License-Identifier: MIT
// Measures the model of the keys against the number of rows: the proof of all rows, one recogniser at a time
// and the product of all recognisers, and a step of the model next to the same step of the daemon's classes,
// the reference. Needs a private root, because the router opens input devices.
#include "model/RowProofs.h"
#include "tests/model/DaemonStep.h"
#include "tests/model/ListMaps.h"
#include "tests/virtual/VirtualDevice.h"
#include "tests/whole/random/Dice.h"

#include <ls/Identifiers.h>

#include <benchmark/benchmark.h>

#include <array>

using namespace model;

namespace {

constexpr int mixedSteps = 4096;

/// `count` rows: a third for each recogniser, and one combination of three keys after the pairs.
KeyLists listsOf(int count)
{
    Dice dice(7);
    const auto key = [&dice] { return Alphabet::nameOf(dice.pick(Alphabet::keys().mid(0, 15))); };
    const auto row = [&](const QStringList& keys, int index) {
        const QString state = dice.pick({ls::StateId::Idle, ls::StateId::Print, ls::StateId::PrintOff});
        return KeyEntry(keys, QStringLiteral("Action%1").arg(index), 2000, ls::ServiceId::UserMenu, state);
    };
    KeyLists lists;
    for (int i = 0; i < count / 3; ++i) {
        lists.longPresses.append(row({key()}, i));
        lists.combinations.append(row({key(), key()}, i));
        lists.shortcuts.append(row({key(), key()}, i));
    }
    lists.combinations.append(row({key(), key(), key()}, count));
    return lists;
}

Explorer::Next proceed(const Explorer::Transition&)
{
    return Explorer::Next::Continue;
}

void report(benchmark::State& state, quint64 situations, quint64 steps, size_t bytes)
{
    state.counters["situations"] = static_cast<double>(situations);
    state.counters["steps"] = static_cast<double>(steps);
    state.counters["stepsPerSecond"] =
        benchmark::Counter(static_cast<double>(steps), benchmark::Counter::kIsIterationInvariantRate);
    state.counters["MiB"] = static_cast<double>(bytes) / (1 << 20);
}

void oneRecogniserAtATime(benchmark::State& state)
{
    const KeyLists lists = listsOf(int(state.range(0)));
    quint64 situations = 0;
    quint64 steps = 0;
    size_t bytes = 0;
    while (state.KeepRunning()) {
        situations = steps = bytes = 0;
        for (const List list : {List::LongPresses, List::Combinations, List::Shortcuts}) {
            const KeyModel keyModel(lists.only(list), KeyModel::Scope::RowsOfOneList);
            Explorer explorer(keyModel, {});
            const Proof proof = explorer.explore(proceed);
            situations += proof.situations;
            steps += proof.steps;
            bytes = qMax(bytes, explorer.nodes().memory());
        }
    }
    report(state, situations, steps, bytes);
}

void allRecognisers(benchmark::State& state)
{
    const KeyModel keyModel(listsOf(int(state.range(0))));
    Proof proof;
    size_t bytes = 0;
    while (state.KeepRunning()) {
        Explorer explorer(keyModel, {});
        proof = explorer.explore(proceed);
        bytes = explorer.nodes().memory();
    }
    report(state, proof.situations, proof.steps, bytes);
}

/// All verdicts with their witnesses, for a person with two fingers.
void verdicts(benchmark::State& state)
{
    const KeyLists lists = listsOf(int(state.range(0)));
    Environment environment;
    environment.kind = Environment::Kind::Person;
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(RowProofs(lists, environment));
    }
}

/// Pairs of a situation and an input, in the order of a search.
QVector<std::pair<Situation, Input>> pairsOf(const KeyModel& keyModel)
{
    QVector<std::pair<Situation, Input>> pairs;
    Explorer explorer(keyModel, {});
    explorer.explore([&](const Explorer::Transition& transition) {
        pairs.append({transition.before.situation, transition.input});
        return pairs.size() < mixedSteps ? Explorer::Next::Continue : Explorer::Next::Stop;
    });
    return pairs;
}

void stepOfTheModel(benchmark::State& state)
{
    const KeyModel keyModel(listsOf(int(state.range(0))));
    const auto pairs = pairsOf(keyModel);
    Effects effects;
    int i = 0;
    while (state.KeepRunning()) {
        const auto& [situation, input] = pairs.at(i++ % pairs.size());
        benchmark::DoNotOptimize(keyModel.step(situation, input, effects));
    }
}

void stepOfTheDaemon(benchmark::State& state)
{
    const KeyLists lists = listsOf(int(state.range(0)));
    const auto pairs = pairsOf(KeyModel(lists));
    DaemonStep daemon(lists);
    int i = 0;
    while (state.KeepRunning()) {
        const auto& [situation, input] = pairs.at(i++ % pairs.size());
        benchmark::DoNotOptimize(daemon.step(situation, input, 0));
    }
}

BENCHMARK(oneRecogniserAtATime)->Arg(10)->Arg(30)->Arg(100)->Arg(300)->Arg(1000);
BENCHMARK(verdicts)->Arg(10)->Arg(30)->Arg(100)->Arg(300)->Arg(1000);
BENCHMARK(allRecognisers)->Arg(10)->Arg(30)->Arg(100);
BENCHMARK(stepOfTheModel)->Arg(100);
BENCHMARK(stepOfTheDaemon)->Arg(100);

} // namespace

int main(int argc, char* argv[])
{
    VirtualDevice::clock();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
