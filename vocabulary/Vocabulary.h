// SPDX-License-Identifier: MIT
/// What the daemon's classes share: constants, identifier look-ups, the response builder and the log prefix.
#pragma once

#include <ls/EnumKey.h>
#include <translation/Sid.h>

#include <QDebug>
#include <QMap>
#include <QString>
#include <QVariantMap>

namespace vocabulary {

/// Stands where there is no error, no state, no receiver or no known key.
inline const QString undefined = QStringLiteral("Undefined");

inline const QString dataDirectory = QStringLiteral("/var/lib/keyboard-handler");
/// Part of the set of files on a device, but read by no component of this daemon.
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

/// The sentences that speak the keys' names. A key that is not among them has the value 0, which is spoken
/// like any other. Every component keeps the copy
/// that this returns, because the router changes one entry of its own on one embosser model.
KeyNames keyNames();

/// Whether `identifier` is a member of the family with the table `meta`. An entry with the smallest
/// 32-bit integer as its ordinal is no member.
bool isMember(const QMap<QString, int>& meta, const QString& identifier);

/// A new response map of exactly a result (`ls::ResultId`) and an error (`ls::ErrorId`, or `undefined`).
QVariantMap response(const QString& result, const QString& error = undefined);

/// The qualified name of a function and `tag`, with a blank between: what every error line begins with.
/// `signature` is the compiler's text of the function named `shortName`, which the name is cut from.
QString logPrefix(const QString& shortName, const QString& signature, const QString& tag);

/// Starts a critical log line that begins with `logPrefix()`; strings streamed into it are quoted.
QDebug logLine(const char* shortName, const char* signature, const char* tag);

} // namespace vocabulary

#define LOG_ERROR() vocabulary::logLine(__func__, Q_FUNC_INFO, "ERROR:")
#define LOG_WARNING() vocabulary::logLine(__func__, Q_FUNC_INFO, "WARN:")
#define LOG_FAILED() vocabulary::logLine(__func__, Q_FUNC_INFO, "FAILED!")
