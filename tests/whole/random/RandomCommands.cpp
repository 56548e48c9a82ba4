// SPDX-License-Identifier: MIT
#include "tests/whole/random/RandomCommands.h"

#include "tests/whole/random/RandomRows.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

using namespace ls;

namespace {

QString eventAction(Dice& dice)
{
    return dice.oneIn(6) ? dice.pick(KeyActionId::meta.keys())
                         : dice.pick({KeyActionId::Pressed, KeyActionId::Released, KeyActionId::Repeated});
}

QVariant keysList(Dice& dice)
{
    QStringList keys;
    for (int count = dice.pick({0, 1, 2, 2, 2, 3, 3, 4}); count > 0; --count) {
        keys.append(RandomRows::anyKey(dice));
    }
    switch (dice.below(12)) {
    case 0:
        return QVariantList{keys.value(0), 7};
    case 1:
        return 7;
    case 2:
        return keys + QStringList(QStringLiteral("Bell"));
    default:
        return keys;
    }
}

void addParameters(Dice& dice, const QString& name, QVariantMap& command)
{
    if (dice.oneIn(20)) {
        return;
    }
    if (name == KeyboardHandlerCmdId::SimulateKey) {
        command.insert(actionIdKey, dice.oneIn(20) ? QStringLiteral("Stroked") : eventAction(dice));
        command.insert(keyKey, dice.oneIn(20) ? QStringLiteral("Bell") : RandomRows::anyKey(dice));
    } else if (name == KeyboardHandlerCmdId::SimulateModifier ||
               name == KeyboardHandlerCmdId::SimulateShortcut) {
        command.insert(keysListKey, keysList(dice));
    }
}

QString commandName(Dice& dice)
{
    if (dice.oneIn(20)) {
        return dice.pick({QString(), QStringLiteral("Sing"), QStringLiteral("getlastkey")});
    }
    return dice.oneIn(2)
               ? dice.pick({KeyboardHandlerCmdId::SimulateKey, KeyboardHandlerCmdId::SimulateModifier,
                            KeyboardHandlerCmdId::SimulateShortcut, KeyboardHandlerCmdId::StartTestMode})
               : dice.pick(KeyboardHandlerCmdId::meta.keys());
}

} // namespace

QVariantMap RandomCommands::roll(Dice& dice)
{
    const QString name = commandName(dice);
    QVariantMap command{{commandIdKey, name}};
    if (!dice.oneIn(25)) {
        command.insert(senderIdKey,
                       dice.oneIn(20) ? QStringLiteral("Nobody") : dice.pick(ServiceId::meta.keys()));
    }
    addParameters(dice, name, command);
    return command;
}

QString RandomCommands::rollConsoleLine(Dice& dice)
{
    if (dice.oneIn(2)) {
        const QString key = RandomRows::anyKey(dice);
        return QStringLiteral("C 7 %1 %2").arg(dice.pick({1, 0, 2})).arg(KeyId::meta.value(key));
    }
    return dice.pick({QStringLiteral("C 4"),     QStringLiteral("c  3"),    QStringLiteral("C 7 -1 103"),
                      QStringLiteral("C 7 1"),   QStringLiteral("C 7 9 9"), QStringLiteral("C 7 1 103 0"),
                      QStringLiteral("C 7 x 1"), QStringLiteral("C 5"),     QStringLiteral("C 99"),
                      QStringLiteral("C"),       QStringLiteral("C x"),     QStringLiteral("cat 4"),
                      QStringLiteral(" C 4"),    QStringLiteral("HELP"),    QStringLiteral("help  c"),
                      QStringLiteral("HELP S"),  QStringLiteral("HELP 7"),  QStringLiteral("HELP 3"),
                      QStringLiteral("HELP 1"),  QStringLiteral("HELP x"),  QStringLiteral("HELPING 4"),
                      QStringLiteral(" HELP C"), QStringLiteral("What?"),   QStringLiteral("")});
}
