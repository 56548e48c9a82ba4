// SPDX-License-Identifier: MIT
#pragma once

#include "control/Output.h"
#include "control/Status.h"

#include <QStringList>

namespace control {

/// Runs the command line VERB [WORD...] [OPTION...], which is without the name of the program.
Status run(const QStringList& line, Output& out, Output& err);

} // namespace control
