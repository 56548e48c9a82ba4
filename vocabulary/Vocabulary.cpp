// SPDX-License-Identifier: MIT
#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <limits>

namespace vocabulary {

KeyNames keyNames()
{
    using libtranslation::Sid::EmbosserCore;
    return {
        {ls::KeyId::On, EmbosserCore::KeyOn},       {ls::KeyId::Off, EmbosserCore::KeyOff},
        {ls::KeyId::Feed, EmbosserCore::KeyFeed},   {ls::KeyId::Help, EmbosserCore::KeyHelp},
        {ls::KeyId::Menu, EmbosserCore::KeyMenu},   {ls::KeyId::Back, EmbosserCore::KeyBack},
        {ls::KeyId::Right, EmbosserCore::KeyRight}, {ls::KeyId::Up, EmbosserCore::KeyUp},
        {ls::KeyId::Down, EmbosserCore::KeyDown},   {ls::KeyId::Ok, EmbosserCore::KeyOk},
        {ls::KeyId::Chs, EmbosserCore::KeyChs},     {ls::KeyId::One, EmbosserCore::KeyOne},
        {ls::KeyId::Ten, EmbosserCore::KeyTen},     {ls::KeyId::Function, EmbosserCore::KeyFunction},
    };
}

bool isMember(const QMap<QString, int>& meta, const QString& identifier)
{
    const auto entry = meta.constFind(identifier);
    return entry != meta.cend() && entry.value() != std::numeric_limits<int>::min();
}

QVariantMap response(const QString& result, const QString& error)
{
    return {{ls::resultIdKey, result}, {ls::errorIdKey, error}};
}

QString logPrefix(const QString& shortName, const QString& signature, const QString& tag)
{
    // If the signature lacks the name (the call operator of a lambda), `position` is -1 and the result is a
    // tail of the signature. Deliberate: technicians search logs for that text.
    const int position = signature.indexOf(shortName);
    const int start = signature.lastIndexOf(QLatin1Char(' '), position) + 1;
    const int end = signature.indexOf(QLatin1Char('('), position + shortName.size());
    return signature.mid(start, end < start ? -1 : end - start) + QLatin1Char(' ') + tag;
}

QDebug logLine(const char* shortName, const char* signature, const char* tag)
{
    // Unlike a default-constructed logger, this one has the category "default".
    QDebug line = QMessageLogger(nullptr, 0, nullptr).critical();
    line.noquote() << logPrefix(QString::fromLatin1(shortName), QString::fromLatin1(signature),
                                QString::fromLatin1(tag));
    line.quote();
    return line;
}

} // namespace vocabulary
