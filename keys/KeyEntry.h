// SPDX-License-Identifier: MIT
#pragma once

#include <ls/EnumKey.h>

#include <QStringList>

/// One row of a key-list file. The list loader creates rows, and the recognisers keep them.
class KeyEntry
{
public:
    KeyEntry() = default;
    /// `timeout` is in milliseconds; `validOnState` may name several states joined by "|".
    KeyEntry(const QStringList& keys, const ls::EnumKey& eAction, int timeout,
             const ls::EnumKey& receiverService, const ls::EnumKey& validOnState);

    const QStringList& keys() const { return m_keys; }
    const ls::EnumKey& eAction() const { return m_eAction; }
    int timeout() const { return m_timeout; }
    const ls::EnumKey& receiverService() const { return m_receiverService; }
    const ls::EnumKey& validOnState() const { return m_validOnState; }

    /// The key that opens the gesture; empty when the row has no keys.
    ls::EnumKey firstKey() const;
    /// The key that closes the gesture; empty when the row has no keys.
    ls::EnumKey lastKey() const;
    int keyCount() const;
    /// Whether the row has three keys or more. A combination of that many is matched by the whole sequence, a
    /// shorter one by its first and last key.
    bool isSequence() const;
    /// Whether the row has keys; a row without keys never matches.
    bool isValid() const;

    /// Resets the row to idle: no keys, no timeout, placeholders as action and receiver. Keeps the valid
    /// states.
    void clear();

private:
    QStringList m_keys;
    ls::EnumKey m_eAction;
    int m_timeout = 0;
    ls::EnumKey m_receiverService;
    ls::EnumKey m_validOnState;
};
