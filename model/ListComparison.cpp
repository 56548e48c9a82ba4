// SPDX-License-Identifier: MIT
#include "model/ListComparison.h"

#include "model/EnvironmentStep.h"
#include "model/NodeStore.h"

#include <QHash>
#include <QMap>
#include <QStringList>

#include <algorithm>

using std::chrono::milliseconds;

namespace model {

namespace {

constexpr milliseconds movementInterval{50};
/// How many runs of a kind are played until one fits real times.
constexpr int maxTries = 50;

/// The rows of both lists, for the repetitions that matter to either.
RowTables longPressesOfBoth(const KeyLists& a, const KeyLists& b)
{
    KeyLists lists;
    lists.longPresses = a.longPresses + b.longPresses;
    return RowTables(lists);
}

/// Which of the two daemons an expiry concerns.
enum class Side : quint8 { Both, Old, New };

bool concerns(Input input, Side side)
{
    const auto own = static_cast<Side>(input.value);
    return !input.isExpiry() || own == Side::Both || own == side;
}

Input expiry(Input::Kind kind, Side side)
{
    Input input = Input::of(kind);
    input.value = static_cast<quint8>(side);
    return input;
}

QStringList textsOf(const QVector<Output>& outputs)
{
    QStringList texts;
    for (const Output& output : outputs) {
        texts.append(output.toText({}));
    }
    return texts;
}

/// Gives two daemons the same keys at the same times.
class PairPlayer
{
public:
    PairPlayer(const KeyModel& oldModel, const KeyModel& newModel, State start)
        : m_old(oldModel, start), m_new(newModel, start)
    {}

    void play(Input input);
    /// The first moment at which the outputs differ; nothing if none does.
    std::optional<Difference> difference(const ListComparison::Filter& filter) const;

private:
    void wait(milliseconds time);
    void move(Playback& playback, Input input) const;

    Playback m_old;
    Playback m_new;
    bool m_hasMoved = false;
};

void PairPlayer::play(Input input)
{
    if (input.isExpiry() || input.kind == Input::Kind::Repeat) {
        const Input timer = input.isExpiry() ? Input::of(input.kind) : input;
        const auto oldDue = m_old.due(timer);
        const auto newDue = m_new.due(timer);
        const auto due = concerns(input, Side::Old) && oldDue ? oldDue : newDue;
        if (due && *due > m_old.now()) {
            wait(*due - m_old.now());
        }
        return;
    }
    if (m_hasMoved) {
        wait(movementInterval);
    }
    m_hasMoved = true;
    move(m_old, input);
    move(m_new, input);
}

void PairPlayer::wait(milliseconds time)
{
    m_old.wait(time);
    m_new.wait(time);
}

void PairPlayer::move(Playback& playback, Input input) const
{
    if (input.kind == Input::Kind::Press) {
        playback.press(input.key(), input.device);
    } else if (input.kind == Input::Kind::Release) {
        playback.release(input.key(), input.device);
    } else {
        playback.take(input);
    }
}

/// The outputs that count, by their moments.
QMap<qint64, QVector<Output>> outputsOf(const Playback& playback, const ListComparison::Filter& filter)
{
    QMap<qint64, QVector<Output>> outputs;
    for (const PlayedStep& step : playback.steps()) {
        for (const Output& output : step.outputs) {
            if (filter(output)) {
                outputs[step.at.count()].append(output);
            }
        }
    }
    return outputs;
}

std::optional<Difference> PairPlayer::difference(const ListComparison::Filter& filter) const
{
    const auto oldOutputs = outputsOf(m_old, filter);
    const auto newOutputs = outputsOf(m_new, filter);
    QVector<qint64> moments = oldOutputs.keys().toVector() + newOutputs.keys().toVector();
    std::sort(moments.begin(), moments.end());
    for (const qint64 moment : qAsConst(moments)) {
        if (textsOf(oldOutputs.value(moment)) != textsOf(newOutputs.value(moment))) {
            return Difference{m_old.situation().state, m_old.steps(),           m_new.steps(), m_old.now(),
                              oldOutputs.value(moment), newOutputs.value(moment)};
        }
    }
    return {};
}

} // namespace

/// A node of the search: two daemons with the same person.
struct ListComparison::Pair
{
    Situation oldSituation;
    Situation newSituation;
    Surroundings surroundings;
};

/// The search for differences.
class ListComparison::Search
{
public:
    Search(const ListComparison& comparison, const Environment& environment, const Limits& limits);

    QVector<Difference> find();
    const Proof& proof() const { return m_proof; }

private:
    void allow(const Pair& pair, Inputs& inputs) const;
    void allowLongPresses(const Pair& pair, Inputs& inputs) const;
    Pair step(const Pair& pair, Input input);
    QStringList kindOf(const Pair& after) const;
    void confirm(quint32 from, Input input, const QStringList& kind);
    QStringList counted(const Effects& effects, const KeyModel& keyModel, State state) const;

