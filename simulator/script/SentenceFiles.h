// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>

/// The speech daemon's translation files, numbered as in the requests to it, and their sentences.
namespace SentenceFiles {

/// "EmbosserCore" for 0, and so on; empty for an unknown number.
QString nameOf(int number);
bool isKnown(const QString& name);
/// Each sentence that has a name, as "FILE NUMBER": "EmbosserCore 24" for "KeyUp".
const QMap<QString, QString>& sentences();

} // namespace SentenceFiles
