// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusMessage>
#include <QVariantMap>

#include <optional>

namespace control {

/// The signals of the daemon and of the state handler.
namespace Notifications {

/// For subscriptions. The bus delivers a signal to clients that name the interface first, so that services
/// get announcements before those who only watch.
inline const QString anyInterface;

/// The map of a signal, with nested values unpacked; empty if there is no map.
QVariantMap mapOf(const QDBusMessage& signal);
/// Whether this is about a change of the operating state.
bool isStateChange(const QVariantMap& notification);
/// The state that the daemon takes from a change; nothing if the daemon ignores the change, because a member
/// is missing or the state unknown.
std::optional<QString> stateOf(const QVariantMap& notification);

} // namespace Notifications

} // namespace control