    const ListComparison& m_comparison;
    Limits m_limits;
    RowTables m_rows;
    EnvironmentStep m_environment;
    NodeStore<Pair> m_nodes;
    Effects m_oldEffects;
    Effects m_newEffects;
    QVector<Difference> m_differences;
    QHash<QStringList, int> m_tries; // by kinds; `maxTries` when one is found
    Proof m_proof;
};

ListComparison::Search::Search(const ListComparison& comparison, const Environment& environment, const Limits& limits)
    : m_comparison(comparison)
    , m_limits(limits)
    , m_rows(longPressesOfBoth(comparison.m_old.lists(), comparison.m_new.lists()))
    , m_environment(environment, m_rows)
{
    m_proof.environment = environment;
}

QVector<Difference> ListComparison::Search::find()
{
    const QVector<Node> starts = m_environment.starts();
    for (const Node& node : starts) {
        m_nodes.insert({node.situation, node.situation, node.surroundings}, NodeStore<Pair>::none, {});
    }
    Inputs inputs;
    for (quint32 from = 0; from < m_nodes.size(); ++from) {
        const Pair before = m_nodes.at(from);
        allow(before, inputs);
        for (const Input input : qAsConst(inputs)) {
            const Pair after = step(before, input);
            ++m_proof.steps;
            const QStringList kind = kindOf(after);
            if (kind.isEmpty()) {
                m_nodes.insert(after, from, input);
            } else {
                confirm(from, input, kind);
            }
        }
        m_proof.situations = m_nodes.size();
        if (m_nodes.size() >= m_limits.situations || m_proof.steps >= m_limits.steps) {
            return m_differences;
        }
    }
    m_proof.isComplete = true;
    return m_differences;
}

/// The state, the window and the hold of FactoryReset are equal on both sides.
void ListComparison::Search::allow(const Pair& pair, Inputs& inputs) const
{
    Node node{pair.oldSituation, pair.surroundings};
    node.situation.longPressRuns = false;
    m_environment.allow(node, inputs);
    allowLongPresses(pair, inputs);
}

void ListComparison::Search::allowLongPresses(const Pair& pair, Inputs& inputs) const
{
    const Situation& a = pair.oldSituation;
    const Situation& b = pair.newSituation;
    const auto timeOf = [](const KeyModel& keyModel, const Situation& situation) {
        return keyModel.rows().milliseconds(keyModel.rows().longPressOf(situation.armedKey));
    };
    // Times that began with the same repetition end in their order.
    const bool isSame = a.longPressRuns && b.longPressRuns && a.armedKey == b.armedKey;
    const int lead = isSame ? timeOf(m_comparison.m_new, b) - timeOf(m_comparison.m_old, a) : 0;
    if (isSame && lead == 0) {
        inputs.append(expiry(Input::Kind::LongPressTime, Side::Both));
        return;
    }
    if (a.longPressRuns && lead >= 0) {
        inputs.append(expiry(Input::Kind::LongPressTime, Side::Old));
    }
    if (b.longPressRuns && lead <= 0) {
        inputs.append(expiry(Input::Kind::LongPressTime, Side::New));
    }
}

ListComparison::Pair ListComparison::Search::step(const Pair& pair, Input input)
{
    const Input plain = input.isExpiry() ? Input::of(input.kind) : input;
    const auto stepOne = [&](const KeyModel& keyModel, Situation situation, Side side, Effects& effects) {
        effects.clear();
        return concerns(input, side) ? keyModel.canonical(keyModel.step(situation, plain, effects)) : situation;
    };
    Pair after = pair;
    after.oldSituation = stepOne(m_comparison.m_old, pair.oldSituation, Side::Old, m_oldEffects);
    after.newSituation = stepOne(m_comparison.m_new, pair.newSituation, Side::New, m_newEffects);
    Node node{after.oldSituation, pair.surroundings};
    m_environment.follow(node, plain, m_oldEffects);
    after.surroundings = node.surroundings;
    return after;
}

/// The state and the outputs of both sides; nothing if the outputs are equal.
QStringList ListComparison::Search::kindOf(const Pair& after) const
{
    const State state = after.oldSituation.state;
    const QStringList oldTexts = counted(m_oldEffects, m_comparison.m_old, state);
    const QStringList newTexts = counted(m_newEffects, m_comparison.m_new, state);
    return oldTexts == newTexts ? QStringList()
                                : QStringList(Alphabet::nameOf(state)) + oldTexts + QStringList(QString()) + newTexts;
}

QStringList ListComparison::Search::counted(const Effects& effects, const KeyModel& keyModel, State state) const
{
    const bool isPerceived = std::any_of(effects.cbegin(), effects.cend(),
                                         [](const Effect& effect) { return Rules::isPerceived(effect.rule); });
    if (!isPerceived) {
        return {};
    }
    QVector<Output> outputs = Outputs::of(effects, keyModel.lists(), state);
    const auto isLeftOut = [this](const Output& output) { return !m_comparison.m_filter(output); };
    outputs.erase(std::remove_if(outputs.begin(), outputs.end(), isLeftOut), outputs.end());
    return textsOf(outputs);
}

/// Plays the run with real times, which may not fit it, and keeps the first that fits of each kind.
void ListComparison::Search::confirm(quint32 from, Input input, const QStringList& kind)
{
    int& tries = m_tries[kind];
    if (++tries > maxTries) {
        return;
    }
    QVector<Input> inputs{input};
    for (; m_nodes.parent(from) != NodeStore<Pair>::none; from = m_nodes.parent(from)) {
        inputs.prepend(m_nodes.input(from));
    }
    PairPlayer player(m_comparison.m_old, m_comparison.m_new, m_nodes.at(from).oldSituation.state);
    for (const Input each : qAsConst(inputs)) {
        player.play(each);
    }
    if (const auto difference = player.difference(m_comparison.m_filter)) {
        tries = maxTries;
        m_differences.append(*difference);
    }
}

ListComparison::ListComparison(const KeyLists& oldLists, const KeyLists& newLists, const Filter& filter)
    : m_old(oldLists), m_new(newLists), m_filter(filter)
{}

QVector<Difference> ListComparison::find(const Environment& environment, const Limits& limits)
{
    Search search(*this, environment, limits);
    const QVector<Difference> differences = search.find();
    m_proof = search.proof();
    return differences;
}

} // namespace model
