// SPDX-License-Identifier: MIT
#include "simulator/script/KeyScript.h"

#include "simulator/script/KeyScriptParser.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

constexpr qint64 largestFile = 1024 * 1024;

struct KeyListFile
{
    KeyRow::Kind kind;
    const char* name;
    const char* section;
};

constexpr KeyListFile keyListFiles[] = {
    {KeyRow::Kind::Long, "longKeyList.json", "LongKeys"},
    {KeyRow::Kind::Modifier, "modifierKeyList.json", "ModifierKeys"},
    {KeyRow::Kind::Shortcut, "shortcutKeyList.json", "ShortcutKeys"},
};

QJsonObject toJson(const KeyRow& row)
{
    QJsonObject object{{QStringLiteral("keys"), QJsonArray::fromStringList(row.keys)},
                       {QStringLiteral("eAction"), row.action},
                       {QStringLiteral("receiverService"), row.receiver},
                       {QStringLiteral("validOnState"), row.validOnState}};
    if (row.kind == KeyRow::Kind::Long) {
        object.insert(QStringLiteral("timeout"), row.seconds);
    }
    return object;
}

ParsedScript refused(const QString& fault)
{
    return {{}, {{0, fault}}};
}

} // namespace

std::chrono::milliseconds KeyScript::duration() const
{
    std::chrono::milliseconds last = steps.isEmpty() ? end : std::max(end, steps.last().at);
    for (const Observation& expectation : expectations) {
        last = std::max(last, expectation.at);
    }
    return last;
}

QMap<QString, QByteArray> KeyScript::keyLists() const
{
    QMap<QString, QByteArray> files;
    if (rows.isEmpty()) {
        return files;
    }
    for (const KeyListFile& file : keyListFiles) {
        QJsonArray list;
        for (const KeyRow& row : rows) {
            if (row.kind == file.kind) {
                list.append(toJson(row));
            }
        }
        const QJsonObject content{{QLatin1String(file.section), list}};
        files.insert(QLatin1String(file.name), QJsonDocument(content).toJson());
    }
    return files;
}

ParsedScript parseKeyScript(const QString& text)
{
    return KeyScriptParser(KeyScriptParser::Begin::AtHeader).parse(text);
}

ParsedScript parseKeyScriptSteps(const QString& text)
{
    return KeyScriptParser(KeyScriptParser::Begin::AtSteps).parse(text);
}

ParsedScript loadKeyScript(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return refused(QStringLiteral("%1 cannot be read: %2").arg(path, file.errorString()));
    }
    const QByteArray bytes = file.read(largestFile + 1);
    if (bytes.size() > largestFile) {
        return refused(QStringLiteral("%1 is longer than %2 bytes.").arg(path).arg(largestFile));
    }
    // With its size: a NUL byte would end the text unseen.
    return parseKeyScript(QString::fromUtf8(bytes.constData(), bytes.size()));
}
