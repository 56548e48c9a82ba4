// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

namespace checker {

/// A half-open range of bytes of a text.
struct Range
{
    int begin = 0;
    int end = 0;
};

/// A place in a text, counted from 1. Columns are Unicode code points.
struct Position
{
    int line = 1;
    int column = 1;
};

/// The content of a file, with its lines.
class SourceFile
{
public:
    SourceFile() = default;
    /// `name` is the name that findings show.
    SourceFile(const QString& name, const QByteArray& text);

    const QString& name() const { return m_name; }
    const QByteArray& text() const { return m_text; }
    /// The place of a byte; an offset after the end counts as the end.
    Position positionOf(int offset) const;
    /// A line without its end; `line` counts from 1. Invalid UTF-8 is replaced.
    QString line(int line) const;
    /// The bytes of a range, decoded.
    QString textOf(Range range) const;

private:
    int lineIndexOf(int offset) const;

    QString m_name;
    QByteArray m_text;
    QVector<int> m_lineStarts;
};

} // namespace checker
