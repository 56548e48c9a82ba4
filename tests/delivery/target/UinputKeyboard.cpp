// SPDX-License-Identifier: MIT
#include "tests/delivery/target/UinputKeyboard.h"

#include <cstring>

#include <fcntl.h>
#include <linux/uinput.h>
#include <sys/ioctl.h>
#include <unistd.h>

UinputKeyboard::UinputKeyboard(const QString& name, const Faults& faults)
    : m_descriptor(open("/dev/uinput", O_WRONLY | O_CLOEXEC))
{
    if (m_descriptor != -1 && !plug(name, faults)) {
        close(m_descriptor);
        m_descriptor = -1;
    }
}

UinputKeyboard::~UinputKeyboard()
{
    // The kernel removes the keyboard when its last descriptor is closed.
    if (m_descriptor != -1) {
        close(m_descriptor);
    }
}

bool UinputKeyboard::setPressed(quint16 code, bool pressed)
{
    return report(EV_KEY, code, pressed ? 1 : 0) && report(EV_SYN, SYN_REPORT, 0);
}

bool UinputKeyboard::plug(const QString& name, const Faults& faults) const
{
    uinput_setup setup{};
    setup.id.bustype = BUS_HOST;
    const QByteArray bytes = name.toUtf8();
    std::strncpy(setup.name, bytes.constData(), sizeof setup.name - 1);
    bool done = ioctl(m_descriptor, UI_SET_EVBIT, EV_KEY) == 0 &&
                (faults.lacksAutorepeat || ioctl(m_descriptor, UI_SET_EVBIT, EV_REP) == 0);
    for (int code = 1; code < KEY_MAX && done; ++code) {
        done = code == faults.missingKey || ioctl(m_descriptor, UI_SET_KEYBIT, code) == 0;
    }
    return done && ioctl(m_descriptor, UI_DEV_SETUP, &setup) == 0 && ioctl(m_descriptor, UI_DEV_CREATE) == 0;
}

bool UinputKeyboard::report(quint16 type, quint16 code, qint32 value) const
{
    input_event record{};
    record.type = type;
    record.code = code;
    record.value = value;
    return write(m_descriptor, &record, sizeof record) == ssize_t(sizeof record);
}
