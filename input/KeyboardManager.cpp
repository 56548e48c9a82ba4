// SPDX-License-Identifier: MIT
#include "input/KeyboardManager.h"

#include "device/Embosser.h"
#include "device/SpeechFeedback.h"
#include "device/StateHandler.h"
#include "keys/KeyRules.h"
#include "keys/LongKey.h"
#include "keys/ModifierKey.h"
#include "keys/ShortcutKey.h"
#include "service/KeyboardHandler.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>
#include <vantre/Singleton.h>

#include <QLoggingCategory>

Q_LOGGING_CATEGORY(managerCategory, "KeyboardManager", QtCriticalMsg)

using libtranslation::Sid::EmbosserCore;
using libtranslation::Sid::EmbosserError;
using libtranslation::Sid::EmbosserMenu;

namespace {

QVariantMap withInterval(QVariantMap list)
{
    list.insert(ls::keyTimeouts, static_cast<int>(KeyRules::singleKeyInterval.count()));
    return list;
}

} // namespace

KeyboardManager::KeyboardManager(ModifierKey& modifierKey, ShortcutKey& shortcutKey, LongKey& longKey,
                                 StateHandler& stateHandler, KeyboardHandler& keyboardHandler)
    : QObject(&keyboardHandler)
    , m_modifierKey(modifierKey)
    , m_shortcutKey(shortcutKey)
    , m_longKey(longKey)
    , m_keyboardHandler(keyboardHandler)
    , m_lastKey(ls::KeyId::Unknown)
    , m_currentState(stateHandler.getState())
    , m_speech(libvantre::Singleton<detail::SpeechFeedback>::instance())
    , m_isOrvane(libvantre::Singleton<detail::Embosser>::instance()->isOrvane())
{
    if (m_isOrvane) {
        m_keyNames.insert(ls::KeyId::Function, EmbosserCore::KeyFunctionOrvane);
    }
    openDevices();
    connectSources(stateHandler);
    resetKeys();
}

input_event KeyboardManager::lastEvent() const
{
    return m_firstDevice.lastEvent().event();
}

QVariantMap KeyboardManager::longKeysTimeout() const
{
    return m_longKey.timeouts();
}

QVariantMap KeyboardManager::modifierKeyList() const
{
    return withInterval(m_modifierKey.keyList());
}

QVariantMap KeyboardManager::shortcutKeyList() const
{
    return withInterval(m_shortcutKey.keyList());
}

void KeyboardManager::startTestMode()
{
    m_testMode = true;
}

int KeyboardManager::takeTestResult()
{
    const int count = m_testResult.size();
    m_testResult.clear();
    return count;
}

bool KeyboardManager::simulateKey(const ls::EnumKey& key, const ls::EnumKey& action)
{
    return m_firstDevice.simulateKey(key, action);
}

bool KeyboardManager::simulateModifier(const QStringList& keys)
{
    for (const QString& key : keys) {
        m_modifierKey.process(key);
    }
    return true;
}

bool KeyboardManager::simulateShortcut(const QStringList& keys)
{
    for (const QString& key : keys) {
        m_shortcutKey.process(key);
    }
    return true;
}

void KeyboardManager::onEvent(const ls::EnumKey& action, const ls::EnumKey& receiver,
                              const ls::EnumKey& validOnState, const QVariantMap& message)
{
    if (receiver == vocabulary::undefined) {
        LOG_WARNING() << "Invalid event, receiver service is undefined!";
        return;
    }
    if (action != ls::KeyboardActionId::SingleKey) {
        m_gestureSeen = true;
    }
    if (m_currentState == validOnState) {
        m_keyboardHandler.sendKeyboardChange(action, receiver, message);
        return;
    }
    // Deliberate: these texts contain blanks, so that the line has double blanks.
    LOG_WARNING() << "Expected state is: " << validOnState << ", but current"
                  << "state is: " << m_currentState << "!?";
}

void KeyboardManager::onKeyEvent(const ls::KeyEvent& event)
{
    if (!event.isKey()) {
        return;
    }
    m_firstDevice.setLastEvent(event);
    const ls::EnumKey key = Keyboard::keyOf(event);
    if (m_currentState == ls::StateId::Startup) {
        if (event.isKeyDown()) {
            m_speech->cancelAll();
            m_speech->speakFromId(EmbosserError::StartingUp);
        }
        return;
    }
    if (event.isKeyDown()) {
        onPress(key);
    } else if (event.isKeyUp()) {
        onRelease(key);
    } else if (event.isKeyRepeat()) {
        onRepeat(key);
    } else {
        LOG_ERROR() << "Action cannot be categorized!";
    }
}

void KeyboardManager::openDevices()
{
    for (const Keyboard* device : {&m_firstDevice, &m_secondDevice}) {
        if (device->isOpen()) {
            LOG_WARNING() << "Device is already opened!";
        }
    }
    m_firstDevice.setDevice(vocabulary::firstDeviceNode);
    m_secondDevice.setDevice(vocabulary::secondDeviceNode);
    for (Keyboard* device : {&m_firstDevice, &m_secondDevice}) {
        if (device->open()) {
            connect(device, &Keyboard::event, this, &KeyboardManager::onKeyEvent);
        }
    }
}

