// SPDX-License-Identifier: MIT
#include "keys/KeyEntry.h"

#include <ls/Identifiers.h>

namespace {

constexpr int pairSize = 2;

} // namespace

KeyEntry::KeyEntry(const QStringList& keys, const ls::EnumKey& eAction, int timeout,
                   const ls::EnumKey& receiverService, const ls::EnumKey& validOnState)
    : m_keys(keys)
    , m_eAction(eAction)
    , m_timeout(timeout)
    , m_receiverService(receiverService)
    , m_validOnState(validOnState)
{}

ls::EnumKey KeyEntry::firstKey() const
{
    return m_keys.value(0);
}

ls::EnumKey KeyEntry::lastKey() const
{
    return m_keys.value(m_keys.size() - 1);
}

int KeyEntry::keyCount() const
{
    return m_keys.size();
}

bool KeyEntry::isSequence() const
{
    return m_keys.size() > pairSize;
}

bool KeyEntry::isValid() const
{
    return !m_keys.isEmpty();
}

void KeyEntry::clear()
{
    m_keys.clear();
    // Deliberate: the key "Unknown" as the action marks an idle row.
    m_eAction = ls::KeyId::Unknown;
    m_timeout = 0;
    m_receiverService = ls::ServiceId::KeyboardHandler;
}
