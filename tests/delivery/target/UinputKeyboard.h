// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// A virtual keyboard of the kernel, by default with all keys and with autorepeat, like a front panel. It is
/// removed with this object.
class UinputKeyboard
{
public:
    struct Faults
    {
        bool lacksAutorepeat = false;
        /// A Linux input key code that the keyboard does not have.
        int missingKey = -1;
    };

    /// Plugs in the keyboard as `name`; check `isPlugged`.
    explicit UinputKeyboard(const QString& name) : UinputKeyboard(name, Faults()) {}
    UinputKeyboard(const QString& name, const Faults& faults);
    ~UinputKeyboard();

    UinputKeyboard(const UinputKeyboard&) = delete;
    UinputKeyboard& operator=(const UinputKeyboard&) = delete;

    bool isPlugged() const { return m_descriptor != -1; }

    /// Presses or releases the key with this Linux input key code; false on failure.
    bool setPressed(quint16 code, bool pressed);

private:
    bool plug(const QString& name, const Faults& faults) const;
    bool report(quint16 type, quint16 code, qint32 value) const;

    int m_descriptor = -1;
};
