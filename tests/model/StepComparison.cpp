// SPDX-License-Identifier: MIT
#include "tests/model/StepComparison.h"

#include "model/Explorer.h"
#include "model/KeyFacts.h"
#include "model/Output.h"
#include "tests/model/DaemonStep.h"
#include "tests/whole/random/Dice.h"

#include <algorithm>

using namespace model;

namespace {

QString nameOf(Input input)
{
    static const char* const kinds[] = {"Press",       "Release",   "Repeat",
                                        "WindowEnd",   "LongPress", "FactoryReset",
                                        "ChangeState", "StartTest", "SimulateCombination",
                                        "Shortcut",    "Tick"};
    const QString value = input.kind == Input::Kind::ChangeState ? Alphabet::nameOf(input.newState())
                                                                 : Alphabet::nameOf(input.key());
    return QString::fromLatin1(kinds[static_cast<int>(input.kind)]) + ' ' + value;
}

QString textOf(const Situation& now)
{
    const auto name = [](Key key) { return Alphabet::nameOf(key); };
    const auto flag = [](bool isSet, const char* text) { return QLatin1String(isSet ? text : ""); };
    return QStringLiteral("%1 last:%2 held:%3 first:%4 sequence:%5 armed:%6%7%8%9")
               .arg(Alphabet::nameOf(now.state), name(now.lastKey), name(now.heldKey), name(now.firstKey))
               .arg(now.sequence)
               .arg(name(now.armedKey), flag(now.longPressRuns, " (runs)"), flag(now.windowRuns, " window"),
                    flag(now.gestureSeen, " gesture")) +
           flag(now.testMode, " test") + flag(now.factoryResetRuns, " reset");
}

/// Without the senders of announcements, which are not part of the model.
QStringList textsOf(const QVector<Output>& outputs)
{
    QStringList texts;
    for (const Output& output : outputs) {
        texts.append(
            output.kind == Output::Kind::Announce
                ? (QStringList{QStringLiteral("announce"), output.text, output.receiver} + output.keys)
                      .join(QLatin1Char(' '))
                : output.toText({}));
    }
    return texts;
}

quint32 count(const QVector<Output>& outputs, Output::Kind kind)
{
    return static_cast<quint32>(std::count_if(outputs.begin(), outputs.end(),
                                              [kind](const Output& output) { return output.kind == kind; }));
}

/// The parts in which two situations differ.
Parts partsThatDiffer(const Situation& a, const Situation& b)
{
    Parts parts = 0;
    const auto compare = [&parts](bool differs, Part part) {
        parts = static_cast<Parts>(parts | (differs ? 1U << static_cast<unsigned>(part) : 0U));
    };
    compare(a.state != b.state, Part::State);
    compare(a.lastKey != b.lastKey, Part::LastKey);
    compare(a.heldKey != b.heldKey, Part::HeldKey);
    compare(a.firstKey != b.firstKey, Part::FirstKey);
    compare(a.sequence != b.sequence, Part::Sequence);
    compare(a.armedKey != b.armedKey || a.longPressRuns != b.longPressRuns, Part::ArmedKey);
    compare(a.gestureSeen != b.gestureSeen, Part::GestureSeen);
    compare(a.testMode != b.testMode, Part::TestMode);
    compare(a.windowRuns != b.windowRuns, Part::Window);
    compare(a.factoryResetRuns != b.factoryResetRuns, Part::FactoryReset);
    return parts;
}

Environment withServices()
{
    Environment environment;
    environment.kind = Environment::Kind::Services;
    return environment;
}

class Comparison
{
public:
    explicit Comparison(const KeyLists& lists) : m_lists(lists), m_model(lists), m_daemon(lists) {}

    StepComparison::Result all();
    StepComparison::Result walk(int pairs, quint64 seed);

private:
    Inputs usualInputs() const;
    void compare(const Situation& canonical, Input input);
    Situation anyOf(const Situation& canonical);
    QString differenceOf(const Situation& before, Input input);
    QString differenceOfCanonical(const Situation& canonical, const Situation& after, Input input);
    QString differenceOfDeliveries(State state) const;
    QString differenceOfEffects(const Situation& before, const Situation& after, const QString& armed) const;