void KeyboardManager::connectSources(StateHandler& stateHandler)
{
    m_singleKeyTimer.setTimerType(Qt::PreciseTimer);
    m_singleKeyTimer.setInterval(KeyRules::singleKeyInterval);
    connect(&m_singleKeyTimer, &QTimer::timeout, this, &KeyboardManager::onSingleKeyTimeout);
    connect(&m_modifierKey, &ModifierKey::doubleModifier, this, &KeyboardManager::onEvent);
    connect(&m_shortcutKey, &ShortcutKey::doubleShortcut, this, &KeyboardManager::onEvent);
    connect(&m_longKey, &LongKey::longPress, this, &KeyboardManager::onEvent);
    connect(&stateHandler, &StateHandler::stateChange, this,
            [this](const ls::EnumKey& state) { m_currentState = state; });
    m_factoryResetTimer.setTimerType(Qt::PreciseTimer);
    m_factoryResetTimer.setSingleShot(true);
    connect(&m_factoryResetTimer, &QTimer::timeout, this, &KeyboardManager::onFactoryResetTimeout);
}

void KeyboardManager::onPress(const ls::EnumKey& key)
{
    qCDebug(managerCategory) << "Key" << key << "pressed.";
    if (key == ls::KeyId::FactoryReset) {
        m_factoryResetTimer.start(KeyRules::factoryResetHold);
    }
    m_shortcutKey.process(key);
    m_longKey.stop();
}

void KeyboardManager::onRelease(const ls::EnumKey& key)
{
    if (key == ls::KeyId::FactoryReset) {
        m_factoryResetTimer.stop();
    }
    m_modifierKey.process(key);
    m_longKey.stop();
    m_shortcutKey.reset();
    m_singleKeyTimer.start();
    qCDebug(managerCategory) << "Key" << key << "released.";
    const ls::EnumKey previousKey = m_lastKey;
    m_lastKey = key;
    if (m_currentState == ls::StateId::Idle) {
        onIdleRelease(previousKey);
    } else if (!m_testMode && m_lastKey != ls::KeyId::Unknown) {
        // Deliberate: in these states a release that completes a combination is sent as a single key, too,
        // and then all keys are forgotten.
        sendSingleKey();
    } else {
        onTestRelease();
    }
}

void KeyboardManager::onRepeat(const ls::EnumKey& key)
{
    qCDebug(managerCategory) << "Key" << key << "repeatedly pressed.";
    m_longKey.start(key);
}

void KeyboardManager::onIdleRelease(const ls::EnumKey& previousKey)
{
    if (isLastKeyMenu() && previousKey != ls::KeyId::Help) {
        sendSingleKey();
    } else if (!m_gestureSeen && !KeyRules::isSilent(m_lastKey, m_isOrvane)) {
        speakLastKey();
    }
}

void KeyboardManager::onTestRelease()
{
    if (m_keyNames.contains(m_lastKey)) {
        m_speech->cancelAll();
        speakLastKey();
    }
    m_testResult.insert(m_lastKey, true);
    if (m_lastKey == ls::KeyId::Ten) {
        // Deliberate: the key that ends the test is sent as Ok.
        m_lastKey = ls::KeyId::Ok;
        m_testMode = false;
        sendSingleKey();
    }
}

void KeyboardManager::onSingleKeyTimeout()
{
    m_singleKeyTimer.stop();
    const bool isLoneKey = !m_gestureSeen && m_lastKey != ls::KeyId::Unknown;
    if (m_currentState == ls::StateId::Idle && isLoneKey) {
        sendSingleKey();
    }
    resetKeys();
}

void KeyboardManager::onFactoryResetTimeout()
{
    m_speech->speakFromId(EmbosserMenu::FactoryReset);
    onEvent(ls::KeyboardActionId::FactoryReset, ls::ServiceId::WwwApi, m_currentState,
            {{ls::firstKeyKey, ls::KeyId::FactoryReset}});
}

void KeyboardManager::sendSingleKey()
{
    const QVariantMap message{{ls::firstKeyKey, m_lastKey}};
    const QStringList receivers = KeyRules::singleKeyReceivers(m_lastKey, m_currentState);
    for (const QString& receiver : receivers) {
        onEvent(ls::KeyboardActionId::SingleKey, receiver, m_currentState, message);
    }
    resetKeys();
}

void KeyboardManager::resetKeys()
{
    m_shortcutKey.reset();
    m_modifierKey.reset();
    m_longKey.stop();
    m_lastKey = ls::KeyId::Unknown;
    m_gestureSeen = false;
}

void KeyboardManager::speakLastKey()
{
    // Deliberate: a key without a name is spoken as sentence 0.
    m_speech->speakFromId(m_keyNames.value(m_lastKey));
}

bool KeyboardManager::isLastKeyMenu() const
{
    return m_lastKey == ls::KeyId::Menu;
}
