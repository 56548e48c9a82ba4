// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QQueue>

#include <chrono>

/// The latest entries of a session: at most 10,000, and of long ones fewer.
class SessionHistory
{
public:
    /// Keeps `entry` as the next one; returns it with its "id" and "at".
    QJsonObject add(QJsonObject entry, std::chrono::milliseconds at);

    /// Oldest first.
    QJsonArray entries() const;

private:
    struct Kept
    {
        QJsonObject entry;
        int size = 0;
    };

    QQueue<Kept> m_kept;
    qint64 m_size = 0;
    qint64 m_lastId = 0;
};
