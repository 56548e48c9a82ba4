// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

/// Checks on the words of a script line. Each check returns a sentence about the fault, or an empty text.
namespace ScriptWords {

/// Whether there are `least` to `most` words (any number for `most` < 0); `usage` is shown if not.
QString checkCount(const QStringList& words, int least, int most, const QString& usage);
/// The embosser's models.
QStringList models();
QString checkModel(const QString& model);
QString checkKeys(const QStringList& keys);
QString checkState(const QString& state);
QString checkService(const QString& service);

/// The decimal number of a word; nothing when it is none or outside of the limits.
std::optional<qint64> number(const QString& word, qint64 least, qint64 most);

/// The sentence, without its middle if it quotes words of great length.
QString shortened(const QString& sentence);

/// `line` without its first `count` words, its blanks inside as written and those at both ends removed.
QString withoutWords(const QString& line, int count);

} // namespace ScriptWords
