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
    Position position(int offset) const;
    /// The line with a byte, without its end.
    Range lineAround(int offset) const;
    /// The bytes of a range, decoded. Invalid UTF-8 is replaced.
    QString textOf(Range range) const;

private:
    int lineIndexOf(int offset) const;
    int charactersBefore(int offset) const;

    QString m_name;
    QByteArray m_text;
    QVector<int> m_lineStarts;
    // The characters before each block: a file may be a single line of a mebibyte with thousands of findings.
    QVector<int> m_charactersBefore;
};

} // namespace checker
