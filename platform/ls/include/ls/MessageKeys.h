// SPDX-License-Identifier: MIT
/// Keys of the message maps that the services exchange.
#pragma once

#include <QString>
#include <QVariantMap>

namespace ls {

/// A command map: `commandIdKey`, `senderIdKey` and the parameters of the command.
using Command = QVariantMap;

inline const QString commandIdKey = QStringLiteral("commandId");
inline const QString subCommandIdKey = QStringLiteral("subCommandId");
inline const QString senderIdKey = QStringLiteral("senderId");
inline const QString receiverIdKey = QStringLiteral("receiverId");
inline const QString notificationIdKey = QStringLiteral("notificationId");
inline const QString resultIdKey = QStringLiteral("resultId");
inline const QString errorIdKey = QStringLiteral("errorId");
inline const QString actionIdKey = QStringLiteral("actionId");
inline const QString keyKey = QStringLiteral("key");
inline const QString firstKeyKey = QStringLiteral("firstKey");
inline const QString secondKeyKey = QStringLiteral("secondKey");
inline const QString keysListKey = QStringLiteral("keysList");
inline const QString modifierKeyListKey = QStringLiteral("modifierKeyList");
inline const QString shortcutKeyListKey = QStringLiteral("shortcutKeyList");
inline const QString keyTimeouts = QStringLiteral("keyTimeouts");
inline const QString stateIdKey = QStringLiteral("stateId");

} // namespace ls
