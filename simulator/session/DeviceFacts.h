// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QPair>
#include <QQueue>
#include <QSet>

/// What the entries of a session say about the device now, however long ago they came.
class DeviceFacts
{
public:
    /// Takes in `entry`, the next one of the session.
    void note(const QJsonObject& entry);

    /// Whether the daemon runs a keyboard test: from the answer to StartTestMode to the announcement that
    /// ends it.
    bool isTesting() const { return m_isTesting; }
    /// "held", the keys that are down at the input devices as objects of "device" and "key"; "testing".
    QJsonObject toJson() const;

private:
    void noteKey(const QJsonObject& entry);
    void noteAnswer(const QJsonObject& entry);

    QSet<QPair<int, QString>> m_held;
    /// For each command without an answer yet, whether it starts a keyboard test.
    QQueue<bool> m_open;
    bool m_isTesting = false;
};
