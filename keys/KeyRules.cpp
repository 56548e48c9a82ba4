// SPDX-License-Identifier: MIT
#include "keys/KeyRules.h"

#include <ls/Identifiers.h>

namespace {

bool isMachineKey(const ls::EnumKey& key)
{
    return key == ls::KeyId::Feed || key == ls::KeyId::Function || key == ls::KeyId::On ||
           key == ls::KeyId::Off || key == ls::KeyId::Ten;
}

} // namespace

namespace KeyRules {

QStringList singleKeyReceivers(const ls::EnumKey& key, const ls::EnumKey& state)
{
    if (state == ls::StateId::Print || state == ls::StateId::PrintOff) {
        return {ls::ServiceId::PrintManager};
    }
    if (state == ls::StateId::Error) {
        return {ls::ServiceId::ErrorHandler};
    }
    if (state == ls::StateId::Update) {
        return {ls::ServiceId::UpdateManager};
    }
    if (isMachineKey(key)) {
        return {ls::ServiceId::PrintManager, ls::ServiceId::UserMenu};
    }
    return {ls::ServiceId::UserMenu};
}

bool isSilent(const ls::EnumKey& key, bool isOrvane)
{
    return !isOrvane && key == ls::KeyId::Function;
}

QStringList longPressStates(const ls::EnumKey& validOnState)
{
    QStringList states = validOnState.split(stateSeparator, Qt::KeepEmptyParts);
    // Deliberate: the blanks of a single state stay, so that it is valid in no state at all.
    if (states.size() > 1) {
        for (QString& state : states) {
            state = state.simplified();
        }
    }
    return states;
}

} // namespace KeyRules
