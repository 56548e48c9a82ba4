// SPDX-License-Identifier: MIT
#pragma once

#include "model/KeyLists.h"

#include <QString>

/// Plays key scripts of the model on the daemon's classes.
namespace ScriptOnDevice {

/// What differs from the script's expectations when it is played with `lists`; empty if nothing does.
QString difference(const QString& script, const model::KeyLists& lists);

} // namespace ScriptOnDevice
