// SPDX-License-Identifier: MIT
#include "tests/support/Seeds.h"

#include <QStringList>

std::optional<Seeds> chosenSeeds(const char* variable, const Seeds& defaults)
{
    if (!qEnvironmentVariableIsSet(variable)) {
        return defaults;
    }
    const QStringList words = qEnvironmentVariable(variable).split(QLatin1Char(':'));
    bool isFirst = false;
    bool isCount = false;
    const Seeds seeds{words.value(0).toULongLong(&isFirst), words.value(1).toInt(&isCount)};
    const bool isGood = words.size() == 2 && isFirst && isCount && seeds.count > 0;
    return isGood ? std::optional(seeds) : std::nullopt;
}
