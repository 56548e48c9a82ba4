// SPDX-License-Identifier: MIT
#include "control/doctor/Diagnosis.h"

namespace control {

QString Diagnosis::nameOf(Level level)
{
    switch (level) {
    case Level::Ok:
        return QStringLiteral("ok");
    case Level::Unknown:
        return QStringLiteral("unknown");
    case Level::Warning:
        return QStringLiteral("warning");
    case Level::Failure:
        break;
    }
    return QStringLiteral("failure");
}

} // namespace control
