// SPDX-License-Identifier: MIT
#include "simulator/script/KeyListJson.h"

#include "keys/KeyListFile.h"
#include "keys/KeyRules.h"
#include "simulator/script/KeyRowWords.h"
#include "vocabulary/Vocabulary.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

// One byte more than the daemon reads, so that it rejects the file as too long.
constexpr qint64 maxBytes = KeyListFile::maxSize + 1;

struct KeyList
{
    KeyRow::Kind kind;
    QString fileName;
    QString section;
};

const QVector<KeyList>& keyLists()
{
    using Section = EnumDetail::RowKeyList;
    static const QVector<KeyList> lists{
        {KeyRow::Kind::Long, vocabulary::longKeyListFile, KeyListFile::sectionName(Section::LongKeys)},
        {KeyRow::Kind::Modifier, vocabulary::modifierKeyListFile,
         KeyListFile::sectionName(Section::ModifierKeys)},
        {KeyRow::Kind::Shortcut, vocabulary::shortcutKeyListFile,
         KeyListFile::sectionName(Section::ShortcutKeys)}};
    return lists;
}

QJsonObject toJson(const KeyRow& row)
{
    QJsonObject object{{KeyListFields::keys, QJsonArray::fromStringList(row.keys)},
                       {KeyListFields::eAction, row.action},
                       {KeyListFields::receiverService, row.receiver},
                       {KeyListFields::validOnState, row.validOnState}};
    if (row.kind == KeyRow::Kind::Long) {
        object.insert(KeyListFields::timeout, row.seconds);
    }
    return object;
}

KeyRow toRow(KeyRow::Kind kind, const QVariantMap& fields)
{
    KeyRow row{kind,
               fields.value(KeyListFields::eAction).toString(),
               fields.value(KeyListFields::receiverService).toString(),
               fields.value(KeyListFields::validOnState).toString(),
               0,
               fields.value(KeyListFields::keys).toStringList()};
    if (kind == KeyRow::Kind::Long) {
        row.seconds = fields.value(KeyListFields::timeout).toInt();
        row.validOnState = KeyRules::longPressStates(row.validOnState).join(KeyRules::stateSeparator);
    }
    return row;
}

/// A sentence if `row`, made from `object`, lost some of its content; empty otherwise.
QString describeLoss(const KeyRow& row, QJsonObject object)
{
    const QStringList words = KeyRowWords::wordsOf(row).join(' ').simplified().split(' ');
    const KeyRowWords::Parsed parsed = KeyRowWords::parse(words);
    if (!parsed.fault.isEmpty()) {
        return parsed.fault;
    }
    if (object.value(KeyListFields::validOnState).isString()) {
        object.insert(KeyListFields::validOnState, row.validOnState);
    }
    const bool same = toJson(row) == object && toJson(parsed.row) == object;
    return same ? QString() : QStringLiteral("Script rows cannot hold its fields or their blanks.");
}

void addRows(const KeyList& keyList, const QJsonArray& list, KeyListJson::Parsed& result)
{
    for (int i = 0; i < list.size(); ++i) {
        const QJsonValue value = list.at(i);
        const KeyRow row = toRow(keyList.kind, value.toObject().toVariantMap());
        const QString fault =
            value.isObject() ? describeLoss(row, value.toObject()) : QStringLiteral("It is not an object.");
        if (value.isObject()) {
            result.rows.append(row);
        }
        if (!fault.isEmpty()) {
            result.faults << QStringLiteral("Row %1 of %2 cannot be written in a script: %3")
                                 .arg(i + 1)
                                 .arg(keyList.fileName, fault);
        }
    }
}

void addFile(const KeyList& keyList, const KeyListJson::Files& files, KeyListJson::Parsed& result)
{
    const QJsonObject content = QJsonDocument::fromJson(files.value(keyList.fileName)).object();
    if (!content.value(keyList.section).isArray() || content.size() != 1) {
        result.faults
            << QStringLiteral(
                   "%1 cannot be written in a script: it is not a JSON object with just the list %2.")
                   .arg(keyList.fileName, keyList.section);
    }
    addRows(keyList, content.value(keyList.section).toArray(), result);
}

} // namespace

namespace KeyListJson {

QStringList fileNames()
{
    QStringList names;
    for (const KeyList& keyList : keyLists()) {
        names << keyList.fileName;
    }
    return names;
}

Files filesOf(const QVector<KeyRow>& rows)
{
    Files files;
    for (const KeyList& keyList : keyLists()) {
        QJsonArray list;
        for (const KeyRow& row : rows) {
            if (row.kind == keyList.kind) {
                list.append(toJson(row));
            }
        }
        const QJsonObject content{{keyList.section, list}};
        files.insert(keyList.fileName, QJsonDocument(content).toJson());
    }
    return files;
}

Files filesOf(const KeyScript& script)
{
    return script.rows.isEmpty() ? Files() : filesOf(script.rows);
}

Parsed rowsOf(const Files& files)
{
    Parsed result;
    for (const KeyList& keyList : keyLists()) {
        addFile(keyList, files, result);
    }
    if (result.rows.isEmpty() && result.faults.isEmpty()) {
        result.faults << QStringLiteral("Key lists without any row cannot be written in a script.");
    }
    return result;
}

Files read(const QString& folder)
{
    Files files;
    for (const QString& name : fileNames()) {
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
