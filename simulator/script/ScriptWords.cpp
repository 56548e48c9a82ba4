// SPDX-License-Identifier: MIT
#include "simulator/script/ScriptWords.h"

#include <ls/Identifiers.h>

namespace {

QString checkMember(const QStringList& family, const QString& name, const QString& kind)
{
    if (family.contains(name)) {
        return {};
    }
    return QStringLiteral("Unknown %1 \"%2\"; known %1s: %3.")
        .arg(kind, name, family.join(QStringLiteral(", ")));
}

} // namespace

namespace ScriptWords {

QString checkCount(const QStringList& words, int min, int max, const QString& usage)
{
    if (words.size() >= min && (max < 0 || words.size() <= max)) {
        return {};
    }
    return QStringLiteral("Write it as: ") + usage;
}

QStringList models()
{
    return {QStringLiteral("Orvane"), QStringLiteral("Pellit")};
}

QString checkModel(const QString& model)
{
    return checkMember(models(), model, QStringLiteral("model"));
}

QString checkKeys(const QStringList& keys)
{
    for (const QString& key : keys) {
        const QString fault = checkMember(ls::KeyId::meta.keys(), key, QStringLiteral("key"));
        if (!fault.isEmpty()) {
            return fault;
        }
    }
    return {};
}

QString checkState(const QString& state)
{
    return checkMember(ls::StateId::meta.keys(), state, QStringLiteral("state"));
}

QString checkService(const QString& service)
{
    return checkMember(ls::ServiceId::meta.keys(), service, QStringLiteral("service"));
}

std::optional<qint64> number(const QString& word, qint64 min, qint64 max)
{
    bool ok = false;
    const qint64 value = word.toLongLong(&ok);
    if (!ok || value < min || value > max) {
        return std::nullopt;
    }
    return value;
}

QString shortened(const QString& sentence)
{
    constexpr int maxLength = 400;
    return sentence.size() <= maxLength
               ? sentence
               : sentence.left(maxLength / 2) + QStringLiteral(" ... ") + sentence.right(maxLength / 2);
}

QString withoutWords(const QString& line, int count)
{
    QString rest = line.trimmed();
    for (int i = 0; i < count; ++i) {
        int end = 0;
        while (end < rest.size() && !rest.at(end).isSpace()) {
            ++end;
        }
        rest = rest.mid(end).trimmed();
    }
    return rest;
}

} // namespace ScriptWords
