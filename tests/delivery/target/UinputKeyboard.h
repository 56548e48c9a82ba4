// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// A keyboard of the kernel's, as a front panel is one: with its autorepeat, and gone with this object.
class UinputKeyboard
{
public:
    /// Plugs the keyboard in under `name`; `isPlugged` tells whether the kernel made it.
    explicit UinputKeyboard(const QString& name);
    ~UinputKeyboard();

    UinputKeyboard(const UinputKeyboard&) = delete;
    UinputKeyboard& operator=(const UinputKeyboard&) = delete;

    bool isPlugged() const { return m_descriptor != -1; }

    /// Moves the key with this Linux input key code; false when the kernel does not take it.
    bool setPressed(quint16 code, bool pressed);

private:
    bool plug(const QString& name) const;
    bool report(quint16 type, quint16 code, qint32 value) const;

    int m_descriptor = -1;
};
