// SPDX-License-Identifier: MIT
#include "tests/model/ListMaps.h"

#include "keys/KeyListFile.h"
#include "simulator/script/KeyListJson.h"
#include "simulator/script/KeyScriptText.h"
#include "vocabulary/Vocabulary.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

using Section = EnumDetail::RowKeyList;

const QList<QPair<Section, model::List>> sections{{Section::LongKeys, model::List::LongPresses},
                                                  {Section::ModifierKeys, model::List::Combinations},
                                                  {Section::ShortcutKeys, model::List::Shortcuts}};

QVariantMap mapOf(const KeyEntry& row)
{
    return {{KeyListFields::keys, row.keys()},
            {KeyListFields::eAction, row.eAction()},
            {KeyListFields::receiverService, row.receiverService()},
            {KeyListFields::timeout, row.timeout() / 1000},
            {KeyListFields::validOnState, row.validOnState()}};
}

model::KeyLists listsOf(const KeyListJson::Files& files, bool isOrvane)
{
    QVariantMap all;
    for (const QByteArray& content : files) {
        const QVariantMap map = QJsonDocument::fromJson(content).object().toVariantMap();
        for (auto it = map.cbegin(); it != map.cend(); ++it) {
            all.insert(it.key(), it.value());
        }
    }
    return ListMaps::listsOf(all, isOrvane);
}

} // namespace

model::KeyLists ListMaps::listsOf(const QVariantMap& map, bool isOrvane)
{
    const auto rows = [&map](Section section) { return KeyListFile::take(map, section, Q_FUNC_INFO).rows; };
    return {rows(Section::LongKeys), rows(Section::ModifierKeys), rows(Section::ShortcutKeys), isOrvane};
}

QVariantMap ListMaps::mapOf(const model::KeyLists& lists)
{
    QVariantMap map;
    for (const auto& [section, list] : sections) {
        QVariantList rows;
        for (const KeyEntry& row : lists.rows(list)) {
            rows.append(::mapOf(row));
        }
        map.insert(KeyListFile::sectionName(section), rows);
    }
    return map;
}

QMap<QString, QByteArray> ListMaps::filesOf(const model::KeyLists& lists)
{
    const QVariantMap map = mapOf(lists);
    QMap<QString, QByteArray> files;
    const QStringList names{vocabulary::longKeyListFile, vocabulary::modifierKeyListFile,
                            vocabulary::shortcutKeyListFile};
    for (int i = 0; i < names.size(); ++i) {
        const QString section = KeyListFile::sectionName(sections.at(i).first);
        const QJsonObject content = QJsonObject::fromVariantMap({{section, map.value(section)}});
        files.insert(names.at(i), QJsonDocument(content).toJson());
    }
    return files;
}

model::KeyLists ListMaps::ofRows(const QVector<KeyRow>& rows, bool isOrvane)
{
    return ::listsOf(KeyListJson::filesOf(rows), isOrvane);
}

model::KeyLists ListMaps::installed(bool isOrvane)
{
    return ::listsOf(KeyListJson::read(QStringLiteral(KEY_LISTS)), isOrvane);
}

QMap<QString, model::KeyLists> ListMaps::ofScripts(const QString& folder)
{
    QMap<QString, model::KeyLists> lists;
    const QFileInfoList files = QDir(folder).entryInfoList({QStringLiteral("*.keys")}, QDir::Files);
    for (const QFileInfo& file : files) {
        const KeyScript script = loadKeyScript(file.filePath()).script;
        if (!script.rows.isEmpty()) {
            lists.insert(file.completeBaseName(),
                         ofRows(script.rows, script.model == QStringLiteral("Orvane")));
        }
    }
    return lists;
}
