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
            // Deliberate: each longer row that is visited takes the key once more, and one that does not
            // match (yet) hides the rows behind it.
            append(key);
            if (m_pressedKeys != entry.keys()) {
                return;
            }
            complete(entry);
        } else if (key == entry.lastKey() && m_firstKey == entry.firstKey()) {
            // A row of one key is both its own opening and its closing key: it takes two releases.
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
        m_longestRow = qMax(m_longestRow, entry.keyCount());
    }
}

void ModifierKey::append(const ls::EnumKey& key)
{
    // A sequence longer than every row matches nothing any more; it need not grow without end.
    if (m_pressedKeys.size() <= m_longestRow) {
        m_pressedKeys.append(key);
    }
}

void ModifierKey::complete(const KeyEntry& entry)
{
    auto* speech = libvantre::Singleton<detail::SpeechFeedback>::instance();
    // Deliberate: only a longer row cuts off the names of the keys before.
    if (entry.isSequence()) {
        speech->cancelAll();
    }
    // Deliberately this copy of the names on every model: a combination that Function closes is spoken as
    // the plain "Function" sentence also where the router speaks the key in another way.
    speech->speakFromId(m_keyNames.value(entry.lastKey()));
    Q_EMIT doubleModifier(entry.eAction(), entry.receiverService(), entry.validOnState(),
                          {{ls::firstKeyKey, entry.firstKey()}, {ls::secondKeyKey, entry.lastKey()}});
    // Deliberate: the first key stays open, so that the closing key completes the row again until the reset.
    m_pressedKeys.clear();
}
