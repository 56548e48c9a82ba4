// SPDX-License-Identifier: MIT
#include "workbench/card/CardLists.h"

#include "keys/KeyListFile.h"
#include "vocabulary/Vocabulary.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>

namespace {

QVariantMap mapOf(const QByteArray& content)
{
    return content.size() > KeyListFile::maxSize ? QVariantMap()
                                                 : QJsonDocument::fromJson(content).object().toVariantMap();
}

/// Suppresses the loader's messages, because the daemon logs the same ones.
class QuietLog
{
public:
    QuietLog() { QLoggingCategory::defaultCategory()->setEnabled(QtCriticalMsg, false); }
    ~QuietLog() { QLoggingCategory::defaultCategory()->setEnabled(QtCriticalMsg, m_wasEnabled); }
    Q_DISABLE_COPY(QuietLog)

private:
    bool m_wasEnabled = QLoggingCategory::defaultCategory()->isCriticalEnabled();
};

QList<KeyEntry> rowsOf(const QByteArray& content, const QString& name, EnumDetail::RowKeyList section,
                       QStringList& notes)
{
    const QuietLog quiet;
    const auto file = KeyListFile::take(mapOf(content), section, Q_FUNC_INFO);
    if (file.content.isEmpty()) {
        notes.append(QStringLiteral("%1 has no readable list, so none of its rows work.").arg(name));
    }
    return file.rows;
}

} // namespace

CardLists CardLists::read(const QMap<QString, QByteArray>& files)
{
    using Section = EnumDetail::RowKeyList;
    CardLists lists;
    const auto rows = [&](const QString& name, Section section) {
        return rowsOf(files.value(name), name, section, lists.notes);
    };
    lists.longPresses = rows(vocabulary::longKeyListFile, Section::LongKeys);
    lists.combinations = rows(vocabulary::modifierKeyListFile, Section::ModifierKeys);
    lists.shortcuts = rows(vocabulary::shortcutKeyListFile, Section::ShortcutKeys);
    return lists;
}
