// SPDX-License-Identifier: MIT
#pragma once

#include "control/Verb.h"

#include <QVariantMap>
#include <QVector>

namespace control {

/// Sends the commands one after the other and prints their responses. The first that fails ends it.
Status sendCommands(const Call& call, const QVector<QVariantMap>& commands);

} // namespace control
