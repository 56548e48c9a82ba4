// SPDX-License-Identifier: MIT
#pragma once

#include "checker/SourceFile.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace checker {

/// Qt's reader ignores it at the beginning of a text.
inline const QByteArray byteOrderMark = QByteArrayLiteral("\xEF\xBB\xBF");

/// A value of a JSON text, with its place. Qt's reader decides what a text means; these nodes only say where
/// each value is.
struct JsonNode
{
    enum class Kind { Object, Array, Text, Literal };

    Kind kind = Kind::Literal;
    Range range;
    /// For a member of an object: its name, and the place of the name with its quotation marks.
    QString name;
    Range nameRange;
    /// The value as the file has it; empty for objects and arrays.
    QByteArray written;
    /// The members of an object, or the elements of an array.
    std::vector<JsonNode> children;

    /// The last member with this name, which is the one that Qt's reader keeps if `keepsLast()`. Null if
    /// there is none. Qt's reader may keep another one if a name begins with a byte order mark, because it
    /// compares such names wrongly.
    const JsonNode* member(const QString& wanted) const;
    /// Whether Qt's reader keeps the last of an object's members with the same name. Of more than 16 members,
    /// it may keep any of them, because it sorts so many without regard to their order.
    bool keepsLast() const;
    /// Whether the other value is written in the same way, apart from blanks.
    bool isWrittenLike(const JsonNode& other) const;
};

namespace JsonText {

/// The root of `text`, which Qt's reader must have accepted. For other texts, the result is meaningless but
/// within the bounds of the text.
JsonNode scan(const QByteArray& text);

} // namespace JsonText

} // namespace checker
