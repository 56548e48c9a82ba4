// SPDX-License-Identifier: MIT
#include "simulator/script/KeyRowWords.h"

#include "keys/KeyRules.h"
#include "simulator/script/ScriptWords.h"
#include "vocabulary/Vocabulary.h"

#include <limits>

namespace {

const QString longUsage = QStringLiteral("row long ACTION RECEIVER STATES SECONDS KEY");
const QString otherUsage = QStringLiteral("row modifier|shortcut ACTION RECEIVER STATE KEY...");

const QMap<QString, KeyRow::Kind>& kinds()
{
    static const QMap<QString, KeyRow::Kind> names{{QStringLiteral("long"), KeyRow::Kind::Long},
                                                   {QStringLiteral("modifier"), KeyRow::Kind::Modifier},
                                                   {QStringLiteral("shortcut"), KeyRow::Kind::Shortcut}};
    return names;
}

QString checkReceiver(const QString& receiver)
{
    // Rows may name this receiver, to which the daemon never announces an action.
    return receiver == vocabulary::undefined ? QString() : ScriptWords::checkService(receiver);
}

QString checkStates(const QString& states)
{
    const QStringList parts = KeyRules::longPressStates(states);
    for (const QString& state : parts) {
        const QString fault = state.isEmpty() ? QString() : ScriptWords::checkState(state);
        if (!fault.isEmpty()) {
            return fault;
        }
    }
    return {};
}

QString takeSeconds(const QString& word, KeyRow& row)
{
    const auto seconds = ScriptWords::number(word, 0, std::numeric_limits<int>::max());
    if (!seconds) {
        return QStringLiteral("\"%1\" is not a number of seconds.").arg(word);
    }
    row.seconds = int(*seconds);
    return {};
}

QString checkRow(const KeyRow& row)
{
    for (const QString& fault :
         {checkReceiver(row.receiver), checkStates(row.validOnState), ScriptWords::checkKeys(row.keys)}) {
        if (!fault.isEmpty()) {
            return fault;
        }
    }
    return {};
}

} // namespace

namespace KeyRowWords {

Parsed parse(const QStringList& words)
{
    const QString kind = words.value(0);
    if (!kinds().contains(kind)) {
        return {{}, QStringLiteral("A row is long, modifier or shortcut, not \"%1\".").arg(kind)};
    }
    const bool isLong = kinds().value(kind) == KeyRow::Kind::Long;
    QString fault = isLong ? ScriptWords::checkCount(words, 6, 6, longUsage)
                           : ScriptWords::checkCount(words, 5, -1, otherUsage);
    if (!fault.isEmpty()) {
        return {{}, fault};
    }
    KeyRow row{kinds().value(kind), words.at(1), words.at(2), words.at(3), 0, words.mid(isLong ? 5 : 4)};
    if (isLong) {
        fault = takeSeconds(words.at(4), row);
    }
    return {row, fault.isEmpty() ? checkRow(row) : fault};
}

QStringList wordsOf(const KeyRow& row)
{
    QStringList words{kinds().key(row.kind), row.action, row.receiver, row.validOnState};
    if (row.kind == KeyRow::Kind::Long) {
        words << QString::number(row.seconds);
    }
    return words + row.keys;
}

} // namespace KeyRowWords