    KeyLists m_lists;
    KeyModel m_model;
    DaemonStep m_daemon;
    Dice m_dice{1};
    Effects m_effects;
    StepComparison::Result m_result;
};

StepComparison::Result Comparison::all()
{
    Explorer explorer(m_model, withServices());
    const Proof proof = explorer.explore([&](const Explorer::Transition& transition) {
        compare(transition.before.situation, transition.input);
        return m_result.difference.isEmpty() ? Explorer::Next::Continue : Explorer::Next::Stop;
    });
    m_result.situations = proof.situations;
    return m_result;
}

StepComparison::Result Comparison::walk(int pairs, quint64 seed)
{
    m_dice = Dice(seed);
    const EnvironmentStep around(withServices(), m_model.rows());
    const Inputs usual = usualInputs();
    Node node = m_dice.pick(around.starts());
    Inputs inputs;
    for (int i = 0; i < pairs && m_result.difference.isEmpty(); ++i) {
        around.allow(node, inputs);
        const auto isUsual = [&usual](Input input) { return input.isExpiry() || usual.contains(input); };
        Input input = m_dice.pick(inputs);
        for (int tries = 0; tries < 3 && !isUsual(input); ++tries) {
            input = m_dice.pick(inputs);
        }
        compare(m_model.canonical(node.situation), input);
        node.situation = m_model.step(node.situation, input, m_effects);
    }
    return m_result;
}

/// The keys of the rows, and Menu and Help, which have special rules.
Inputs Comparison::usualInputs() const
{
    QVector<Key> keys{KeyFacts::menu, KeyFacts::help};
    for (const RowId row : m_lists.ids()) {
        for (const QString& name : m_lists.row(row).keys()) {
            keys.append(Alphabet::keyOf(name).value_or(KeyFacts::menu));
        }
    }
    Inputs inputs;
    for (const Key key : qAsConst(keys)) {
        inputs.append(Input::press(key));
        inputs.append(Input::release(key));
        inputs.append(Input::repeat(key));
    }
    return inputs;
}

void Comparison::compare(const Situation& canonical, Input input)
{
    ++m_result.pairs;
    const Situation before = anyOf(canonical);
    QString difference = differenceOf(before, input);
    if (difference.isEmpty()) {
        difference = differenceOfCanonical(canonical, m_model.step(before, input, m_effects), input);
    }
    if (!difference.isEmpty()) {
        m_result.difference = QStringLiteral("%1 in %2: %3").arg(nameOf(input), textOf(before), difference);
    }
}

/// A random situation with this canonical form.
Situation Comparison::anyOf(const Situation& canonical)
{
    Situation situation = canonical;
    if (situation.gestureSeen && situation.lastKey == Key::None) {
        situation.lastKey = m_dice.pick(Alphabet::keys());
    }
    return m_model.canonical(situation) == canonical ? situation : canonical;
}

QString Comparison::differenceOf(const Situation& before, Input input)
{
    const Situation expected = m_model.step(before, input, m_effects);
    const QStringList expectedOutputs = textsOf(Outputs::of(m_effects, m_lists, expected.state));
    const auto actual = m_daemon.step(before, input, static_cast<quint32>(m_dice.below(1 << 20)));
    if (actual.situation != expected) {
        return QStringLiteral("daemon %1, model %2").arg(textOf(actual.situation), textOf(expected));
    }
    if (actual.outputs != expectedOutputs) {
        return QStringLiteral("daemon [%1], model [%2]")
            .arg(actual.outputs.join(QStringLiteral("; ")), expectedOutputs.join(QStringLiteral("; ")));
    }
    return differenceOfEffects(before, expected, actual.armedAction);
}

/// All situations with the same canonical form must behave alike.
QString Comparison::differenceOfCanonical(const Situation& canonical, const Situation& after, Input input)
{
    Effects effects;
    const Situation other = m_model.step(canonical, input, effects);
    const bool isEqual = m_model.canonical(other) == m_model.canonical(after) &&
                         textsOf(Outputs::of(effects, m_lists, other.state)) ==
                             textsOf(Outputs::of(m_effects, m_lists, after.state));
    return isEqual ? QString() : QStringLiteral("the canonical situation behaves differently");
}

/// The effects must be right about the armed row, the changed parts and what is perceived.
QString Comparison::differenceOfEffects(const Situation& before, const Situation& after,
                                        const QString& armed) const
{
    Parts written = 0;
    bool isPerceived = false;
    for (const Effect& effect : m_effects) {
        written = static_cast<Parts>(written | Rules::written(effect.rule));
        isPerceived = isPerceived || Rules::isPerceived(effect.rule);
        if (effect.rule == Rule::LongPressArms && m_lists.row(effect.row).eAction() != armed) {
            return QStringLiteral("the daemon times %1").arg(armed);
        }
    }
    if ((partsThatDiffer(before, after) & ~written) != 0) {
        return QStringLiteral("no effect names a part that changes");
    }
    const QVector<Output> outputs = Outputs::of(m_effects, m_lists, after.state);
    if (isPerceived != (count(outputs, Output::Kind::Speak) + count(outputs, Output::Kind::Announce) > 0)) {
        return QStringLiteral("the effects are wrong about what is perceived");
    }
    return differenceOfDeliveries(after.state);
}

/// The effects must count the announced and the refused actions of rows.
QString Comparison::differenceOfDeliveries(State state) const
{
    Effects completions;
    quint32 announced = 0;
    quint32 logged = 0;
    for (const Effect& effect : m_effects) {
        const bool isDelivery = effect.row.index >= 0;
        if (effect.rule == Rule::Announces) {
            announced += effect.count;
        } else if (effect.rule == Rule::RefusesState || effect.rule == Rule::DropsReceiver) {
            logged += effect.count;
        } else if (isDelivery) {
            completions.append(effect);
        }
    }
    const QVector<Output> outputs = Outputs::of(completions, m_lists, state);
    return count(outputs, Output::Kind::Announce) == announced && count(outputs, Output::Kind::Log) == logged
               ? QString()
               : QStringLiteral("the effects are wrong about the outcome of an action");
}

} // namespace

StepComparison::Result StepComparison::all(const KeyLists& lists)
{
    return Comparison(lists).all();
}

StepComparison::Result StepComparison::walk(const KeyLists& lists, int pairs, quint64 seed)
{
    return Comparison(lists).walk(pairs, seed);
}
