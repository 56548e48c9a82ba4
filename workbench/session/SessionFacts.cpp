// SPDX-License-Identifier: MIT
#include "workbench/session/SessionFacts.h"

#include "simulator/script/KeyValue.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <algorithm>

namespace {

/// The end of a test is announced as a single Ok. While a test runs, no other single key is announced outside
/// Idle, and in Idle Ok goes to the user menu.
bool endsTest(const entry::Announcement& announcement)
{
    return announcement.action == ls::KeyboardActionId::SingleKey &&
           announcement.keys == QStringList(ls::KeyId::Ok) &&
           announcement.receiver != ls::ServiceId::UserMenu;
}

} // namespace

void SessionFacts::note(const SessionEvent& event)
{
    std::visit(Overloaded{[this](const entry::Device& /*device*/) { *this = SessionFacts(); },
                          [this](const entry::Key& key) { noteKey(key); },
                          [this](const entry::Command& command) {
                              m_unanswered.enqueue(command.command.value(ls::commandIdKey).toString() ==
                                                   ls::KeyboardHandlerCmdId::StartTestMode);
                          },
                          [this](const entry::Answer& answer) { noteAnswer(answer); },
                          [this](const entry::Announcement& announcement) {
                              m_isTesting = m_isTesting && !endsTest(announcement);
                          },
                          [](const auto& /*other*/) {}},
               event);
}

QVector<HeldKey> SessionFacts::heldKeys() const
{
    QVector<HeldKey> keys(m_held.begin(), m_held.end());
    std::sort(keys.begin(), keys.end());
    return keys;
}

void SessionFacts::noteKey(const entry::Key& key)
{
    if (key.value == KeyValue::released) {
        m_held.remove({key.keyboard, key.key});
    } else {
        m_held.insert({key.keyboard, key.key});
    }
}

void SessionFacts::noteAnswer(const entry::Answer& answer)
{
    const bool startsTest = !m_unanswered.isEmpty() && m_unanswered.dequeue();
    if (startsTest && answer.response.value(ls::resultIdKey).toString() == ls::ResultId::Success) {
        m_isTesting = true;
    }
}
