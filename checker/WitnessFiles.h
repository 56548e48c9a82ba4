// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Check.h"
#include "checker/ListSources.h"

namespace checker {

/// Key scripts that announce the rows, for keyboard-handler-simulator.
namespace WitnessFiles {

/// Writes a script for each row and state that works, such as "longKeyList-1-Idle.keys", into `folder`, which
/// is created. Each file is written whole or not at all. Returns why a file could not be written; empty on
/// success.
QString write(const ListSources& sources, const CheckOptions& options, const QString& folder);

} // namespace WitnessFiles

} // namespace checker
