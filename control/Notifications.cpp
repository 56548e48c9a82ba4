// SPDX-License-Identifier: MIT
#include "control/Notifications.h"

#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>
#include <vantre/DBusArgumentUnpack.h>

namespace control {

QVariantMap Notifications::mapOf(const QDBusMessage& signal)
{
    return libvantre::dbusArgumentUnpack(signal.arguments().value(0)).toMap();
}

bool Notifications::isStateChange(const QVariantMap& notification)
{
    return notification.value(ls::notificationIdKey) == ls::StateHandlerNotifId::StateChange;
}

std::optional<QString> Notifications::stateOf(const QVariantMap& notification)
{
    const QString state = notification.value(ls::stateIdKey).toString();
    const bool isTaken = isStateChange(notification) && notification.contains(ls::actionIdKey) &&
                         notification.contains(ls::senderIdKey) &&
                         vocabulary::isMember(ls::StateId::meta, state);
    return isTaken ? std::optional(state) : std::nullopt;
}

} // namespace control
