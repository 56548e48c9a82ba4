// SPDX-License-Identifier: MIT
#pragma once

#include "checker/SourceFile.h"
#include "model/KeyLists.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace checker {

/// A replacement of a part of a file.
struct TextEdit
{
    Range range;
    QByteArray text;
};

/// A change of a file that mends a finding.
struct Mend
{
    /// What the change is allowed to do.
    enum class Promise {
        /// The daemon reads the same rows.
        SameRows,
        /// The row of the finding changes, and no other.
        OneRow,
        /// The list gets its rows, and no other list changes.
        WholeList,
        /// The row `moved` goes to the end of its list. Then the row of the finding works, and all rows that
        /// work now still do.
        Move,
    };

    Promise promise = Promise::SameRows;
    /// Empty for a move.
    QVector<TextEdit> edits;
    model::RowId moved{model::List::LongPresses, -1};
    /// What was done: ""Hlep" is now "Help"".
    QString done;
};

namespace TextEdits {

/// `text` with the edits, whose ranges must not overlap.
QByteArray applied(const QByteArray& text, QVector<TextEdit> edits);
/// The edits that put the element `index` after all others and keep what is between the elements.
QVector<TextEdit> toEnd(const QByteArray& text, const QVector<Range>& elements, int index);
/// A text as a JSON value, with its quotation marks.
QByteArray quoted(const QString& text);

} // namespace TextEdits

} // namespace checker
