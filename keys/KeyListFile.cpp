// SPDX-License-Identifier: MIT
#include "keys/KeyListFile.h"

#include "vocabulary/Vocabulary.h"

#include <ls/IReader.h>

#include <QFileInfo>
#include <QMetaEnum>

namespace {

constexpr int millisecondsPerSecond = 1000;

/// Limits the result to 32 bits, because a file may contain any number.
int toMilliseconds(const QVariant& seconds)
{
    constexpr int maxSeconds = KeyListFile::maxSeconds;
    const bool isReal = seconds.userType() == QMetaType::Double;
    const qint64 whole = isReal ? qRound64(qBound(-1.0 * maxSeconds, seconds.toDouble(), 1.0 * maxSeconds))
                                : seconds.toLongLong();
    return static_cast<int>(qBound<qint64>(-maxSeconds, whole, maxSeconds)) * millisecondsPerSecond;
}

QDebug error(const char* loader)
{
    return vocabulary::logLine("load", loader, "ERROR:");
}

/// Checks the size here, because a reader may accept larger files.
bool read(ls::IReader& reader, const QString& path, QVariantMap& content, const char* loader)
{
    const qint64 size = QFileInfo(path).size();
    if (size > KeyListFile::maxSize) {
        error(loader) << path << "is over the limit of" << KeyListFile::maxSize << "bytes:" << size;
        return false;
    }
    return reader.read(path, content);
}

KeyEntry entryOf(const QVariantMap& row, EnumDetail::RowKeyList section)
{
    const bool isTimed = section == EnumDetail::RowKeyList::LongKeys;
    return KeyEntry(row.value(KeyListFields::keys).toStringList(),
                    row.value(KeyListFields::eAction).toString(),
                    isTimed ? toMilliseconds(row.value(KeyListFields::timeout)) : 0,
                    row.value(KeyListFields::receiverService).toString(),
                    row.value(KeyListFields::validOnState).toString());
}

} // namespace

KeyListFile KeyListFile::load(ls::IReader& reader, const QString& fileName, EnumDetail::RowKeyList section,
                              const char* loader)
{
    const QString path = QStringLiteral("%1/%2").arg(vocabulary::dataDirectory, fileName);
    QVariantMap content;
    if (!read(reader, path, content, loader)) {
        error(loader) << "reading" << path << "failed.";
    }
    return take(content, section, loader);
}

KeyListFile KeyListFile::take(const QVariantMap& content, EnumDetail::RowKeyList section, const char* loader)
{
    const QString name = sectionName(section);
    const auto value = content.constFind(name);
    if (value == content.cend()) {
        // Deliberate punctuation: technicians search logs for this text.
        error(loader).noquote() << "value list" << name << "not found!.";
        return {};
    }
    if (!value->canConvert(QMetaType::QVariantList)) {
        error(loader).noquote() << "value list" << name << "conversion to list failed!";
        return {};
    }
    QList<KeyEntry> rows;
    const QVariantList elements = value->toList();
    for (const QVariant& element : elements) {
        if (element.canConvert(QMetaType::QVariantMap)) {
            rows.append(entryOf(element.toMap(), section));
        }
    }
    return {rows, content};
}

QString KeyListFile::sectionName(EnumDetail::RowKeyList section)
{
    const QMetaObject& details = EnumDetail::staticMetaObject;
    const QMetaEnum sections = details.enumerator(details.indexOfEnumerator("RowKeyList"));
    return QString::fromLatin1(sections.valueToKey(static_cast<int>(section)));
}
