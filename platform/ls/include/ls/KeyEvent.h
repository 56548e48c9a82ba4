// SPDX-License-Identifier: MIT
#pragma once

#include <QEvent>
#include <QMetaType>

#include <linux/input.h>

namespace ls {

/// One record of an input device. Copies carry a copy of the record.
class KeyEvent : public QEvent
{
public:
    /// An empty event: a record of zeros, which is not a key event.
    KeyEvent();
    /// Wraps a copy of `record`.
    explicit KeyEvent(const input_event& record);

    /// Whether the record is a key event. If not, the three tests below are false, too.
    bool isKey() const;
    bool isKeyDown() const;
    bool isKeyUp() const;
    bool isKeyRepeat() const;

    /// The record's code: a Linux input key code when `isKey()`.
    quint16 code() const;
    /// The wrapped record; valid as long as this event.
    const input_event& event() const;

private:
    input_event m_record{};
};

} // namespace ls

Q_DECLARE_METATYPE(ls::KeyEvent)
