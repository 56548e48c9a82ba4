// SPDX-License-Identifier: MIT
#include "keys/KeyListFile.h"

#include "service/Vocabulary.h"

#include <ls/IReader.h>

#include <QMetaEnum>

#include <limits>

namespace {

constexpr int millisecondsPerSecond = 1000;
constexpr int maximumSeconds = std::numeric_limits<int>::max() / millisecondsPerSecond;

QString sectionName(EnumDetail::RowKeyList section)
{
    const QMetaObject& details = EnumDetail::staticMetaObject;
    const QMetaEnum sections = details.enumerator(details.indexOfEnumerator("RowKeyList"));
    return QString::fromLatin1(sections.valueToKey(static_cast<int>(section)));
}

/// Limited to what a 32-bit number of milliseconds can hold, for a file may name any number.
int toMilliseconds(const QVariant& seconds)
{
    const bool isReal = seconds.userType() == QMetaType::Double;
    const qint64 whole =
        isReal ? qRound64(qBound(-1.0 * maximumSeconds, seconds.toDouble(), 1.0 * maximumSeconds))
               : seconds.toLongLong();
    return static_cast<int>(qBound<qint64>(-maximumSeconds, whole, maximumSeconds)) * millisecondsPerSecond;
}

} // namespace

KeyListFile::KeyListFile(const QString& fileName, EnumDetail::RowKeyList section, Timeouts timeouts,
                         const char* loader)
    : m_path(QStringLiteral("%1/%2").arg(vocabulary::dataDirectory, fileName))
    , m_section(sectionName(section))
    , m_timeouts(timeouts)
    , m_loader(loader)
{}

void KeyListFile::load(ls::IReader& reader)
{
    QVariantMap content;
    if (!reader.read(m_path, content)) {
        error() << "reading" << m_path << "failed.";
    }
    const auto section = content.constFind(m_section);
    if (section == content.cend()) {
        // Deliberate punctuation: technicians search their logs for this very text.
        error().noquote() << "value list" << m_section << "not found!.";
        return;
    }
    if (!section->canConvert(QMetaType::QVariantList)) {
        error().noquote() << "value list" << m_section << "conversion to list failed!";
        return;
    }
    m_content = content;
    const QVariantList rows = section->toList();
    for (const QVariant& row : rows) {
        if (row.canConvert(QMetaType::QVariantMap)) {
            m_rows.append(entry(row.toMap()));
        }
    }
}

QDebug KeyListFile::error() const
{
    return vocabulary::logLine("load", m_loader, "ERROR:");
}

KeyEntry KeyListFile::entry(const QVariantMap& row) const
{
    const int timeout =
        m_timeouts == Timeouts::Read ? toMilliseconds(row.value(QStringLiteral("timeout"))) : 0;
    return KeyEntry(row.value(QStringLiteral("keys")).toStringList(),
                    row.value(QStringLiteral("eAction")).toString(), timeout,
                    row.value(QStringLiteral("receiverService")).toString(),
                    row.value(QStringLiteral("validOnState")).toString());
}
