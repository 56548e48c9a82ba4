// SPDX-License-Identifier: MIT
#include "checker/SourceFile.h"

#include <algorithm>

namespace checker {

SourceFile::SourceFile(const QString& name, const QByteArray& text) : m_name(name), m_text(text), m_lineStarts{0}
{
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) == '\n') {
            m_lineStarts.append(i + 1);
        }
    }
}

Position SourceFile::positionOf(int offset) const
{
    const int index = lineIndexOf(qBound(0, offset, m_text.size()));
    const int begin = m_lineStarts.value(index);
    const QString before = textOf({begin, qMin(offset, m_text.size())});
    return {index + 1, before.toUcs4().size() + 1};
}

QString SourceFile::line(int line) const
{
    const int begin = m_lineStarts.value(line - 1, m_text.size());
    const int end = m_lineStarts.value(line, m_text.size() + 1) - 1;
    const QString text = textOf({begin, end});
    return text.endsWith(QLatin1Char('\r')) ? text.chopped(1) : text;
}

QString SourceFile::textOf(Range range) const
{
    return QString::fromUtf8(m_text.mid(range.begin, range.end - range.begin));
}

int SourceFile::lineIndexOf(int offset) const
{
    const auto next = std::upper_bound(m_lineStarts.begin(), m_lineStarts.end(), offset);
    return qMax(0, static_cast<int>(next - m_lineStarts.begin()) - 1);
}

} // namespace checker
