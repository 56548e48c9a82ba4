// SPDX-License-Identifier: MIT
#include "model/ListComparison.h"

#include "model/EnvironmentStep.h"
#include "model/NodeStore.h"
#include "model/Witness.h"

#include <QHash>
#include <QMap>
#include <QSet>
#include <QStringList>

#include <algorithm>
#include <iterator>
#include <numeric>

using std::chrono::milliseconds;

namespace model {

namespace {

/// How many runs of a kind are played until one fits real times.
constexpr int maxTries = 50;
/// Runs with longer waits are not played: a key without delay that is held for days acts millions of times.
constexpr milliseconds maxWait = std::chrono::hours(1);
/// Between two movements of a run. A timer that ends too early with one pause may not with a longer one.
constexpr milliseconds pauses[] = {Witness::movementInterval, milliseconds(200), milliseconds(500),
                                   milliseconds(1000)};

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

/// The perceived effects.
Effects perceivedOf(const Effects& effects)
{
    Effects perceived;
    std::copy_if(effects.begin(), effects.end(), std::back_inserter(perceived),
                 [](const Effect& effect) { return Rules::isPerceived(effect.rule); });
    return perceived;
}

/// Whether two steps do the same and no row takes part. Most steps do, and their outputs need no texts.
bool areAlikeWithoutRows(const Effects& a, const Effects& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const Effect& one, const Effect& other) {
        return one.rule == other.rule && one.key == other.key && one.row.index < 0 && other.row.index < 0;
    });
}

bool hasChanged(const QVector<PlayedStep>& steps)
{
    return std::any_of(steps.begin(), steps.end(),
                       [](const PlayedStep& step) { return step.input.kind == Input::Kind::ChangeState; });
}

QStringList textsWithoutKeys(const QVector<Output>& outputs)
{
    QStringList texts;
    for (const Output& output : outputs) {
        const bool isAnnounced = output.kind == Output::Kind::Announce;
        texts.append(isAnnounced ? output.text + QLatin1Char(' ') + output.receiver
                                 : QString::number(static_cast<int>(output.kind)));
    }
    return texts;
}

quint64 sizeOf(const QStringList& texts)
{
    return std::accumulate(texts.begin(), texts.end(), quint64(0),
                           [](quint64 sum, const QString& text) { return sum + quint64(text.size()); });
}

/// What makes two differences alike. After a change of state, each key could make one more.
QStringList kindOf(State state, const QVector<Output>& was, const QVector<Output>& is, bool hasChanged)
{
    const auto texts = hasChanged ? textsWithoutKeys : textsOf;
    return QStringList(Alphabet::nameOf(state)) + texts(was) + QStringList(QString()) + texts(is);
}

/// Gives two daemons the same keys at the same times.
class PairPlayer
{
public:
    /// `pause` is the time between two movements.
    PairPlayer(const KeyModel& oldModel, const KeyModel& newModel, State start, milliseconds pause)
        : m_old(oldModel, start), m_new(newModel, start), m_pause(pause)
    {}

    void play(Input input);
    /// The first moment at which the outputs differ; nothing if none does.
    std::optional<Difference> difference(const ListComparison::Filter& filter) const;

private:
    void waitFor(Input input);
    void wait(milliseconds time);
    void move(Playback& playback, Input input) const;

    Playback m_old;
    Playback m_new;
    milliseconds m_pause;
    bool m_hasMoved = false;
    bool m_isTooLong = false;
};

void PairPlayer::play(Input input)
{
    if (m_isTooLong) {
        return;
    }
    if (input.isExpiry() || input.kind == Input::Kind::Repeat) {
        waitFor(input);
        return;
    }
    if (m_hasMoved) {
        wait(m_pause);
    }
    m_hasMoved = true;
    move(m_old, input);
    move(m_new, input);
}

