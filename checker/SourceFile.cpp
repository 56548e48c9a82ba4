// SPDX-License-Identifier: MIT
#include "checker/SourceFile.h"

#include <algorithm>

namespace checker {

namespace {

constexpr int blockSize = 1024;

/// Whether a byte of UTF-8 begins a character. A byte order mark is not counted as one.
bool beginsCharacter(const QByteArray& text, int offset)
{
    constexpr int continuationMask = 0xC0;
    constexpr int continuation = 0x80;
    const bool isMark = offset == 0 && text.startsWith("\xEF\xBB\xBF");
    return !isMark && (static_cast<uchar>(text.at(offset)) & continuationMask) != continuation;
}

} // namespace

SourceFile::SourceFile(const QString& name, const QByteArray& text)
    : m_name(name), m_text(text), m_lineStarts{0}
{
    int characters = 0;
    for (int i = 0; i < text.size(); ++i) {
        if (i % blockSize == 0) {
            m_charactersBefore.append(characters);
        }
        characters += beginsCharacter(text, i) ? 1 : 0;
        if (text.at(i) == '\n') {
            m_lineStarts.append(i + 1);
        }
    }
}

Position SourceFile::position(int offset) const
{
    const int place = qBound(0, offset, m_text.size());
    const int index = lineIndexOf(place);
    return {index + 1, charactersBefore(place) - charactersBefore(m_lineStarts.value(index)) + 1};
}

Range SourceFile::lineAround(int offset) const
{
    const int index = lineIndexOf(qBound(0, offset, m_text.size()));
    const int begin = m_lineStarts.value(index);
    int end = m_lineStarts.value(index + 1, m_text.size() + 1) - 1;
    end -= end > begin && m_text.at(end - 1) == '\r' ? 1 : 0;
    return {begin, end};
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

int SourceFile::charactersBefore(int offset) const
{
    const int block = qMin(offset / blockSize, m_charactersBefore.size() - 1);
    int characters = m_charactersBefore.value(block);
    for (int i = qMax(0, block) * blockSize; i < offset; ++i) {
        characters += beginsCharacter(m_text, i) ? 1 : 0;
    }
    return characters;
}

} // namespace checker
