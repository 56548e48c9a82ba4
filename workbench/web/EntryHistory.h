// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QQueue>

/// The latest entries of a session as JSON texts: at most 10,000, and fewer when they are long.
class EntryHistory
{
public:
    void add(const QByteArray& entry);

    /// A JSON array, oldest first.
    QByteArray toJson() const { return '[' + m_entries.join(',') + ']'; }

private:
    QQueue<QByteArray> m_entries;
    qint64 m_size = 0;
};
