// SPDX-License-Identifier: MIT
#include "simulator/session/SessionHistory.h"

#include <QJsonDocument>

namespace {

constexpr int mostEntries = 10'000;
constexpr qint64 mostBytes = 8 * 1024 * 1024;

} // namespace

QJsonObject SessionHistory::add(QJsonObject entry, std::chrono::milliseconds at)
{
    entry.insert(QStringLiteral("id"), ++m_lastId);
    entry.insert(QStringLiteral("at"), qint64(at.count()));
    const int size = QJsonDocument(entry).toJson(QJsonDocument::Compact).size();
    m_kept.enqueue({entry, size});
    m_size += size;
    while (m_kept.size() > mostEntries || (m_size > mostBytes && m_kept.size() > 1)) {
        m_size -= m_kept.dequeue().size;
    }
    return entry;
}

QJsonArray SessionHistory::entries() const
{
    QJsonArray entries;
    for (const Kept& kept : m_kept) {
        entries.append(kept.entry);
    }
    return entries;
}
