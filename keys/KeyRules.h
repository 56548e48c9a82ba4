// SPDX-License-Identifier: MIT
#pragma once

#include <ls/EnumKey.h>

#include <QStringList>

#include <chrono>

/// The rules that the router, the recognisers and the programs around the daemon share.
namespace KeyRules {

/// The time window of combinations and lone keys: in Idle a released key waits this long for further keys,
/// and all keys are forgotten this long after the last release.
constexpr std::chrono::milliseconds singleKeyInterval{1500};
/// FactoryReset must be held this long.
constexpr std::chrono::milliseconds factoryResetHold{5000};

/// The services that get `key` as a single key in `state`, in the order of the announcements.
QStringList singleKeyReceivers(const ls::EnumKey& key, const ls::EnumKey& state);

/// Whether the name of `key` is never spoken in Idle.
bool isSilent(const ls::EnumKey& key, bool isOrvane);

/// Joins the valid states of a long-press row; other rows have one state.
constexpr QChar stateSeparator = QLatin1Char('|');
/// The valid states of a long-press row, at least one: joined states trimmed, a single state untouched.
QStringList longPressStates(const ls::EnumKey& validOnState);

} // namespace KeyRules
