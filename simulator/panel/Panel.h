// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/panel/ByteSink.h"
#include "simulator/panel/EvdevKeyboard.h"
#include "simulator/script/KeyScript.h"

#include <QObject>

#include <array>

/// The front panel: two input devices whose records go to two FIFOs.
class Panel : public QObject
{
    Q_OBJECT

public:
    static constexpr int keyboardCount = 2;

    explicit Panel(QObject* parent = nullptr);

    /// Connects `keyboard` (0 or 1) to the FIFO at `path`; false if it cannot be opened. Records of an
    /// unconnected keyboard are dropped.
    bool open(int keyboard, const QString& path);

    /// `key` is an identifier of `ls::KeyId`.
    void press(int keyboard, const QString& key);
    void release(int keyboard, const QString& key);
    /// Writes `record` and a SYN_REPORT record.
    void record(int keyboard, const RawRecord& record);
    /// Writes bytes that need not be whole records.
    void writeRaw(int keyboard, const QByteArray& bytes);

    /// The number of bytes queued for `keyboard`.
    int pending(int keyboard) const;

Q_SIGNALS:
    /// `record` was written, which includes repetitions and SYN_REPORT records.
    void written(int keyboard, const RawRecord& record);

private:
    struct Keyboard
    {
        EvdevKeyboard keys;
        ByteSink sink;
    };

    Keyboard& at(int keyboard) { return m_keyboards.at(size_t(keyboard)); }

    std::array<Keyboard, keyboardCount> m_keyboards;
};
