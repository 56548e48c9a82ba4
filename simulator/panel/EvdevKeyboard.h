// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QSet>
#include <QTimer>

#include <linux/input.h>

/// The keys of one input device, reported as the kernel reports them: each change once, each report ended by
/// a SYN_REPORT record, and the last pressed key repeated while it is held.
class EvdevKeyboard : public QObject
{
    Q_OBJECT

public:
    explicit EvdevKeyboard(QObject* parent = nullptr);

    /// `code` is a Linux input key code. Ignored if the key is already down.
    void press(quint16 code);
    /// Ignored if the key is already up. Any release ends the repetition, even of another key.
    void release(quint16 code);
    /// Reports a record without changing the state of a key.
    void report(quint16 type, quint16 code, qint32 value);

Q_SIGNALS:
    /// One input record, stamped with the current time.
    void recorded(const input_event& record);

private:
    void repeat();
    void write(quint16 type, quint16 code, qint32 value);

    QSet<quint16> m_down;
    quint16 m_repeating = 0;
    QTimer m_repeatTimer;
};
