// SPDX-License-Identifier: MIT
/// Constants, identifier look-ups, the response builder and the log prefix, which the daemon's classes share.
#pragma once

#include <ls/EnumKey.h>
#include <translation/Sid.h>

#include <QDebug>
#include <QMap>
#include <QString>
#include <QVariantMap>

namespace vocabulary {

/// Marks a missing error, state or receiver, and a key without an identifier.
inline const QString undefined = QStringLiteral("Undefined");

/// The nodes of the front panel's two input devices.
inline const QString firstDeviceNode = QStringLiteral("/dev/input/event0");
inline const QString secondDeviceNode = QStringLiteral("/dev/input/event1");

inline const QString dataDirectory = QStringLiteral("/var/lib/keyboard-handler");
/// Belongs to the files of a device, but this daemon does not read it.
inline const QString keyListFile = QStringLiteral("keyList.json");
inline const QString modifierKeyListFile = QStringLiteral("modifierKeyList.json");
inline const QString longKeyListFile = QStringLiteral("longKeyList.json");
inline const QString shortcutKeyListFile = QStringLiteral("shortcutKeyList.json");

/// Keys of a speech request.
inline const QString speechServiceIdKey = QStringLiteral("serviceId");
inline const QString speechSentenceIdKey = QStringLiteral("sentenceId");
inline const QString speechArgumentsKey = QStringLiteral("arguments");
/// The translation files' numbers in a speech request.
constexpr int coreSentences = 0;
constexpr int errorSentences = 1;
constexpr int menuSentences = 2;

using KeyNames = QMap<ls::EnumKey, libtranslation::Sid::EmbosserCore>;

/// The sentences that speak the names of keys. Any other key has the value 0, which is spoken as well. Each
/// component keeps a separate copy, because the router changes an entry of its copy on one embosser model.
KeyNames keyNames();

/// Whether `identifier` is a member of the family with the table `meta`. An entry whose
/// ordinal is the smallest 32-bit integer is not a member.
bool isMember(const QMap<QString, int>& meta, const QString& identifier);

/// A response map of exactly a result (`ls::ResultId`) and an error (`ls::ErrorId`, or `undefined`).
QVariantMap response(const QString& result, const QString& error = undefined);

/// The start of an error line: the qualified name of the function `shortName`, a blank and `tag`. The name is
/// cut from `signature`, the compiler's text of the function.
QString logPrefix(const QString& shortName, const QString& signature, const QString& tag);

/// Starts a critical log line that begins with `logPrefix()`; strings streamed into it are quoted.
QDebug logLine(const char* shortName, const char* signature, const char* tag);

} // namespace vocabulary

#define LOG_ERROR() vocabulary::logLine(__func__, Q_FUNC_INFO, "ERROR:")
#define LOG_WARNING() vocabulary::logLine(__func__, Q_FUNC_INFO, "WARN:")
#define LOG_FAILED() vocabulary::logLine(__func__, Q_FUNC_INFO, "FAILED!")
