// SPDX-License-Identifier: MIT
#pragma once

#include <ls/EnumKey.h>
#include <ls/IDBusAdaptor.h>
#include <ls/MessageKeys.h>

#include <QHash>
#include <QObject>
#include <QVariantMap>

class KeyboardManager;

/// The service object: checks and dispatches every command, from the bus and from the console, and announces
/// the key actions that the router reports.
class KeyboardHandler : public QObject, public ls::IDBusAdaptor
{
    Q_OBJECT
    Q_INTERFACES(ls::IDBusAdaptor)

public:
    explicit KeyboardHandler(QObject* parent);

    /// Builds the recognisers, the state tracker and the router as children. Must be called once, before the
    /// first command.
    void init();

    /// Announces a valid key action as a `KeyboardChange` notification. `parameters` replace fields of the
    /// same name. Called by the router.
    void sendKeyboardChange(const ls::EnumKey& action, const ls::EnumKey& receiver,
                            const QVariantMap& parameters);

public Q_SLOTS:
    /// Executes `command`. The response always holds a result and an error; the error is "Undefined" on
    /// success.
    QVariantMap process(const QVariantMap& command) override;

Q_SIGNALS:
    void notification(const QVariantMap& notification) override;

private:
    using Handler = QVariantMap (KeyboardHandler::*)(const ls::Command&);
    using KeysOperation = bool (KeyboardManager::*)(const QStringList&);

    static const QHash<QString, Handler> s_handlers;

    QVariantMap getLastKey(const ls::Command& command);
    QVariantMap getLongKeysTimeout(const ls::Command& command);
    QVariantMap simulateKey(const ls::Command& command);
    QVariantMap simulateModifier(const ls::Command& command);
    QVariantMap simulateShortcut(const ls::Command& command);
    QVariantMap startTestMode(const ls::Command& command);
    QVariantMap getTestResult(const ls::Command& command);
    QVariantMap getModifierKeyList(const ls::Command& command);
    QVariantMap getShortcutKeyList(const ls::Command& command);
    QVariantMap simulateKeys(const ls::Command& command, KeysOperation operation, const QString& gesture,
                             const char* caller, const char* callerSignature);

    QString m_sender;
    KeyboardManager* m_manager = nullptr;
};
