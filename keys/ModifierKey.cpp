// SPDX-License-Identifier: MIT
#include "keys/ModifierKey.h"

#include "device/SpeechFeedback.h"
#include "keys/KeyListFile.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>
#include <vantre/Singleton.h>

ModifierKey::ModifierKey(ls::IReader& reader, QObject* parent) : QObject(parent)
{
    load(reader);
}

void ModifierKey::process(const ls::EnumKey& key)
{
    for (const KeyEntry& entry : qAsConst(m_entries)) {
        if (!entry.isValid()) {
            continue;
        }
        if (m_firstKey == ls::KeyId::Unknown) {
            if (key == entry.firstKey()) {
                m_firstKey = key;
                append(key);
                return;
            }
        } else if (entry.isSequence()) {
            // Deliberate: each longer row visited appends the key again, and one that does not match (yet)
            // hides the rows after it.
            append(key);
            if (m_pressedKeys != entry.keys()) {
                return;
            }
            complete(entry);
        } else if (key == entry.lastKey() && m_firstKey == entry.firstKey()) {
            // The key of a row with one key both opens and closes it: the row takes two releases.
            complete(entry);
        }
    }
}

void ModifierKey::reset()
{
    m_firstKey = ls::KeyId::Unknown;
    m_pressedKeys.clear();
}

void ModifierKey::load(ls::IReader& reader)
{
    const auto file = KeyListFile::load(reader, vocabulary::modifierKeyListFile,
                                        EnumDetail::RowKeyList::ModifierKeys, Q_FUNC_INFO);
    m_entries = file.rows;
    m_fileMap = file.content;
    for (const KeyEntry& entry : qAsConst(m_entries)) {
        m_maxKeyCount = qMax(m_maxKeyCount, entry.keyCount());
    }
}

void ModifierKey::append(const ls::EnumKey& key)
{
    // Limited, because a sequence longer than every row matches none of them.
    if (m_pressedKeys.size() <= m_maxKeyCount) {
        m_pressedKeys.append(key);
    }
}

void ModifierKey::complete(const KeyEntry& entry)
{
    auto* speech = libvantre::Singleton<detail::SpeechFeedback>::instance();
    // Deliberate: only a longer row cancels the names of the keys before.
    if (entry.isSequence()) {
        speech->cancelAll();
    }
    // Deliberate: this copy of the names is the same on every model, even where the router speaks another
    // sentence for Function.
    speech->speakFromId(m_keyNames.value(entry.lastKey()));
    Q_EMIT doubleModifier(entry.eAction(), entry.receiverService(), entry.validOnState(),
                          {{ls::firstKeyKey, entry.firstKey()}, {ls::secondKeyKey, entry.lastKey()}});
    // Deliberate: the first key stays open, so that the closing key completes the row again until the reset.
    m_pressedKeys.clear();
}
