// SPDX-License-Identifier: MIT
#pragma once

#include "keys/KeyEntry.h"
#include "vocabulary/Vocabulary.h"

#include <QList>
#include <QObject>
#include <QVariantMap>

namespace ls {
class IReader;
}

/// Recognises the combinations of the modifier list, whose keys are released one after the other, and speaks
/// the name of the closing key. Driven by the router and by the simulation command.
class ModifierKey : public QObject
{
    Q_OBJECT

public:
    /// Loads the modifier list through `reader`, which is not kept. `reset()` must be called before the
    /// first key.
    ModifierKey(ls::IReader& reader, QObject* parent);

    /// The whole content of the list file; empty if it could not be read.
    QVariantMap keyList() const { return m_fileMap; }

    /// Handles the release of `key`.
    void process(const ls::EnumKey& key);
    /// Clears the keys released so far. The router calls it when `KeyRules::singleKeyInterval` ends.
    void reset();

Q_SIGNALS:
    /// A combination is complete. `parameters` hold the first and the last key of its row.
    void doubleModifier(ls::EnumKey action, ls::EnumKey receiver, ls::EnumKey validOnState,
                        QVariantMap parameters);

private:
    void load(ls::IReader& reader);
    void append(const ls::EnumKey& key);
    void complete(const KeyEntry& entry);

    ls::EnumKey m_firstKey;
    QStringList m_pressedKeys;
    QList<KeyEntry> m_entries;
    QVariantMap m_fileMap;
    int m_maxKeyCount = 0;
    vocabulary::KeyNames m_keyNames = vocabulary::keyNames();
};
