// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/random/Dice.h"

#include <QString>
#include <QVariantMap>

/// Generates random commands to the keyboard service and lines for its console, including invalid ones.
namespace RandomCommands {

QVariantMap roll(Dice& dice);
QString rollConsoleLine(Dice& dice);

} // namespace RandomCommands
