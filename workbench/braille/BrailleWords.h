// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QHash>
#include <QString>

/// Translates text into uncontracted Unified English Braille with liblouis, in North American ASCII braille.
/// Not thread-safe, because liblouis is not.
///
/// Uncontracted, because most words of a key card are identifiers, which must be read exactly as written. The
/// code represents capitals, digits and punctuation without ambiguity.
class BrailleWords
{
public:
    BrailleWords();

    /// Whether liblouis has found its tables; `translate` needs them.
    bool isUsable() const { return m_isUsable; }
    /// The names of the tables, for a message.
    static QString tables();

    /// The words of `text`, without blanks. A character unknown to the code becomes its number.
    QByteArrayList translate(const QString& text);

private:
    bool m_isUsable;
    QHash<QString, QByteArray> m_cache;
};
