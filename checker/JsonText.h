// SPDX-License-Identifier: MIT
#pragma once

#include "checker/SourceFile.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace checker {

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
    /// The name by which Qt's reader recognises equal members: with a byte order mark at its beginning, which
    /// the reader removes from the name only later.
    QString key;
    /// The value as the file has it; empty for objects and arrays.
    QByteArray written;
    /// The members of an object, or the elements of an array.
    std::vector<JsonNode> children;

    /// The member whose value the loader gets from Qt's reader: the last one with this name. One whose name
    /// begins with a byte order mark comes before all others. Null if there is none.
    const JsonNode* member(const QString& wanted) const;
    /// Whether the other value is written in the same way, apart from blanks.
    bool isWrittenLike(const JsonNode& other) const;

private:
    bool isReplaced(const JsonNode& child) const;
};

namespace JsonText {

/// The root of `text`, which Qt's reader must have accepted. For other texts, the result is meaningless but
/// within the bounds of the text.
JsonNode scan(const QByteArray& text);

} // namespace JsonText

} // namespace checker
