// SPDX-License-Identifier: MIT
#include "keys/ShortcutKey.h"

#include "keys/KeyListFile.h"
#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

ShortcutKey::ShortcutKey(ls::IReader& reader, QObject* parent) : QObject(parent)
{
    load(reader);
}

void ShortcutKey::process(const ls::EnumKey& key)
{
    for (const KeyEntry& entry : qAsConst(m_entries)) {
        if (!entry.isValid()) {
            continue;
        }
        if (m_heldKey == ls::KeyId::Unknown) {
            if (key == entry.firstKey()) {
                m_heldKey = key;
                return;
            }
        } else if (key == entry.lastKey() && m_heldKey == entry.firstKey()) {
            // Deliberate: only the first row for a pair counts, and the held key stays open, so that
            // another press of the closing key completes the shortcut again.
            Q_EMIT doubleShortcut(entry.eAction(), entry.receiverService(), entry.validOnState(),
                                  {{ls::firstKeyKey, entry.firstKey()}, {ls::secondKeyKey, entry.lastKey()}});
            return;
        }
    }
}

void ShortcutKey::reset()
{
    m_heldKey = ls::KeyId::Unknown;
}

void ShortcutKey::load(ls::IReader& reader)
{
    const auto file = KeyListFile::load(reader, vocabulary::shortcutKeyListFile,
                                        EnumDetail::RowKeyList::ShortcutKeys, Q_FUNC_INFO);
    m_entries = file.rows;
    m_fileMap = file.content;
}
