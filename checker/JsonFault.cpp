// SPDX-License-Identifier: MIT
#include "checker/JsonFault.h"

#include "checker/JsonText.h"

#include <QRegularExpression>

#include <optional>

namespace checker {

namespace {

/// Reads a text by the grammar of JSON until the first fault. Needs no stack of calls, because a text may be
/// nested as deeply as it is long.
class GrammarReader
{
public:
    explicit GrammarReader(const QByteArray& text)
        : m_text(text), m_at(text.startsWith(byteOrderMark) ? byteOrderMark.size() : 0)
    {}

    std::optional<JsonFault> read();

private:
    bool readBeginning();
    bool readName();
    bool readString();
    bool readEnds();
    bool readWord();
    bool take(char wanted);
    bool isNext(char wanted);
    void skipBlanks();
    bool fail(const QString& fault);
    bool isAtEnd() const { return m_at >= m_text.size(); }
    QString nextThing() const;

    const QByteArray& m_text;
    int m_at;
    QByteArray m_ends; // the brackets that close what is open
    std::optional<JsonFault> m_fault;
};

std::optional<JsonFault> GrammarReader::read()
{
    while (readBeginning() && readEnds() && !m_ends.isEmpty()) {
    }
    skipBlanks();
    if (!m_fault && !isAtEnd()) {
        fail(QStringLiteral("the text should end"));
    }
    return m_fault;
}

/// Reads a value that has no parts, or the brackets and the name before the first part of one.
bool GrammarReader::readBeginning()
{
    while (isNext('{') || isNext('[')) {
        m_ends.append(m_text.at(m_at++) == '{' ? '}' : ']');
        if (isNext(m_ends.back())) {
            return true;
        }
        if (m_ends.back() == '}' && !readName()) {
            return false;
        }
    }
    return isNext('"') ? readString() : readWord() || fail(QStringLiteral("a value is missing"));
}

bool GrammarReader::readName()
{
    if (!isNext('"')) {
        return fail(QStringLiteral("a name in double quotes is missing"));
    }
    return readString() && (take(':') || fail(QStringLiteral("a colon is missing")));
}

/// A line end in a text is not JSON, although Qt's reader takes it: the quote was most likely forgotten.
bool GrammarReader::readString()
{
    const int begin = m_at++;
    while (!isAtEnd() && m_text.at(m_at) != '"' && m_text.at(m_at) != '\n') {
        m_at += m_text.at(m_at) == '\\' ? 2 : 1;
    }
    if (isAtEnd() || m_text.at(m_at) == '\n') {
        m_fault = JsonFault{begin, QStringLiteral("the quote that begins here is not closed in its line")};
        return false;
    }
    ++m_at;
    return true;
}

/// Reads what follows a value: the brackets that close, then a comma, with the name of the next member.
bool GrammarReader::readEnds()
{
    while (!m_ends.isEmpty() && take(m_ends.back())) {
        m_ends.chop(1);
    }
    if (m_ends.isEmpty()) {
        return true;
    }
    const char end = m_ends.back();
    if (!take(',')) {
        return fail(QStringLiteral("a comma or %1 is missing").arg(QLatin1Char(end)));
    }
    return end == ']' || readName();
}

/// Reads a number, true, false or null.
bool GrammarReader::readWord()
{
    static const QRegularExpression value(
        QStringLiteral(R"(\A(?:-?(?:0|[1-9]\d*)(?:\.\d+)?(?:[eE][+-]?\d+)?|true|false|null)\z)"));
    static const QByteArray marks("{}[]\",: \t\n\r");
    skipBlanks();
    int end = m_at;
    while (end < m_text.size() && !marks.contains(m_text.at(end))) {
        ++end;
    }
    const bool isValue = value.match(QString::fromLatin1(m_text.mid(m_at, end - m_at))).hasMatch();
    m_at = isValue ? end : m_at;
    return isValue;
}

bool GrammarReader::take(char wanted)
{
    const bool isHere = isNext(wanted);
    m_at += isHere ? 1 : 0;
    return isHere;
}

bool GrammarReader::isNext(char wanted)
{
    skipBlanks();
    return !isAtEnd() && m_text.at(m_at) == wanted;
}

void GrammarReader::skipBlanks()
{
    static const QByteArray blanks(" \t\n\r");
    while (!isAtEnd() && blanks.contains(m_text.at(m_at))) {
        ++m_at;
    }
}

bool GrammarReader::fail(const QString& fault)
{
    skipBlanks();
    m_fault = JsonFault{m_at, fault + QLatin1Char(' ') + nextThing()};
    return false;
}

QString GrammarReader::nextThing() const
{
    constexpr int maxBytes = 4; // of a character
    if (isAtEnd()) {
        return QStringLiteral("at the end");
    }
    const auto characters = QString::fromUtf8(m_text.mid(m_at, maxBytes)).toUcs4();
    const QString next = QString::fromUcs4(characters.constData(), 1);
    return next == QLatin1String("\"") ? QStringLiteral("before a quote")
                                       : QStringLiteral("before \"%1\"").arg(next);
}

} // namespace

JsonFault JsonFault::of(const QByteArray& text, const QJsonParseError& error)
{
    return GrammarReader(text).read().value_or(JsonFault{error.offset, error.errorString()});
}

} // namespace checker
