// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <optional>

/// What the rules of the service say about a command, as far as its map alone decides it.
namespace Commands {

/// The command of a step: a sent one, or one that a console line stands for; nothing for other steps.
std::optional<QVariantMap> of(const ScriptStep& step);

/// The `ls::ErrorId` that a command fails with; empty when it succeeds.
QString errorOf(const QVariantMap& command);
/// Whether the sender is remembered for the next announcement, which a failure later on does not change.
bool isAccepted(const QVariantMap& command);

/// Whether `command` is called `name` and succeeds.
bool succeeds(const QVariantMap& command, const QString& name);

} // namespace Commands
