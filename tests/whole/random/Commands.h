// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <optional>

/// The rules for commands that depend only on the command's map.
namespace Commands {

/// The command of a step that sends a command or types one at the console; nothing for other steps.
std::optional<QVariantMap> of(const ScriptStep& step);

/// The `ls::ErrorId` of a failing command; empty on success.
QString errorOf(const QVariantMap& command);
/// Whether the sender is stored for the next announcement, even if the command then fails.
bool isAccepted(const QVariantMap& command);

/// Whether `command` has this name and succeeds.
bool succeeds(const QVariantMap& command, const QString& name);

} // namespace Commands
