// SPDX-License-Identifier: MIT
#include "simulator/script/KeyListJson.h"

#include "simulator/script/KeyRowWords.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

constexpr QChar stateSeparator = QLatin1Char('|');
// One byte more than the daemon reads: it must see that the file is too long.
constexpr qint64 maxBytes = 1024 * 1024 + 1;

const QString keysField = QStringLiteral("keys");
const QString actionField = QStringLiteral("eAction");
const QString receiverField = QStringLiteral("receiverService");
const QString statesField = QStringLiteral("validOnState");
const QString timeField = QStringLiteral("timeout");

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
    QJsonObject object{{keysField, QJsonArray::fromStringList(row.keys)},
                       {actionField, row.action},
                       {receiverField, row.receiver},
                       {statesField, row.validOnState}};
    if (row.kind == KeyRow::Kind::Long) {
        object.insert(timeField, row.seconds);
    }
    return object;
}

/// The daemon passes over the blanks around states that are joined, and around those alone.
QString withoutBlanks(const QString& states)
{
    QStringList parts = states.split(stateSeparator);
    for (QString& part : parts) {
        part = part.simplified();
    }
    return parts.join(stateSeparator);
}

KeyRow toRow(KeyRow::Kind kind, const QVariantMap& fields)
{
    KeyRow row{kind,
               fields.value(actionField).toString(),
               fields.value(receiverField).toString(),
               fields.value(statesField).toString(),
               0,
               fields.value(keysField).toStringList()};
    if (kind == KeyRow::Kind::Long) {
        row.seconds = fields.value(timeField).toInt();
        if (row.validOnState.contains(stateSeparator)) {
            row.validOnState = withoutBlanks(row.validOnState);
        }
    }
    return row;
}

/// Why `row`, which was made of `object`, does not say the same; empty when it does.
QString loss(const KeyRow& row, QJsonObject object)
{
    const QStringList words = KeyRowWords::wordsOf(row).join(' ').simplified().split(' ');
    const KeyRowWords::Parsed parsed = KeyRowWords::parse(words);
    if (!parsed.fault.isEmpty()) {
        return parsed.fault;
    }
    if (object.value(statesField).isString()) {
        object.insert(statesField, row.validOnState);
    }
    const bool same = toJson(row) == object && toJson(parsed.row) == object;
    return same ? QString() : QStringLiteral("A row of a script has other fields, or no blanks in them.");
}

void addRows(const KeyListFile& file, const QJsonArray& list, KeyListJson::Parsed& result)
{
    for (int i = 0; i < list.size(); ++i) {
        const QJsonValue value = list.at(i);
        const KeyRow row = toRow(file.kind, value.toObject().toVariantMap());
        const QString fault =
            value.isObject() ? loss(row, value.toObject()) : QStringLiteral("It is no object.");
        if (value.isObject()) {
            result.rows.append(row);
        }
        if (!fault.isEmpty()) {
            result.faults << QStringLiteral("Row %1 of %2 cannot be written in a script: %3")
                                 .arg(i + 1)
                                 .arg(QLatin1String(file.name), fault);
        }
    }
}

void addFile(const KeyListFile& file, const KeyListJson::Files& files, KeyListJson::Parsed& result)
{
    const QString name = QLatin1String(file.name);
    const QString section = QLatin1String(file.section);
    const QJsonObject content = QJsonDocument::fromJson(files.value(name)).object();
    if (!content.value(section).isArray() || content.size() != 1) {
        result.faults << QStringLiteral(
                             "%1 cannot be written in a script: it is no JSON object of just the list %2.")
                             .arg(name, section);
    }
    addRows(file, content.value(section).toArray(), result);
}

} // namespace

namespace KeyListJson {

QStringList fileNames()
{
    QStringList names;
    for (const KeyListFile& file : keyListFiles) {
        names << QLatin1String(file.name);
    }
    return names;
}

Files filesOf(const QVector<KeyRow>& rows)
{
    Files files;
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

Parsed rowsOf(const Files& files)
{
    Parsed result;
    for (const KeyListFile& file : keyListFiles) {
        addFile(file, files, result);
    }
    if (result.rows.isEmpty() && result.faults.isEmpty()) {
        result.faults << QStringLiteral("Key lists without any row cannot be written in a script.");
    }
    return result;
}

Files read(const QString& folder)
{
    Files files;
    for (const KeyListFile& list : keyListFiles) {
        const QString name = QLatin1String(list.name);
        QFile file(QDir(folder).filePath(name));
        if (file.open(QIODevice::ReadOnly)) {
            files.insert(name, file.read(maxBytes));
        }
    }
    return files;
}

bool areEqual(const Files& one, const Files& other)
{
    if (one.keys() != other.keys()) {
        return false;
    }
    return std::equal(one.begin(), one.end(), other.begin(), [](const QByteArray& a, const QByteArray& b) {
        const QJsonDocument document = QJsonDocument::fromJson(a);
        return a == b || (!document.isNull() && document == QJsonDocument::fromJson(b));
    });
}

} // namespace KeyListJson
