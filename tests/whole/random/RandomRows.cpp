// SPDX-License-Identifier: MIT
#include "tests/whole/random/RandomRows.h"

#include <ls/Identifiers.h>

#include <limits>

namespace {

constexpr int maxRows = 6;
constexpr int firstRefusedSeconds = 2147484;

QString rowKey(Dice& dice)
{
    // An unknown key, the name of a code without a key, and the name for "no key".
    return dice.oneIn(25)
               ? dice.pick({QStringLiteral("Bell"), QStringLiteral("Undefined"), ls::KeyId::Unknown})
               : RandomRows::anyKey(dice);
}

QStringList keysOf(Dice& dice, KeyRow::Kind kind)
{
    if (dice.oneIn(20)) {
        return {};
    }
    const int count =
        kind == KeyRow::Kind::Long ? dice.pick({1, 1, 1, 2}) : dice.pick({1, 2, 2, 2, 2, 3, 3, 4});
    QStringList keys;
    while (keys.size() < count) {
        keys.append(rowKey(dice));
    }
    return keys;
}

QString statesOf(Dice& dice)
{
    const QStringList states = ls::StateId::meta.keys();
    if (dice.oneIn(12)) {
        return dice.pick(
            {QString(), QStringLiteral("Dreaming"), QStringLiteral("idle"), QStringLiteral("Idle ")});
    }
    if (dice.oneIn(4)) {
        const QString separator =
            dice.pick({QStringLiteral("|"), QStringLiteral(" | "), QStringLiteral("||")});
        const QString first = dice.pick(states);
        return first + separator + dice.pick({ls::StateId::Idle, dice.pick(states)});
    }
    return dice.pick({ls::StateId::Idle, ls::StateId::Idle, dice.pick(states)});
}

int secondsOf(Dice& dice)
{
    if (dice.oneIn(12)) {
        return dice.pick({-1, -7, std::numeric_limits<int>::min(), firstRefusedSeconds - 1,
                          firstRefusedSeconds, std::numeric_limits<int>::max()});
    }
    return dice.below(4);
}

QString receiverOf(Dice& dice)
{
    return dice.oneIn(10) ? QStringLiteral("Undefined") : dice.pick(ls::ServiceId::meta.keys());
}

KeyRow rowOf(Dice& dice, KeyRow::Kind kind, const QString& action)
{
    const QString receiver = receiverOf(dice);
    const QString states = statesOf(dice);
    const int seconds = kind == KeyRow::Kind::Long ? secondsOf(dice) : 0;
    return {kind, action, receiver, states, seconds, keysOf(dice, kind)};
}

} // namespace

QVector<KeyRow> RandomRows::roll(Dice& dice)
{
    QVector<KeyRow> rows;
    for (const KeyRow::Kind kind : {KeyRow::Kind::Long, KeyRow::Kind::Modifier, KeyRow::Kind::Shortcut}) {
        const int count = dice.below(maxRows + 1);
        for (int i = 0; i < count; ++i) {
            const bool again = i > 0 && dice.oneIn(10);
            rows.append(again ? rows.last()
                              : rowOf(dice, kind, QStringLiteral("Action%1").arg(rows.size() + 1)));
        }
    }
    if (rows.isEmpty()) { // without rows, the installed lists would apply
        rows.append(KeyRow{});
    }
    return rows;
}

QString RandomRows::commonKey(Dice& dice)
{
    return dice.pick({ls::KeyId::Menu, ls::KeyId::Up, ls::KeyId::Help, ls::KeyId::Function, ls::KeyId::Feed});
}

QString RandomRows::anyKey(Dice& dice)
{
    return dice.oneIn(5) ? dice.pick(ls::KeyId::meta.keys()) : commonKey(dice);
}