void PairPlayer::waitFor(Input input)
{
    const Input timer = input.isExpiry() ? Input::of(input.kind) : input;
    const auto oldDue = concerns(input, Side::Old) ? m_old.due(timer) : std::nullopt;
    const auto newDue = concerns(input, Side::New) ? m_new.due(timer) : std::nullopt;
    for (const auto& due : {oldDue, newDue}) {
        if (!due || *due <= m_old.now()) {
            continue;
        }
        if (*due - m_old.now() > maxWait) {
            m_isTooLong = true;
            return;
        }
        wait(*due - m_old.now());
    }
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

QVector<PlayedStep> stepsUntil(const Playback& playback, milliseconds end)
{
    QVector<PlayedStep> steps = playback.steps();
    while (!steps.isEmpty() && steps.last().at > end) {
        steps.removeLast();
    }
    return steps;
}

std::optional<Difference> PairPlayer::difference(const ListComparison::Filter& filter) const
{
    if (m_isTooLong) {
        return {};
    }
    const auto oldOutputs = outputsOf(m_old, filter);
    const auto newOutputs = outputsOf(m_new, filter);
    QVector<qint64> moments = oldOutputs.keys().toVector() + newOutputs.keys().toVector();
    std::sort(moments.begin(), moments.end());
    for (const qint64 moment : qAsConst(moments)) {
        const auto was = oldOutputs.value(moment);
        const auto is = newOutputs.value(moment);
        if (textsOf(was) != textsOf(is)) {
            const milliseconds end(moment);
            const auto steps = stepsUntil(m_old, end);
            const State state = steps.isEmpty() ? m_old.situation().state : steps.last().after.state;
            return Difference{state, steps, stepsUntil(m_new, end), end, was, is};
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
    /// Whether the same repetition began the long presses of both.
    quint64 isTogether = 0;
};

/// The search for differences.
class ListComparison::Search
{
public:
    Search(const ListComparison& comparison, const Environment& environment, const Limits& limits);

    QVector<Difference> find();
    const Proof& proof() const { return m_proof; }

private:
    void explore();
    bool followKeys(quint32 begin);
    void followStates(quint32 from);
    void follow(quint32 from, Input input);
    bool isAtLimit() const;
    void allow(const Pair& pair, Inputs& inputs) const;
    void allowLongPresses(const Pair& pair, Inputs& inputs) const;
    Pair step(const Pair& pair, Input input);
    QStringList differenceIn(State state);
    void confirm(quint32 from, Input input, const QStringList& kind);
    void keep(const std::optional<Difference>& difference);
    bool isConfirmed() const;
    QVector<Output> counted(const Effects& effects, const KeyModel& keyModel, State state) const;

    const ListComparison& m_comparison;
    Limits m_limits;
    RowTables m_rows;
    EnvironmentStep m_environment;
    NodeStore<Pair> m_nodes;
    Effects m_oldEffects;
    Effects m_newEffects;
    bool m_hasChanged = false;
    QVector<Difference> m_differences;
    QHash<QStringList, int> m_tries; // by kinds
    QSet<QStringList> m_found;       // the kinds of the differences
    Proof m_proof;
    quint64 m_extraSteps = 0; // for steps with many or different effects
};

ListComparison::Search::Search(const ListComparison& comparison, const Environment& environment,
                               const Limits& limits)
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
        m_nodes.insert({node.situation, node.situation, node.surroundings}, NodeStore<Pair>::noNode, {});
    }
    explore();
    m_proof.situations = m_nodes.size();
    m_proof.isComplete = m_proof.isComplete && isConfirmed();
    return m_differences;
}

/// Each round visits the pairs after one more change of state, so that all runs with fewer changes come
/// first.
void ListComparison::Search::explore()
{
    quint32 begin = 0;
    for (int changes = 0; followKeys(begin); ++changes) {
        if (changes == m_proof.environment.maxStateChanges) {
            m_proof.isComplete = true;
            return;
        }
        m_hasChanged = true;
        for (const quint32 end = m_nodes.size(); begin < end && !isAtLimit(); ++begin) {
            followStates(begin);
        }
    }
}

/// Visits all pairs from `begin` on and those that keys lead to. Returns false at the limit.
bool ListComparison::Search::followKeys(quint32 begin)
{
    Inputs inputs;
    for (quint32 from = begin; from < m_nodes.size() && !isAtLimit(); ++from) {
        allow(m_nodes.at(from), inputs);
        for (const Input input : qAsConst(inputs)) {
            follow(from, input);
        }
    }
    return !isAtLimit();
}

void ListComparison::Search::followStates(quint32 from)
{
    for (const State state : Alphabet::states()) {
        // A notification never makes the state unknown.
        if (state != State::Undefined && state != m_nodes.at(from).oldSituation.state) {
            follow(from, Input::state(state));
        }
    }
}

void ListComparison::Search::follow(quint32 from, Input input)
{
    const Pair after = step(m_nodes.at(from), input);
    ++m_proof.steps;
    const QStringList kind = differenceIn(after.oldSituation.state);
    if (kind.isEmpty()) {
        m_nodes.insert(after, from, input);
    } else {
        confirm(from, input, kind);
    }
}

bool ListComparison::Search::isAtLimit() const
{
    return m_nodes.size() >= m_limits.situations || m_proof.steps + m_extraSteps >= m_limits.steps;
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
    const auto add = [&inputs](Side side) { inputs.append(expiry(Input::Kind::LongPressTime, side)); };
    const auto timeOf = [](const KeyModel& keyModel, const Situation& situation) {
        return keyModel.rows().milliseconds(keyModel.rows().longPressOf(situation.armedKey));
    };
    const Situation& a = pair.oldSituation;
    const Situation& b = pair.newSituation;
    if (!a.longPressRuns || !b.longPressRuns) {
        if (a.longPressRuns || b.longPressRuns) {
            add(a.longPressRuns ? Side::Old : Side::New);
        }
        return;
    }
    const int oldTime = timeOf(m_comparison.m_old, a);
    const int newTime = timeOf(m_comparison.m_new, b);
    if (pair.isTogether && oldTime == newTime) {
        add(Side::Both);
        return;
    }
    const bool isOldShorter = oldTime < newTime;
    add(isOldShorter ? Side::Old : Side::New);
    // Times that began together end in their order.
    if (!pair.isTogether) {
        add(isOldShorter ? Side::New : Side::Old);
    }
}

ListComparison::Pair ListComparison::Search::step(const Pair& pair, Input input)
{
    const Input plain = input.isExpiry() ? Input::of(input.kind) : input;
    const auto stepOne = [&](const KeyModel& keyModel, Situation situation, Side side, Effects& effects) {
        effects.clear();
        return concerns(input, side) ? keyModel.canonical(keyModel.step(situation, plain, effects))
                                     : situation;
    };
    Pair after = pair;
    after.oldSituation = stepOne(m_comparison.m_old, pair.oldSituation, Side::Old, m_oldEffects);
    after.newSituation = stepOne(m_comparison.m_new, pair.newSituation, Side::New, m_newEffects);
    Node node{after.oldSituation, pair.surroundings};
    m_environment.follow(node, plain, m_oldEffects);
    after.surroundings = node.surroundings;
    const bool wereStopped = !pair.oldSituation.longPressRuns && !pair.newSituation.longPressRuns;
    const bool bothRun = after.oldSituation.longPressRuns && after.newSituation.longPressRuns;
    after.isTogether = bothRun && (pair.isTogether || wereStopped) ? 1 : 0;
    return after;
}

/// The kind of the difference that the last step makes; nothing if the outputs are equal.
QStringList ListComparison::Search::differenceIn(State state)
{
    // In the time of a step, so many effects are compared, or so many characters of outputs are written.
    constexpr int effectsPerStep = 8;
    constexpr int charactersPerStep = 5;
    const KeyModel& oldModel = m_comparison.m_old;
    const KeyModel& newModel = m_comparison.m_new;
    const Effects oldPerceived = perceivedOf(m_oldEffects);
    const Effects newPerceived = perceivedOf(m_newEffects);
    if (oldModel.lists().isOrvane == newModel.lists().isOrvane &&
        areAlikeWithoutRows(oldPerceived, newPerceived)) {
        m_extraSteps += quint64(m_oldEffects.size() + m_newEffects.size()) / effectsPerStep;
        return {};
    }
    const auto was = oldPerceived.isEmpty() ? QVector<Output>() : counted(m_oldEffects, oldModel, state);
    const auto is = newPerceived.isEmpty() ? QVector<Output>() : counted(m_newEffects, newModel, state);
    const QStringList oldTexts = textsOf(was);
    const QStringList newTexts = textsOf(is);
    m_extraSteps += (sizeOf(oldTexts) + sizeOf(newTexts)) / charactersPerStep;
    return oldTexts == newTexts ? QStringList() : kindOf(state, was, is, m_hasChanged);
}

QVector<Output> ListComparison::Search::counted(const Effects& effects, const KeyModel& keyModel,
                                                State state) const
{
    QVector<Output> outputs = Outputs::of(effects, keyModel.lists(), state);
    const auto isLeftOut = [this](const Output& output) { return !m_comparison.m_filter(output); };
    outputs.erase(std::remove_if(outputs.begin(), outputs.end(), isLeftOut), outputs.end());
    return outputs;
}

/// Plays the run with real times, which may not fit it or may show another difference before.
void ListComparison::Search::confirm(quint32 from, Input input, const QStringList& kind)
{
    if (++m_tries[kind] > maxTries || m_found.contains(kind)) {
        return;
    }
    QVector<Input> inputs{input};
    for (; m_nodes.parent(from) != NodeStore<Pair>::noNode; from = m_nodes.parent(from)) {
        inputs.prepend(m_nodes.input(from));
    }
    const State start = m_nodes.at(from).oldSituation.state;
    for (const milliseconds pause : pauses) {
        PairPlayer player(m_comparison.m_old, m_comparison.m_new, start, pause);
        for (const Input each : qAsConst(inputs)) {
            player.play(each);
        }
        keep(player.difference(m_comparison.m_filter));
        if (m_found.contains(kind)) {
            return;
        }
    }
}

void ListComparison::Search::keep(const std::optional<Difference>& difference)
{
    if (!difference) {
        return;
    }
    const QStringList kind = kindOf(difference->state, difference->oldOutputs, difference->newOutputs,
                                    hasChanged(difference->oldSteps));
    if (!m_found.contains(kind)) {
        m_found.insert(kind);
        m_differences.append(*difference);
    }
}

/// Whether a run was found for each kind.
bool ListComparison::Search::isConfirmed() const
{
    const auto kinds = m_tries.keys();
    return std::all_of(kinds.begin(), kinds.end(),
                       [this](const QStringList& kind) { return m_found.contains(kind); });
}

ListComparison::ListComparison(const KeyLists& oldLists, const KeyLists& newLists, const Filter& filter)
    : m_old(oldLists)
    , m_new(newLists)
    , m_filter([filter](const Output& output) { return output.kind != Output::Kind::Log && filter(output); })
{}

QVector<Difference> ListComparison::find(const Environment& environment, const Limits& limits)
{
    Search search(*this, environment, limits);
    const QVector<Difference> differences = search.find();
    m_proof = search.proof();
    return differences;
}

} // namespace model
