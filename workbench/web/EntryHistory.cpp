// SPDX-License-Identifier: MIT
#include "workbench/web/EntryHistory.h"

namespace {

constexpr int maxEntries = 10'000;
constexpr qint64 maxBytes = 8 * 1024 * 1024;

} // namespace

void EntryHistory::add(const QByteArray& entry)
{
    m_entries.enqueue(entry);
    m_size += entry.size();
    while (m_entries.size() > maxEntries || (m_size > maxBytes && m_entries.size() > 1)) {
        m_size -= m_entries.dequeue().size();
    }
}
