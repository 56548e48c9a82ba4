// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QVariantMap>

namespace control {

/// The daemon's responses in words.
namespace Answers {

/// The response to a command, a line each; empty if it says only that the command succeeded. Of a failure,
/// which error it has.
QStringList linesOf(const QVariantMap& command, const QVariantMap& response);
/// Whether the daemon did not execute the command.
bool isFailure(const QVariantMap& response);

} // namespace Answers

} // namespace control
