// SPDX-License-Identifier: MIT
#include "checker/OutputWords.h"

#include "simulator/script/SentenceFiles.h"
#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>

namespace checker {

namespace {

using libtranslation::Sid::EmbosserCore;

/// The key whose name a sentence speaks; empty for other sentences.
QString keySpokenBy(const QString& sentence)
{
    const auto core = [](EmbosserCore number) {
        return QStringLiteral("EmbosserCore %1").arg(static_cast<int>(number));
    };
    if (sentence == core(EmbosserCore::KeyFunctionOrvane)) {
        return ls::KeyId::Function;
    }
    const vocabulary::KeyNames names = vocabulary::keyNames();
    for (auto it = names.cbegin(); it != names.cend(); ++it) {
        if (sentence == core(it.value())) {
            return it.key();
        }
    }
    return {};
}

QString speech(const model::Output& output)
{
    const QString sentence = QStringLiteral("%1 %2").arg(output.text, QString::number(output.sentence));
    const QString key = keySpokenBy(sentence);
    if (!key.isEmpty()) {
        return QStringLiteral("speaks \"%1\"").arg(key);
    }
    const QString name = SentenceFiles::sentences().key(sentence);
    return name.isEmpty() ? QStringLiteral("speaks the sentence %1, which has no name").arg(sentence)
                          : QStringLiteral("speaks the sentence %1").arg(name);
}

} // namespace

QString OutputWords::of(const model::Output& output)
{
    switch (output.kind) {
    case model::Output::Kind::Cancel:
        return QStringLiteral("cancels earlier speech");
    case model::Output::Kind::Speak:
        return speech(output);
    case model::Output::Kind::Announce:
        return QStringLiteral("announces %1 to %2, with %3")
            .arg(enumeration({output.text}), enumeration({output.receiver}), enumeration(output.keys));
    case model::Output::Kind::Log:
        break;
    }
    return output.text;
}

bool OutputWords::isPerceived(const model::Output& output)
{
    return output.kind == model::Output::Kind::Speak || output.kind == model::Output::Kind::Announce;
}

QString OutputWords::enumeration(const QStringList& names)
{
    QStringList words;
    for (const QString& name : names) {
        words.append(name.trimmed().isEmpty() ? QLatin1Char('"') + name + QLatin1Char('"') : name);
    }
    const QString last = words.isEmpty() ? QString() : words.takeLast();
    return words.isEmpty() ? last : words.join(QStringLiteral(", ")) + QStringLiteral(" and ") + last;
}

} // namespace checker
