// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

/// Checks on the words of a script line. Each check returns a sentence about the fault, or an empty string.
namespace ScriptWords {

/// Expects `min` to `max` words, without an upper limit for `max` < 0; the fault quotes `usage`.
QString checkCount(const QStringList& words, int min, int max, const QString& usage);
/// The embosser's models.
QStringList models();
QString checkModel(const QString& model);
QString checkKeys(const QStringList& keys);
QString checkState(const QString& state);
QString checkService(const QString& service);

/// The decimal number in `word`, if it is within the limits.
std::optional<qint64> number(const QString& word, qint64 min, qint64 max);

/// The sentence, without its middle if it is too long.
QString shortened(const QString& sentence);

/// `line` without its first `count` words and the blanks at both ends.
QString withoutWords(const QString& line, int count);

} // namespace ScriptWords
