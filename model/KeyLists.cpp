// SPDX-License-Identifier: MIT
#include "model/KeyLists.h"

#include "keys/KeyListFile.h"
#include "keys/KeyRules.h"
#include "vocabulary/Vocabulary.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QMutex>
#include <QMutexLocker>

namespace model {

namespace {

QList<KeyEntry> KeyLists::*rowsOf(List list)
{
    switch (list) {
    case List::LongPresses:
        return &KeyLists::longPresses;
    case List::Combinations:
        return &KeyLists::combinations;
    case List::Shortcuts:
        break;
    }
    return &KeyLists::shortcuts;
}

EnumDetail::RowKeyList rowKeyListOf(List list)
{
    switch (list) {
    case List::LongPresses:
        return EnumDetail::RowKeyList::LongKeys;
    case List::Combinations:
        return EnumDetail::RowKeyList::ModifierKeys;
    case List::Shortcuts:
        break;
    }
    return EnumDetail::RowKeyList::ShortcutKeys;
}

QVariantMap mapOf(const QByteArray& content)
{
    return content.size() > KeyListFile::maxSize ? QVariantMap()
                                                 : QJsonDocument::fromJson(content).object().toVariantMap();
}

QMutex g_quietMutex;
int g_quietReaders = 0;
bool g_wasEnabled = true;

/// Suppresses the loader's messages, because the daemon logs the same ones. Several threads may read lists.
class QuietLog
{
public:
    QuietLog()
    {
        const QMutexLocker locker(&g_quietMutex);
        if (++g_quietReaders == 1) {
            g_wasEnabled = QLoggingCategory::defaultCategory()->isCriticalEnabled();
            QLoggingCategory::defaultCategory()->setEnabled(QtCriticalMsg, false);
        }
    }
    ~QuietLog()
    {
        const QMutexLocker locker(&g_quietMutex);
        if (--g_quietReaders == 0) {
            QLoggingCategory::defaultCategory()->setEnabled(QtCriticalMsg, g_wasEnabled);
        }
    }
    Q_DISABLE_COPY(QuietLog)
};

} // namespace

KeyLists KeyLists::read(const QMap<QString, QByteArray>& files, bool isOrvane)
{
    const QuietLog quiet;
    KeyLists lists;
    lists.isOrvane = isOrvane;
    for (const List list : allLists) {
        const auto file =
            KeyListFile::take(mapOf(files.value(fileOf(list))), rowKeyListOf(list), Q_FUNC_INFO);
        lists.*rowsOf(list) = file.rows;
        if (file.content.isEmpty()) {
            lists.unreadable.append(list);
        }
    }
    return lists;
}

const QString& KeyLists::fileOf(List list)
{
    switch (list) {
    case List::LongPresses:
        return vocabulary::longKeyListFile;
    case List::Combinations:
        return vocabulary::modifierKeyListFile;
    case List::Shortcuts:
        break;
    }
    return vocabulary::shortcutKeyListFile;
}

QString KeyLists::sectionOf(List list)
{
    return KeyListFile::sectionName(rowKeyListOf(list));
}

const QList<KeyEntry>& KeyLists::rows(List list) const
{
    return this->*rowsOf(list);
}

QVector<RowId> KeyLists::ids() const
{
    QVector<RowId> ids;
    for (const List list : allLists) {
        for (int i = 0; i < rows(list).size(); ++i) {
            ids.append({list, i});
        }
    }
    return ids;
}

KeyLists KeyLists::only(List list) const
{
    KeyLists lists;
    lists.isOrvane = isOrvane;
    lists.*rowsOf(list) = rows(list);
    return lists;
}

QStringList KeyLists::statesOf(RowId id) const
{
    const QString& states = row(id).validOnState();
    return id.list == List::LongPresses ? KeyRules::longPressStates(states) : QStringList(states);
}

} // namespace model
