// SPDX-License-Identifier: MIT
#include "simulator/script/StatementHelp.h"

#include <QPair>

QString statementHelp()
{
    constexpr int usageWidth = 52;
    static const QPair<const char*, const char*> statements[] = {
        {"tap KEY...", "press and release each key in turn"},
        {"press KEY", "press a key and keep it down"},
        {"release KEY", "release it"},
        {"hold KEY MS", "keep a key down for MS milliseconds"},
        {"wait MS", "do nothing for MS milliseconds"},
        {"device 0|1", "the input device of the keys that follow on the line"},
        {"state STATE", "the state handler announces a state"},
        {"command NAME [as SERVICE] [ARGUMENT...]", "a service sends a command"},
        {"console TEXT", "type a line at the daemon's console"},
        {"record TYPE CODE VALUE", "the input device reports a record"},
        {"service state-handler|speechd stop|silent|start", "a service fails or recovers"},
    };
    QString text;
    for (const auto& [usage, meaning] : statements) {
        text += QStringLiteral("  %1%2\n").arg(QLatin1String(usage), -usageWidth).arg(QLatin1String(meaning));
    }
    return text;
}
