// SPDX-License-Identifier: MIT
#pragma once

#include "control/Verb.h"

#include <QVector>

namespace control {

/// All verbs, in the order of the help.
const QVector<Verb>& verbs();

} // namespace control
