// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QHash>
#include <QString>

/// Puts text into uncontracted Unified English Braille by liblouis, a cell for each character of North
/// American ASCII braille. liblouis is not thread-safe: for one thread of the program at a time.
///
/// Uncontracted, because the words of a key card are mostly identifiers, which must be read exactly as they
/// are written; and this code shows capitals, digits and punctuation so that each of them can be told again.
class BrailleWords
{
public:
    BrailleWords();

    /// Whether liblouis has its tables; without them there are no words.
    bool isUsable() const { return m_isUsable; }
    /// The tables by name, for a message.
    static QString tables();

    /// The words of `text`, none of which has a blank in it. A character that the code does not know is
    /// written as its number.
    QByteArrayList of(const QString& text);

private:
    bool m_isUsable;
    QHash<QString, QByteArray> m_known;
};
