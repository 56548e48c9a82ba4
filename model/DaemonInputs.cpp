// SPDX-License-Identifier: MIT
#include "model/DaemonInputs.h"

#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <algorithm>

namespace model {

namespace {

/// Keys that a command passes directly to a recogniser: all of them, or none if one is unknown.
QVector<Input> simulated(Input::Kind kind, const QStringList& keys)
{
    QVector<Input> inputs;
    for (const QString& key : keys) {
        if (!ls::KeyId::meta.contains(key)) {
            return {};
        }
        inputs.append(Input::of(kind, *Alphabet::keyOf(key)));
    }
    return inputs;
}

QVector<Input> simulatedKey(const QString& key, const QString& action)
{
    const bool isKnown = ls::KeyId::meta.contains(key) && ls::KeyActionId::meta.contains(action);
    return isKnown ? DaemonInputs::ofRecord(DaemonInputs::keyEventType,
                                            static_cast<quint16>(ls::KeyId::meta.value(key)),
                                            ls::KeyActionId::meta.value(action), 0)
                   : QVector<Input>();
}

} // namespace

/// All codes without an identifier are the same key.
QVector<Input> DaemonInputs::ofRecord(quint16 type, quint16 code, qint32 value, int device)
{
    constexpr Input::Kind kinds[] = {Input::Kind::Release, Input::Kind::Press, Input::Kind::Repeat};
    if (type != keyEventType || value < 0 || value > 2) {
        return {};
    }
    const Key unnamed = *Alphabet::keyOf(vocabulary::undefined);
    return {Input::of(kinds[value], Alphabet::keyOf(ls::KeyId::meta.key(code)).value_or(unnamed), device)};
}

QVector<Input> DaemonInputs::ofState(const QString& state)
{
    return ls::StateId::meta.contains(state) ? QVector<Input>{Input::state(*Alphabet::stateOf(state))}
                                             : QVector<Input>();
}

QVector<Input> DaemonInputs::ofCommand(const QVariantMap& command)
{
    namespace Id = ls::KeyboardHandlerCmdId;
    const QString id = command.value(ls::commandIdKey).toString();
    if (!ls::ServiceId::meta.contains(command.value(ls::senderIdKey).toString())) {
        return {};
    }
    if (id == Id::SimulateModifier) {
        return simulated(Input::Kind::SimulateCombination, command.value(ls::keysListKey).toStringList());
    }
    if (id == Id::SimulateShortcut) {
        return simulated(Input::Kind::SimulateShortcut, command.value(ls::keysListKey).toStringList());
    }
    if (id == Id::SimulateKey) {
        return simulatedKey(command.value(ls::keyKey).toString(), command.value(ls::actionIdKey).toString());
    }
    return id == Id::StartTestMode ? QVector<Input>{Input::of(Input::Kind::StartTest)} : QVector<Input>();
}

/// Of the commands of the console, only "C 7 ACTION KEY", in numbers, affects keys.
QVector<Input> DaemonInputs::ofConsoleLine(const QString& line)
{
    const QStringList words = line.simplified().split(QLatin1Char(' ')).mid(1);
    const int simulateKey = ls::KeyboardHandlerCmdId::meta.value(ls::KeyboardHandlerCmdId::SimulateKey);
    const bool areNumbers = std::all_of(words.begin(), words.end(), [](const QString& word) {
        bool isNumber = false;
        word.toInt(&isNumber);
        return isNumber;
    });
    if (!line.startsWith(QLatin1Char('C'), Qt::CaseInsensitive) || words.size() != 3 || !areNumbers ||
        words.first().toInt() != simulateKey) {
        return {};
    }
    return simulatedKey(ls::KeyId::meta.key(words.at(2).toInt()),
                        ls::KeyActionId::meta.key(words.at(1).toInt()));
}

} // namespace model
