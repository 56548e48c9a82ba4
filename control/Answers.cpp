// SPDX-License-Identifier: MIT
#include "control/Answers.h"

#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

namespace control {

namespace {

namespace Cmd = ls::KeyboardHandlerCmdId;

QString nameOfCode(int code)
{
    const QString name = ls::KeyId::meta.key(code);
    return code == 0        ? QStringLiteral("no key yet (0)")
           : name.isEmpty() ? QStringLiteral("a code without a key (%1)").arg(code)
                            : QStringLiteral("%1 (%2)").arg(name).arg(code);
}

/// The daemon triples the time of Help.
QStringList timesOf(const QVariantMap& times)
{
    QStringList lines;
    for (auto time = times.begin(); time != times.end(); ++time) {
        const double seconds = time.value().toInt() / 1000.0;
        const bool isHelp = time.key() == ls::KeyId::Help;
        lines.append(QStringLiteral("%1: %2 s%3")
                         .arg(time.key())
                         .arg(seconds)
                         .arg(isHelp ? QStringLiteral(", three times the time of the list") : QString()));
    }
    return lines.isEmpty() ? QStringList{QStringLiteral("no long presses")} : lines;
}

QString rowOf(const QVariantMap& row, const QString& conjunction)
{
    return QStringLiteral("%1: %2 to %3, in %4")
        .arg(row.value(QStringLiteral("keys")).toStringList().join(conjunction),
             row.value(QStringLiteral("eAction")).toString(),
             row.value(QStringLiteral("receiverService")).toString(),
             row.value(QStringLiteral("validOnState")).toString());
}

QStringList rowsOf(const QVariantMap& content, const QString& section, const QString& conjunction)
{
    QStringList lines;
    const QVariantList rows = content.value(section).toList();
    for (const QVariant& row : rows) {
        lines.append(rowOf(row.toMap(), conjunction));
    }
    return lines.isEmpty() ? QStringList{section + QStringLiteral(": no rows")} : lines;
}

} // namespace

QStringList Answers::linesOf(const QVariantMap& command, const QVariantMap& response)
{
    const QString id = command.value(ls::commandIdKey).toString();
    if (isFailure(response)) {
        const QString error = response.value(ls::errorIdKey).toString();
        return {error.isEmpty() ? QStringLiteral("The daemon answers %1 without an errorId.").arg(id)
                                : QStringLiteral("The daemon refuses %1: %2.").arg(id, error)};
    }
    if (id == Cmd::GetLastKey) {
        return {nameOfCode(response.value(ls::keyKey).toInt())};
    }
    if (id == Cmd::GetLongKeysTimeout) {
        return timesOf(response.value(ls::keyTimeouts).toMap());
    }
    if (id == Cmd::GetModifierKeyList) {
        return rowsOf(response.value(ls::modifierKeyListKey).toMap(), QStringLiteral("ModifierKeys"),
                      QStringLiteral(", then "));
    }
    if (id == Cmd::GetShortcutKeyList) {
        return rowsOf(response.value(ls::shortcutKeyListKey).toMap(), QStringLiteral("ShortcutKeys"),
                      QStringLiteral(" held, then "));
    }
    if (id == Cmd::GetTestResult) {
        const int count = response.value(ls::resultIdKey).toInt();
        return {QStringLiteral("%1 different %2 released in the test")
                    .arg(count)
                    .arg(count == 1 ? QStringLiteral("key was") : QStringLiteral("keys were"))};
    }
    return {};
}

bool Answers::isFailure(const QVariantMap& response)
{
    return response.value(ls::errorIdKey).toString() != vocabulary::undefined;
}

} // namespace control
