// SPDX-License-Identifier: MIT
#include "control/record/Recording.h"

#include "simulator/script/KeyValue.h"
#include "simulator/script/ObservationText.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <algorithm>

using std::chrono::microseconds;

namespace control {

namespace {

int textSize(const Happening& happening)
{
    return happening.text.toUtf8().size() + happening.textWithoutSender.toUtf8().size();
}

} // namespace

Happening Happening::key(const InputRecord& record)
{
    return {record.at, Kind::Key, record, {}, {}, {}};
}

Happening Happening::state(const QString& state, microseconds at)
{
    return {at, Kind::State, {}, state, {}, {}};
}

Happening Happening::announcement(const QVariantMap& notification, microseconds at)
{
    QVariantMap withoutSender = notification;
    withoutSender.insert(ls::senderIdKey, QString());
    return {at,
            Kind::Announcement,
            {},
            ObservationText::announcement(notification),
            notification.value(ls::senderIdKey).toString(),
            ObservationText::announcement(withoutSender)};
}

Happening Happening::gap(const QString& words, microseconds at)
{
    return {at, Kind::Gap, {}, words, {}, {}};
}

void Recording::add(const Happening& happening)
{
    const auto later = std::find_if(m_happenings.rbegin(), m_happenings.rend(),
                                    [&](const Happening& other) { return other.at <= happening.at; });
    m_happenings.insert(later.base(), happening);
    m_textSize += textSize(happening);
    while (m_happenings.size() > size_t(maxCount) || (m_textSize > maxTextSize && m_happenings.size() > 1)) {
        dropFirst();
        ++m_evicted;
    }
}

QString Recording::firstState() const
{
    if (!m_initialState.isEmpty()) {
        return m_initialState;
    }
    const auto state = std::find_if(m_happenings.begin(), m_happenings.end(), [](const Happening& happening) {
        return happening.kind == Happening::Kind::State;
    });
    return state == m_happenings.end() ? ls::StateId::Idle : state->text;
}

void Recording::dropBefore(microseconds time)
{
    while (!m_happenings.empty() && m_happenings.front().at < time) {
        dropFirst();
    }
    m_begin = std::max(m_begin, time);
}

/// What was known at the beginning becomes what is known after the first happening.
void Recording::dropFirst()
{
    const Happening first = m_happenings.front();
    m_happenings.pop_front();
    m_textSize -= textSize(first);
    m_begin = std::max(m_begin, first.at);
    if (first.kind == Happening::Kind::State) {
        m_initialState = first.text;
    } else if (first.kind == Happening::Kind::Key) {
        const DeviceKey key{first.record.keyboard, first.record.code};
        if (first.record.value == KeyValue::released) {
            m_initialKeys.remove(key);
        } else {
            m_initialKeys.insert(key);
        }
    }
}

} // namespace control
