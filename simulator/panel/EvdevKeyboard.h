// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QSet>
#include <QTimer>

#include <linux/input.h>

/// The keys of one input device, reported as the kernel reports them: a change of a key once, each
/// report ended by a SYN_REPORT record, and the key that was pressed last repeated while it is held.
class EvdevKeyboard : public QObject
{
    Q_OBJECT

public:
    explicit EvdevKeyboard(QObject* parent = nullptr);

    /// `code` is a Linux input key code. A key that is down already stays as it is.
    void press(quint16 code);
    /// A key that is up already stays as it is. Any release ends the repetition, also that of another key.
    void release(quint16 code);
    /// Reports a record that no key stands behind.
    void report(quint16 type, quint16 code, qint32 value);

Q_SIGNALS:
    /// One input record, time-stamped now.
    void recorded(const input_event& record);

private:
    void repeat();
    void write(quint16 type, quint16 code, qint32 value);

    QSet<quint16> m_down;
    quint16 m_repeating = 0;
    QTimer m_repeatTimer;
};
