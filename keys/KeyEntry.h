// SPDX-License-Identifier: MIT
#pragma once

#include <ls/EnumKey.h>

#include <QStringList>

/// One row of a key-list file. Rows come from the list loader and are kept by the recognisers.
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
    /// Whether a combination of these keys is matched by the whole sequence: it has three keys or more. A
    /// shorter one is matched by its first and last key.
    bool isSequence() const;
    /// Whether the row has keys: a row without any can never be matched.
    bool isValid() const;

    /// Makes the row idle: without keys and timeout, with action and receiver that stand for none. The valid
    /// states stay as they are.
    void clear();

private:
    QStringList m_keys;
    ls::EnumKey m_eAction;
    int m_timeout = 0;
    ls::EnumKey m_receiverService;
    ls::EnumKey m_validOnState;
};
