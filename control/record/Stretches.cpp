// SPDX-License-Identifier: MIT
#include "control/record/Stretches.h"

#include "control/record/KeyVerdict.h"
#include "keys/KeyRules.h"
#include "simulator/script/KeyValue.h"

#include <algorithm>

using std::chrono::microseconds;

namespace control {

namespace {

using Kind = Happening::Kind;

/// How long after the last record of a key the daemon has forgotten all keys for sure.
constexpr microseconds quietTime = KeyRules::singleKeyInterval + KeyVerdict::limitTolerance;

class Division
{
public:
    Division(const Recording& recording, microseconds end);

    QVector<Stretch> stretches() const { return m_stretches; }

private:
    void take(const Happening& happening);
    void begin(microseconds at, const QString& unknown);
    bool isQuiet(microseconds at) const;
    void takeKey(const InputRecord& record);

    QVector<Stretch> m_stretches;
    QSet<Recording::DeviceKey> m_down;
    QString m_state;
    // The last moment from which keys may still count.
    microseconds m_lastKey;
};

Division::Division(const Recording& recording, microseconds end)
    : m_down(recording.initialKeys()), m_state(recording.initialState()), m_lastKey(recording.begin())
{
    begin(recording.begin(), QStringLiteral("earlier keys may still count"));
    for (const Happening& happening : recording.happenings()) {
        take(happening);
    }
    m_stretches.last().end = std::max(end, m_stretches.last().begin);
}

void Division::begin(microseconds at, const QString& unknown)
{
    if (!m_stretches.isEmpty()) {
        m_stretches.last().end = at;
    }
    m_stretches.append({at, at, m_state, {}, unknown});
}

bool Division::isQuiet(microseconds at) const
{
    return m_down.isEmpty() && at >= m_lastKey + quietTime;
}

void Division::take(const Happening& happening)
{
    const bool isKey = happening.kind == Kind::Key;
    const bool isGap = happening.kind == Kind::Gap;
    if ((isKey || isGap) && isQuiet(happening.at)) {
        begin(happening.at, m_state.isEmpty() ? QStringLiteral("the state is not known") : QString());
    }
    Stretch& stretch = m_stretches.last();
    stretch.happenings.append(happening);
    if (isKey) {
        takeKey(happening.record);
    } else if (isGap) {
        stretch.unknown = happening.text;
        m_down.clear(); // the keys that are down after the gap follow it
        m_lastKey = happening.at;
    } else if (happening.kind == Kind::State) {
        m_state = happening.text;
    }
}

void Division::takeKey(const InputRecord& record)
{
    const Recording::DeviceKey key{record.keyboard, record.code};
    if (record.value == KeyValue::released) {
        m_down.remove(key);
    } else {
        m_down.insert(key);
    }
    m_lastKey = record.at;
}

} // namespace

QVector<Stretch> stretchesOf(const Recording& recording, microseconds end)
{
    return Division(recording, end).stretches();
}

} // namespace control
