// SPDX-License-Identifier: MIT
#include "service/KeyboardHandler.h"

#include "device/StateHandler.h"
#include "input/KeyboardManager.h"
#include "keys/LongKey.h"
#include "keys/ModifierKey.h"
#include "keys/ShortcutKey.h"
#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>
#include <ls/JFile.h>

#include <QLoggingCategory>

#include <algorithm>

Q_LOGGING_CATEGORY(handlerCategory, "KeyboardHandler", QtCriticalMsg)

using vocabulary::isMember;
using vocabulary::response;

namespace {

QVariantMap success()
{
    return response(ls::ResultId::Success);
}

QVariantMap success(const QString& key, const QVariant& value)
{
    QVariantMap map = success();
    map.insert(key, value);
    return map;
}

QVariantMap failure(const QString& error)
{
    return response(ls::ResultId::Failure, error);
}

bool isKey(const QString& identifier)
{
    return isMember(ls::KeyId::meta, identifier);
}

} // namespace

const QHash<QString, KeyboardHandler::Handler> KeyboardHandler::s_handlers{
    {ls::KeyboardHandlerCmdId::GetLastKey, &KeyboardHandler::getLastKey},
    {ls::KeyboardHandlerCmdId::GetLongKeysTimeout, &KeyboardHandler::getLongKeysTimeout},
    {ls::KeyboardHandlerCmdId::SimulateKey, &KeyboardHandler::simulateKey},
    {ls::KeyboardHandlerCmdId::SimulateModifier, &KeyboardHandler::simulateModifier},
    {ls::KeyboardHandlerCmdId::SimulateShortcut, &KeyboardHandler::simulateShortcut},
    {ls::KeyboardHandlerCmdId::StartTestMode, &KeyboardHandler::startTestMode},
    {ls::KeyboardHandlerCmdId::GetTestResult, &KeyboardHandler::getTestResult},
    {ls::KeyboardHandlerCmdId::GetModifierKeyList, &KeyboardHandler::getModifierKeyList},
    {ls::KeyboardHandlerCmdId::GetShortcutKeyList, &KeyboardHandler::getShortcutKeyList},
};

KeyboardHandler::KeyboardHandler(QObject* parent) : QObject(parent) {}

void KeyboardHandler::init()
{
    auto* reader = new ls::JFile(this);
    auto* modifierKey = new ModifierKey(*reader, this);
    auto* shortcutKey = new ShortcutKey(*reader, this);
    auto* longKey = new LongKey(*reader, this);
    auto* stateHandler = new StateHandler(this);
    m_manager = new KeyboardManager(*modifierKey, *shortcutKey, *longKey, *stateHandler, *this);
}

void KeyboardHandler::sendKeyboardChange(const ls::EnumKey& action, const ls::EnumKey& receiver,
                                         const QVariantMap& parameters)
{
    QVariantMap map{{ls::notificationIdKey, ls::KeyboardHandlerNotifId::KeyboardChange},
                    {ls::actionIdKey, action},
                    {ls::senderIdKey, m_sender},
                    {ls::receiverIdKey, receiver}};
    for (auto it = parameters.cbegin(); it != parameters.cend(); ++it) {
        map.insert(it.key(), it.value());
    }
    // Deliberate: only the first action after a command is attributed to the sender of the command.
    m_sender = ls::ServiceId::KeyboardHandler;
    Q_EMIT notification(map);
}

QVariantMap KeyboardHandler::process(const QVariantMap& command)
{
    const QString cmd = command.value(ls::commandIdKey).toString();
    if (!isMember(ls::KeyboardHandlerCmdId::meta, cmd)) {
        LOG_ERROR() << "Invalid command!";
        return failure(ls::ErrorId::InvalidCmd);
    }
    const QString from = command.value(ls::senderIdKey).toString();
    if (!isMember(ls::ServiceId::meta, from)) {
        LOG_ERROR() << "Invalid sender!";
        return failure(ls::ErrorId::InvalidSender);
    }
    const Handler handler = s_handlers.value(cmd);
    if (!handler) {
        LOG_ERROR() << cmd << "command n/a!";
        return failure(ls::ErrorId::CmdNotFound);
    }
    m_sender = from;
    qCDebug(handlerCategory) << "process command -" << cmd << "from sender -" << from;
    return (this->*handler)(command);
}

QVariantMap KeyboardHandler::getLastKey(const ls::Command&)
{
    return success(ls::keyKey, static_cast<int>(m_manager->lastEvent().code));
}

QVariantMap KeyboardHandler::getLongKeysTimeout(const ls::Command&)
{
    return success(ls::keyTimeouts, m_manager->longKeysTimeout());
}

QVariantMap KeyboardHandler::simulateKey(const ls::Command& command)
{
    const QString action = command.value(ls::actionIdKey).toString();
    if (!isMember(ls::KeyActionId::meta, action)) {
        LOG_ERROR() << "Invalid key action received!";
        return failure(ls::ErrorId::InvalidValue);
    }
    const QString key = command.value(ls::keyKey).toString();
    if (!isKey(key)) {
        LOG_ERROR() << "Invalid key received!";
        return failure(ls::ErrorId::InvalidValue);
    }
    if (!m_manager->simulateKey(key, action)) {
        LOG_FAILED();
        return failure(ls::ErrorId::ServiceError);
    }
    return success();
}

QVariantMap KeyboardHandler::simulateModifier(const ls::Command& command)
{
    return simulateKeys(command, &KeyboardManager::simulateModifier, QStringLiteral("modifier"), __func__,
                        Q_FUNC_INFO);
}

QVariantMap KeyboardHandler::simulateShortcut(const ls::Command& command)
{
    return simulateKeys(command, &KeyboardManager::simulateShortcut, QStringLiteral("shortcut"), __func__,
                        Q_FUNC_INFO);
}

QVariantMap KeyboardHandler::startTestMode(const ls::Command&)
{
    m_manager->startTestMode();
    return success();
}

QVariantMap KeyboardHandler::getTestResult(const ls::Command&)
{
    // Deliberate: the number of keys replaces the result identifier; callers rely on it.
    return success(ls::resultIdKey, m_manager->takeTestResult());
}

QVariantMap KeyboardHandler::getModifierKeyList(const ls::Command&)
{
    return success(ls::modifierKeyListKey, m_manager->modifierKeyList());
}

QVariantMap KeyboardHandler::getShortcutKeyList(const ls::Command&)
{
    return success(ls::shortcutKeyListKey, m_manager->shortcutKeyList());
}

QVariantMap KeyboardHandler::simulateKeys(const ls::Command& command, KeysOperation operation,
                                          const QString& gesture, const char* caller,
                                          const char* callerSignature)
{
    const auto logError = [&](const QString& text) {
        vocabulary::logLine(caller, callerSignature, "ERROR:").noquote() << text.arg(gesture);
    };
    if (!command.contains(ls::keysListKey)) {
        logError(QStringLiteral("Invalid %1 received!"));
        return failure(ls::ErrorId::InvalidValue);
    }
    // A string becomes a list of one; any other type but a list becomes an empty list, which simulates
    // nothing.
    const QStringList keys = command.value(ls::keysListKey).toStringList();
    if (!std::all_of(keys.cbegin(), keys.cend(), isKey)) {
        logError(QStringLiteral("Invalid key included in the %1!"));
        return failure(ls::ErrorId::InvalidValue);
    }
    if (!(m_manager->*operation)(keys)) {
        vocabulary::logLine(caller, callerSignature, "FAILED!");
        return failure(ls::ErrorId::ServiceError);
    }
    return success();
}
