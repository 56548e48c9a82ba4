// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArrayList>
#include <QObject>

/// The events that wait for one client.
class EventStream : public QObject
{
    Q_OBJECT

public:
    /// `snapshot` is sent first, whatever its size.
    explicit EventStream(const QByteArray& snapshot);

    /// False when the client has fallen too far behind; the stream is over then.
    bool add(const QByteArray& event);
    void close();
    /// Moves at most `maxSize` bytes of what waits to `data`; returns how many.
    int take(char* data, int maxSize);

Q_SIGNALS:
    /// Something waits to be taken.
    void changed();
    /// The stream is over.
    void closed();
    /// The client has gone.
    void abandoned();

private:
    bool m_isOpen = true;
    QByteArrayList m_events;
    /// The bytes of `m_events`.
    int m_size = 0;
    /// What is being taken, the snapshot first.
    QByteArray m_text;
    int m_taken = 0;
};
