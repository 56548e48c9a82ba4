// SPDX-License-Identifier: MIT
#include "simulator/script/ScriptWords.h"

#include <ls/Identifiers.h>

namespace {

QString checkMember(const QStringList& family, const QString& name, const QString& kind)
{
    if (family.contains(name)) {
        return {};
    }
    return QStringLiteral("There is no %1 \"%2\"; known are %3.")
        .arg(kind, name, family.join(QStringLiteral(", ")));
}

} // namespace

namespace ScriptWords {

QString checkCount(const QStringList& words, int least, int most, const QString& usage)
{
    if (words.size() >= least && (most < 0 || words.size() <= most)) {
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

std::optional<qint64> number(const QString& word, qint64 least, qint64 most)
{
    bool ok = false;
    const qint64 value = word.toLongLong(&ok);
    if (!ok || value < least || value > most) {
        return std::nullopt;
    }
    return value;
}

QString shortened(const QString& sentence)
{
    constexpr int longest = 400;
    return sentence.size() <= longest
               ? sentence
               : sentence.left(longest / 2) + QStringLiteral(" ... ") + sentence.right(longest / 2);
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
