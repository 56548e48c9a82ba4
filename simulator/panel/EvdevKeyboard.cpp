// SPDX-License-Identifier: MIT
#include "simulator/panel/EvdevKeyboard.h"

#include "model/Autorepeat.h"
#include "simulator/script/KeyValue.h"

#include <time.h>

namespace {

input_event stamped(quint16 type, quint16 code, qint32 value)
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    input_event record{};
    // The macros name the fields of both the 32-bit and the 64-bit record.
    record.input_event_sec = static_cast<decltype(record.input_event_sec)>(now.tv_sec);
    record.input_event_usec = static_cast<decltype(record.input_event_usec)>(now.tv_nsec / 1000);
    record.type = type;
    record.code = code;
    record.value = value;
    return record;
}

} // namespace

EvdevKeyboard::EvdevKeyboard(QObject* parent) : QObject(parent)
{
    m_repeatTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_repeatTimer, &QTimer::timeout, this, &EvdevKeyboard::repeat);
}

void EvdevKeyboard::press(quint16 code)
{
    if (m_down.contains(code)) {
        return;
    }
    m_down.insert(code);
    m_repeating = code;
    m_repeatTimer.start(Autorepeat::delay);
    report(EV_KEY, code, KeyValue::pressed);
}

void EvdevKeyboard::release(quint16 code)
{
    if (!m_down.remove(code)) {
        return;
    }
    m_repeatTimer.stop();
    report(EV_KEY, code, KeyValue::released);
}

void EvdevKeyboard::report(quint16 type, quint16 code, qint32 value)
{
    write(type, code, value);
    write(EV_SYN, SYN_REPORT, 0);
}

void EvdevKeyboard::repeat()
{
    m_repeatTimer.start(Autorepeat::period);
    write(EV_KEY, m_repeating, KeyValue::repeated);
    // The kernel marks the report of a repetition with 1.
    write(EV_SYN, SYN_REPORT, 1);
}

void EvdevKeyboard::write(quint16 type, quint16 code, qint32 value)
{
    Q_EMIT recorded(stamped(type, code, value));
}
