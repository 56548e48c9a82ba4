// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QJsonObject>
#include <QString>
#include <QTextCodec>

namespace control {

/// The character set of the user's locale, which the application has set; ASCII if Qt does not know it.
const QTextCodec& localCharset();

/// A line of `text`, with its end, in a character set. Characters that a terminal would act on, and those
/// that the character set does not have, become "\u001b".
QByteArray encodedLine(const QString& text, const QTextCodec& charset);
/// `object` in one line, with its end. The escapes are those of JSON.
QByteArray encodedObject(const QJsonObject& object, const QTextCodec& charset);

/// Standard output or standard error of the program. Each line is written at once.
class Output
{
public:
    /// `device` must be open, without a buffer, and outlive the object.
    Output(QIODevice& device, const QTextCodec& charset) : m_device(device), m_charset(charset) {}

    /// A line for people; names in it may be hostile.
    void line(const QString& text) { write(encodedLine(text, m_charset)); }
    /// A line for programs.
    void object(const QJsonObject& object) { write(encodedObject(object, m_charset)); }
    /// Lines of the program's own text, such as a help.
    void lines(const QString& text);

    const QTextCodec& charset() const { return m_charset; }
    /// Whether something could not be written.
    bool isBroken() const { return m_isBroken; }

private:
    void write(const QByteArray& bytes);

    QIODevice& m_device;
    const QTextCodec& m_charset;
    bool m_isBroken = false;
};

} // namespace control
