// SPDX-License-Identifier: MIT
#include "control/Output.h"

#include "checker/Printable.h"

#include <QJsonDocument>
#include <QStringList>

#include <algorithm>

#include <langinfo.h>

namespace control {

namespace {

bool isAscii(const QString& text)
{
    constexpr ushort lastAscii = 0x7f;
    return std::all_of(text.begin(), text.end(), [](QChar unit) { return unit.unicode() <= lastAscii; });
}

QString escaped(const QString& units)
{
    constexpr int digits = 4;
    constexpr int base = 16;
    QString text;
    for (const QChar unit : units) {
        text += QStringLiteral("\\u%1").arg(unit.unicode(), digits, base, QLatin1Char('0'));
    }
    return text;
}

/// `text` without characters that `charset` does not have.
QString within(const QTextCodec& charset, const QString& text)
{
    if (isAscii(text) || charset.canEncode(text)) {
        return text;
    }
    QString result;
    for (int i = 0; i < text.size(); ++i) {
        const QString units = text.mid(i, text.at(i).isHighSurrogate() ? 2 : 1);
        result += charset.canEncode(units) ? units : escaped(units);
        i += units.size() - 1;
    }
    return result;
}

} // namespace

const QTextCodec& localCharset()
{
    // Qt takes the locale "C" for Latin-1.
    const QTextCodec* known = QTextCodec::codecForName(nl_langinfo(CODESET));
    return known ? *known : *QTextCodec::codecForName("US-ASCII");
}

QByteArray encodedLine(const QString& text, const QTextCodec& charset)
{
    // Without this state, the codec would write a byte order mark.
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString line = within(charset, checker::printable(text)) + QLatin1Char('\n');
    return charset.fromUnicode(line.constData(), line.size(), &state);
}

QByteArray encodedObject(const QJsonObject& object, const QTextCodec& charset)
{
    const QByteArray json = QJsonDocument(object).toJson(QJsonDocument::Compact);
    return encodedLine(QString::fromUtf8(json), charset);
}

void Output::lines(const QString& text)
{
    const QString whole = text.endsWith(QLatin1Char('\n')) ? text.chopped(1) : text;
    const QStringList all = whole.split(QLatin1Char('\n'));
    for (const QString& each : all) {
        line(each);
    }
}

void Output::write(const QByteArray& bytes)
{
    m_isBroken = m_device.write(bytes) != bytes.size() || m_isBroken;
}

} // namespace control
