// SPDX-License-Identifier: MIT
#include "tests/whole/random/RandomScript.h"

#include "tests/whole/random/RandomCommands.h"
#include "tests/whole/random/RandomRows.h"

#include <ls/Identifiers.h>

#include <array>

#include <linux/input-event-codes.h>

using std::chrono::milliseconds;

namespace {

constexpr int minActions = 5;
constexpr int maxTap = 120;
constexpr int codeWithoutKey = 30;

/// Durations near the limits of the daemon and the kernel: the repetition, the window after a release, whole
/// seconds of long presses, the factory reset.
milliseconds duration(Dice& dice)
{
    constexpr std::array shortOnes{0, 1, 1, 10, 33, 50, 100, 200};
    constexpr std::array limits{249,  250,  251,  282,  283,  284,  1000, 1249, 1250, 1251,
                                1499, 1500, 1501, 2000, 2249, 2250, 2251, 4999, 5000, 5001};
    if (dice.oneIn(10)) {
        return milliseconds(dice.below(6000));
    }
    return milliseconds(dice.oneIn(2) ? dice.pick(shortOnes) : dice.pick(limits));
}

class Roller
{
public:
    explicit Roller(quint64 seed) : m_dice(seed) {}

    KeyScript roll(int maxActions)
    {
        m_script.model = m_dice.pick({QStringLiteral("Pellit"), QStringLiteral("Orvane")});
        m_script.initialState = state();
        m_script.rows = RandomRows::roll(m_dice);
        for (int count = minActions + m_dice.below(maxActions - minActions + 1); count > 0; --count) {
            addAction();
        }
        return m_script;
    }

private:
    QString state()
    {
        if (m_dice.oneIn(40)) {
            return QStringLiteral("Dreaming");
        }
        return m_dice.oneIn(2) ? ls::StateId::Idle : m_dice.pick(ls::StateId::meta.keys());
    }

    void addAction()
    {
        const int number = m_dice.below(100);
        if (number < 40) {
            addTap(milliseconds(m_dice.below(maxTap)));
        } else if (number < 50) {
            addTap(duration(m_dice));
        } else if (number < 60) {
            addChord();
        } else if (number < 66) {
            add(key(m_dice.oneIn(2) ? ScriptStep::Kind::Press : ScriptStep::Kind::Release));
        } else if (number < 78) {
            wait(duration(m_dice));
        } else {
            addOther(number);
        }
        if (m_dice.oneIn(2)) {
            wait(milliseconds(m_dice.below(maxTap)));
        }
    }

    void addOther(int number)
    {
        ScriptStep step;
        if (number < 85) {
            step.kind = ScriptStep::Kind::State;
            step.text = state();
        } else if (number < 93) {
            step.kind = ScriptStep::Kind::Command;
            step.command = RandomCommands::roll(m_dice);
        } else if (number < 96) {
            step.kind = ScriptStep::Kind::Console;
            step.text = RandomCommands::rollConsoleLine(m_dice);
        } else {
            step = record();
        }
        add(step);
    }

    void addTap(milliseconds time)
    {
        ScriptStep step = key(ScriptStep::Kind::Press);
        add(step);
        wait(time);
        step.kind = ScriptStep::Kind::Release;
        add(step);
    }

    void addChord()
    {
        ScriptStep held = key(ScriptStep::Kind::Press);
        add(held);
        wait(milliseconds(m_dice.below(maxTap)));
        addTap(milliseconds(m_dice.below(maxTap)));
        wait(milliseconds(m_dice.below(maxTap)));
        held.kind = ScriptStep::Kind::Release;
        add(held);
    }

    ScriptStep key(ScriptStep::Kind kind)
    {
        ScriptStep step;
        step.kind = kind;
        step.keyboard = m_dice.oneIn(5) ? 1 : 0;
        step.text = RandomRows::anyKey(m_dice);
        return step;
    }

    ScriptStep record()
    {
        ScriptStep step;
        step.kind = ScriptStep::Kind::Record;
        step.keyboard = m_dice.below(2);
        const int code = m_dice.oneIn(4) ? m_dice.pick({codeWithoutKey, KEY_UNKNOWN, 0})
                                         : ls::KeyId::meta.value(RandomRows::anyKey(m_dice));
        const int type = m_dice.oneIn(5) ? m_dice.pick({EV_SYN, EV_MSC, EV_SW}) : EV_KEY;
        step.record = {static_cast<quint16>(type), static_cast<quint16>(code),
                       m_dice.pick({0, 0, 1, 1, 2, 2, 3, -1})};
        return step;
    }

    void add(ScriptStep step)
    {
        step.at = m_script.end;
        m_script.steps.append(step);
    }

    void wait(milliseconds time) { m_script.end += time; }

    Dice m_dice;
    KeyScript m_script;
};

} // namespace

KeyScript RandomScript::roll(quint64 seed, int maxActions)
{
    return Roller(seed).roll(maxActions);
}
