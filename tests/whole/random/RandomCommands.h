// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/random/Dice.h"

#include <QString>
#include <QVariantMap>

/// Rolls commands to the keyboard service and lines for its console, wrong ones among them.
namespace RandomCommands {

QVariantMap roll(Dice& dice);
QString rollConsoleLine(Dice& dice);

} // namespace RandomCommands
