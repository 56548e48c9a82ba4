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
    /// service object is also the parent. All arguments must outlive the router.
    KeyboardManager(ModifierKey& modifierKey, ShortcutKey& shortcutKey, LongKey& longKey,
                    StateHandler& stateHandler, KeyboardHandler& keyboardHandler);

    /// The record of the last key event of either device, real or simulated; zeros before the first.
    input_event lastEvent() const;
    /// The long-press time of each key in milliseconds.
    QVariantMap longKeysTimeout() const;
    /// The content of the modifier list, and in milliseconds the time within which keys are combined.
    QVariantMap modifierKeyList() const;
    /// The content of the shortcut list, and in milliseconds the time within which keys are combined.
    QVariantMap shortcutKeyList() const;

    /// Starts the keyboard test. A release of the Ten key ends it, in any state but Idle. Keeps earlier
    /// results.
    void startTestMode();
    /// The number of distinct keys released during the test; releases of the unknown key always count. Clears
    /// the result.
    int takeTestResult();
    /// Makes the first device emit a key event. Returns false if the action has no input event value.
    bool simulateKey(const ls::EnumKey& key, const ls::EnumKey& action);
    /// Passes the keys in order to the modifier recogniser. Returns true.
    bool simulateModifier(const QStringList& keys);
    /// Passes the keys in order to the shortcut recogniser. Returns true.
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
