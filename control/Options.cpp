// SPDX-License-Identifier: MIT
#include "control/Options.h"

#include "simulator/script/ScriptWords.h"

#include <QRegularExpression>

namespace control {

namespace {

const QString jsonName = QStringLiteral("json");
const QString prefixName = QStringLiteral("prefix");
const QString timeoutName = QStringLiteral("timeout");

} // namespace

QCommandLineOption Options::help()
{
    return {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help.")};
}

QCommandLineOption Options::json()
{
    return {jsonName, QStringLiteral("Print JSON, one object a line.")};
}

QCommandLineOption Options::prefix()
{
    const QString built = QStringLiteral(KEYBOARD_HANDLER_BUS_PREFIX);
    return {prefixName, QStringLiteral("The prefix of the bus names (default: %1).").arg(built), prefixName,
            built};
}

QCommandLineOption Options::timeout()
{
    return {timeoutName, QStringLiteral("How long to wait for each answer (default: 25)."),
            QStringLiteral("seconds"), QStringLiteral("25")};
}

bool Options::hasJson(const Call& call)
{
    return call.options.isSet(jsonName);
}

std::optional<QString> Options::prefixOf(const Call& call)
{
    // The bus takes no longer names.
    constexpr int maxLength = 200;
    static const QRegularExpression form(
        QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*(\\.[A-Za-z_][A-Za-z0-9_]*)*\\z"));
    const QString prefix = call.options.value(prefixName);
    if (prefix.size() <= maxLength && form.match(prefix).hasMatch()) {
        return prefix;
    }
    call.err.line(QStringLiteral("\"%1\" is not a prefix of bus names, such as com.vantre.").arg(prefix));
    return std::nullopt;
}

std::optional<std::chrono::milliseconds> Options::timeoutOf(const Call& call)
{
    constexpr int maxSeconds = 3600;
    const auto seconds = ScriptWords::number(call.options.value(timeoutName), 1, maxSeconds);
    if (seconds) {
        return std::chrono::seconds(*seconds);
    }
    call.err.line(QStringLiteral("The timeout is a whole number of seconds, from 1 to %1.").arg(maxSeconds));
    return std::nullopt;
}

} // namespace control
