// SPDX-License-Identifier: MIT
#include "simulator/card/CardLists.h"

#include "keys/KeyListFile.h"
#include "service/Vocabulary.h"

#include <ls/IReader.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>

namespace {

constexpr int largestFile = 16 * 1024 * 1024;

/// Reads contents as the daemon's reader reads files.
class ContentReader : public ls::IReader
{
public:
    explicit ContentReader(const QByteArray& content) : m_content(content) {}

    bool read(const QString&, QVariantMap& content) override
    {
        const QJsonDocument document = QJsonDocument::fromJson(m_content);
        if (!document.isObject() || m_content.size() > largestFile) {
            return false;
        }
        content = document.object().toVariantMap();
        return true;
    }

private:
    QByteArray m_content;
};

/// Keeps the loader's messages back: those of the daemon, about the same files, are the ones to read.
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
    const auto timeouts = section == EnumDetail::RowKeyList::LongKeys ? KeyListFile::Timeouts::Read
                                                                      : KeyListFile::Timeouts::Ignored;
    ContentReader reader(content);
    const QuietLog quiet;
    const auto file = KeyListFile::load(reader, name, section, timeouts, Q_FUNC_INFO);
    if (file.content.isEmpty()) {
        notes.append(QStringLiteral("%1 has no list that can be read, so none of its rows count.").arg(name));
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
