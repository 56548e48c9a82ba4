// SPDX-License-Identifier: MIT
#include "control/record/KeySteps.h"

#include "control/record/KeyVerdict.h"
#include "model/Autorepeat.h"
#include "simulator/script/KeyValue.h"

#include <algorithm>
#include <array>
#include <optional>

using std::chrono::microseconds;
using std::chrono::milliseconds;

namespace control {

namespace {

constexpr int deviceCount = 2;

bool hasName(const InputRecord& record)
{
    return !ls::KeyId::meta.key(record.code).isEmpty();
}

/// Checks that the records of one device are those that the kernel makes of presses and releases.
class RepeatCheck
{
public:
    /// The records must be in the order of time.
    void take(const InputRecord& record);
    /// Whether no repetition is missing up to `end`.
    bool holdsUntil(microseconds end) const { return m_holds && !isOverdue(end); }

private:
    bool isOverdue(microseconds now) const { return m_due && now > *m_due + KeyVerdict::limitTolerance; }
    bool isRepetition(const InputRecord& record) const;

    QSet<quint16> m_down;
    quint16 m_repeating = 0;
    std::optional<microseconds> m_due;
    bool m_holds = true;
};

bool RepeatCheck::isRepetition(const InputRecord& record) const
{
    return m_due && record.code == m_repeating && record.at >= *m_due - KeyVerdict::limitTolerance;
}

void RepeatCheck::take(const InputRecord& record)
{
    m_holds = m_holds && !isOverdue(record.at) && hasName(record);
    switch (record.value) {
    case KeyValue::pressed:
        m_holds = m_holds && !m_down.contains(record.code);
        m_down.insert(record.code);
        m_repeating = record.code;
        m_due = record.at + Autorepeat::delay;
        return;
    case KeyValue::released:
        m_holds = m_down.remove(record.code) && m_holds;
        m_due.reset();
        return;
    case KeyValue::repeated:
        m_holds = m_holds && isRepetition(record);
        m_due = record.at + Autorepeat::period;
        return;
    default:
        m_holds = false;
    }
}

ScriptStep stepOf(const InputRecord& record, microseconds origin, bool isFinger)
{
    ScriptStep step;
    step.at = std::chrono::duration_cast<milliseconds>(record.at - origin);
    step.keyboard = record.keyboard;
    if (isFinger) {
        step.kind = record.value == KeyValue::pressed ? ScriptStep::Kind::Press : ScriptStep::Kind::Release;
        step.text = ls::KeyId::meta.key(record.code);
    } else {
        step.kind = ScriptStep::Kind::Record;
        step.record = {record.type, record.code, record.value};
    }
    return step;
}

} // namespace

ScriptStep keyStep(const InputRecord& record, microseconds origin)
{
    const bool isFinger = record.value == KeyValue::pressed || record.value == KeyValue::released;
    return stepOf(record, origin, isFinger && hasName(record));
}

QVector<ScriptStep> keySteps(const QVector<InputRecord>& records, microseconds origin, microseconds end)
{
    std::array<RepeatCheck, deviceCount> checks;
    for (const InputRecord& record : records) {
        checks.at(static_cast<size_t>(record.keyboard)).take(record);
    }
    std::array<bool, deviceCount> areFingers{};
    std::transform(checks.begin(), checks.end(), areFingers.begin(),
                   [end](const RepeatCheck& check) { return check.holdsUntil(end); });
    QVector<ScriptStep> steps;
    for (const InputRecord& record : records) {
        const bool isFinger = areFingers.at(static_cast<size_t>(record.keyboard));
        if (!isFinger || record.value != KeyValue::repeated) {
            steps.append(stepOf(record, origin, isFinger));
        }
    }
    return steps;
}

} // namespace control
