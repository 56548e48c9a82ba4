// SPDX-License-Identifier: MIT
#include "tests/whole/random/Shrinker.h"

#include <algorithm>

using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

class Shrinking
{
public:
    Shrinking(const KeyScript& script, const Shrinker::Shows& shows) : m_script(script), m_shows(shows) {}

    KeyScript shrink()
    {
        while (dropSteps() | dropRows() | dropKeys() | shortenWaits()) {
        }
        return m_script;
    }

private:
    bool keepIfShown(const KeyScript& candidate)
    {
        if (!m_shows(candidate)) {
            return false;
        }
        m_script = candidate;
        return true;
    }

    bool dropSteps()
    {
        bool changed = false;
        for (int count = std::max(1, m_script.steps.size() / 2); count > 0; count /= 2) {
            for (int first = m_script.steps.size() - count; first >= 0; --first) {
                KeyScript shorter = m_script;
                shorter.steps.remove(first, std::min(count, shorter.steps.size() - first));
                changed = (first + count <= m_script.steps.size() && keepIfShown(shorter)) || changed;
            }
        }
        return changed;
    }

    bool dropRows()
    {
        bool changed = false;
        for (int i = m_script.rows.size() - 1; i >= 0 && m_script.rows.size() > 1; --i) {
            KeyScript shorter = m_script;
            shorter.rows.removeAt(i);
            changed = keepIfShown(shorter) || changed;
        }
        return changed;
    }

    bool dropKeys()
    {
        bool changed = false;
        for (int row = 0; row < m_script.rows.size(); ++row) {
            for (int i = m_script.rows.at(row).keys.size() - 1;
                 i >= 0 && m_script.rows.at(row).keys.size() > 1; --i) {
                KeyScript shorter = m_script;
                shorter.rows[row].keys.removeAt(i);
                changed = keepIfShown(shorter) || changed;
            }
        }
        return changed;
    }

    bool shortenWaits()
    {
        bool changed = false;
        for (int i = 0; i <= m_script.steps.size(); ++i) {
            while (shortenWait(i)) {
                changed = true;
            }
        }
        return changed;
    }

    /// Shortens the time before the step `index`, or after the last step.
    bool shortenWait(int index)
    {
        const milliseconds begin = index > 0 ? m_script.steps.at(index - 1).at : 0ms;
        const milliseconds end = index < m_script.steps.size() ? m_script.steps.at(index).at : m_script.end;
        const milliseconds wait = end - begin;
        for (const milliseconds cut : {wait, wait / 2, wait / 8, wait / 32, 1ms}) {
            if (cut > 0ms && cut <= wait && keepIfShown(withCut(index, cut))) {
                return true;
            }
        }
        return false;
    }

    KeyScript withCut(int index, milliseconds cut) const
    {
        KeyScript shorter = m_script;
        for (int i = index; i < shorter.steps.size(); ++i) {
            shorter.steps[i].at -= cut;
        }
        shorter.end -= cut;
        return shorter;
    }

    KeyScript m_script;
    const Shrinker::Shows& m_shows;
};

} // namespace

KeyScript Shrinker::shrink(const KeyScript& script, const Shows& shows)
{
    return Shrinking(script, shows).shrink();
}
