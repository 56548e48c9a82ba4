// SPDX-License-Identifier: MIT
#include "workbench/card/CardConsequences.h"

#include "keys/KeyRules.h"
#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>

namespace {

/// In Idle, Menu is announced at once, and the router forgets the keys before it, unless it directly follows
/// Help.
QVector<KeyCardConsequence> ofMenuIn(const KeyCardEntry& entry)
{
    if (entry.kind == KeyCardKind::Combination) {
        const bool followsHelp = entry.keys.value(entry.keys.size() - 2) == ls::KeyId::Help;
        const bool isAnnounced = entry.keys.last() == ls::KeyId::Menu && !followsHelp;
        return isAnnounced ? QVector<KeyCardConsequence>{KeyCardConsequence::Menu}
                           : QVector<KeyCardConsequence>{};
    }
    if (!entry.keys.contains(ls::KeyId::Menu)) {
        return {};
    }
    return {entry.kind == KeyCardKind::Shortcut ? KeyCardConsequence::MenuUnlessAfterHelpAndNextKey
                                                : KeyCardConsequence::MenuUnlessAfterHelp};
}

} // namespace

KeyCardConsequence CardConsequences::ofSingleKey(const QString& key, const QString& state, bool isOrvane)
{
    if (state != ls::StateId::Idle) {
        return KeyCardConsequence::NotSpokenAnnouncedAtRelease;
    }
    if (key == ls::KeyId::Menu) {
        return KeyCardConsequence::MenuNotSpokenAnnouncedAtRelease;
    }
    if (KeyRules::isSilent(key, isOrvane)) {
        return KeyCardConsequence::NotSpokenAnnouncedAfterWait;
    }
    return vocabulary::keyNames().contains(key) ? KeyCardConsequence::SpokenAnnouncedAfterWait
                                                : KeyCardConsequence::SpokenAsZeroAnnouncedAfterWait;
}

QVector<KeyCardConsequence> CardConsequences::ofGesture(const KeyCardEntry& entry, const QString& state)
{
    if (state != ls::StateId::Idle) {
        return {KeyCardConsequence::EachRelease};
    }
    QVector<KeyCardConsequence> consequences = ofMenuIn(entry);
    if (entry.action == ls::KeyboardActionId::SingleKey) {
        consequences.append(KeyCardConsequence::LastKey);
    }
    return consequences;
}
