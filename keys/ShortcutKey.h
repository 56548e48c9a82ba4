// SPDX-License-Identifier: MIT
#pragma once

#include "keys/KeyEntry.h"

#include <QList>
#include <QObject>
#include <QVariantMap>

namespace ls {
class IReader;
}

/// Recognises the shortcuts of the shortcut list: a key pressed while another one is held. Driven by the
/// router and by the simulation command. Speaks nothing.
class ShortcutKey : public QObject
{
    Q_OBJECT

public:
    /// Loads the shortcut list through `reader`, which is not kept. `reset()` must be called before the
    /// first key.
    ShortcutKey(ls::IReader& reader, QObject* parent);

    /// The whole content of the list file; empty if it could not be read.
    QVariantMap keyList() const { return m_fileMap; }

    /// Handles the press of `key`.
    void process(const ls::EnumKey& key);
    /// Clears the held key.
    void reset();

Q_SIGNALS:
    /// A shortcut is complete. `parameters` hold the first and the last key of its row.
    void doubleShortcut(ls::EnumKey action, ls::EnumKey receiver, ls::EnumKey validOnState,
                        QVariantMap parameters);

private:
    void load(ls::IReader& reader);

    ls::EnumKey m_heldKey;
    QList<KeyEntry> m_entries;
    QVariantMap m_fileMap;
};
