// SPDX-License-Identifier: MIT
#include "tests/delivery/target/Unit.h"

#include "tests/delivery/target/Command.h"

#include <QStringList>

namespace {

const QString systemctl = QStringLiteral("systemctl");

} // namespace

namespace Unit {

bool control(const QStringList& arguments)
{
    return Command::run(systemctl, arguments).status == 0;
}

bool start(const QString& unit)
{
    return control({QStringLiteral("start"), unit});
}

bool stop(const QString& unit)
{
    return control({QStringLiteral("stop"), unit});
}

bool restart(const QString& unit)
{
    // Otherwise many restarts in a short time would be refused.
    control({QStringLiteral("reset-failed"), unit});
    return control({QStringLiteral("restart"), unit});
}

QString property(const QString& unit, const QString& name)
{
    return Command::run(systemctl,
                        {QStringLiteral("show"), QStringLiteral("--value"), QStringLiteral("-p"), name, unit})
        .output.trimmed();
}

bool isActive(const QString& unit)
{
    return property(unit, QStringLiteral("ActiveState")) == QLatin1String("active");
}

int mainProcess(const QString& unit)
{
    return property(unit, QStringLiteral("MainPID")).toInt();
}

qint64 processorTimeUs(const QString& unit)
{
    return property(unit, QStringLiteral("CPUUsageNSec")).toLongLong() / 1000;
}

} // namespace Unit
