// SPDX-License-Identifier: MIT
#pragma once

#include "input/Keyboard.h"
#include "vocabulary/Vocabulary.h"

#include <ls/EnumKey.h>

#include <QObject>
#include <QTimer>
#include <QVariantMap>

class KeyboardHandler;
class LongKey;
class ModifierKey;
class ShortcutKey;
class StateHandler;

namespace detail {
class SpeechFeedback;
}

/// The router: owns the two input devices, feeds the recognisers, decides what a lone key means in the
/// current state, runs the keyboard test and the factory-reset hold, and hands every action that is valid
/// in the current state to the service object.
class KeyboardManager : public QObject
{
    Q_OBJECT

public:
    /// Opens the devices and asks for the current state, which blocks for a round trip on the bus. The
    /// service object is also the parent; all arguments must outlive the router.
    KeyboardManager(ModifierKey& modifierKey, ShortcutKey& shortcutKey, LongKey& longKey,
                    StateHandler& stateHandler, KeyboardHandler& keyboardHandler);

    /// The record of the last key event of either device, real or simulated; zeros before the first.
    input_event lastEvent() const;
    /// The long-press time of each key in milliseconds.
    QVariantMap longKeysTimeout() const;
    /// The content of the modifier list and the time in which keys are combined, in milliseconds.
    QVariantMap modifierKeyList() const;
    /// The content of the shortcut list and the time in which keys are combined, in milliseconds.
    QVariantMap shortcutKeyList() const;

    /// Begins the keyboard test, which a release of the Ten key in any state but Idle ends. Earlier results
    /// are kept.
    void startTestMode();
    /// The number of distinct keys that were released in the test, or were the unknown key; forgets them.
    int takeTestResult();
    /// Lets the first device emit a key event; false when the action has no input event value.
    bool simulateKey(const ls::EnumKey& key, const ls::EnumKey& action);
    /// Hands the keys in order to the modifier recogniser; true.
    bool simulateModifier(const QStringList& keys);
    /// Hands the keys in order to the shortcut recogniser; true.
    bool simulateShortcut(const QStringList& keys);

private Q_SLOTS:
    void onEvent(const ls::EnumKey& action, const ls::EnumKey& receiver, const ls::EnumKey& validOnState,
                 const QVariantMap& message);
    void onKeyEvent(const ls::KeyEvent& event);

private:
    void openDevices();
    void connectSources(StateHandler& stateHandler);
    void onPress(const ls::EnumKey& key);
    void onRelease(const ls::EnumKey& key);
    void onRepeat(const ls::EnumKey& key);
    void onIdleRelease(const ls::EnumKey& previousKey);
    void onTestRelease();
    void onSingleKeyTimeout();
    void onFactoryResetTimeout();
    void sendSingleKey();
    void resetKeys();
    void speakLastKey();
    bool isLastKeyMenu() const;

    QTimer m_factoryResetTimer;
    ModifierKey& m_modifierKey;
    ShortcutKey& m_shortcutKey;
    LongKey& m_longKey;
    KeyboardHandler& m_keyboardHandler;
    Keyboard m_firstDevice;
    Keyboard m_secondDevice;
    ls::EnumKey m_lastKey;
    ls::EnumKey m_currentState;
    detail::SpeechFeedback* m_speech;
    QTimer m_singleKeyTimer;
    bool m_testMode = false;
    bool m_gestureSeen = false;
    bool m_isOrvane = false;
    QVariantMap m_testResult;
    vocabulary::KeyNames m_keyNames = vocabulary::keyNames();
};
