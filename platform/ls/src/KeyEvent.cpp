// SPDX-License-Identifier: MIT
#include <ls/KeyEvent.h>

namespace ls {

namespace {

constexpr int released = 0;
constexpr int pressed = 1;
constexpr int repeated = 2;

QEvent::Type keyEventType()
{
    static const int type = QEvent::registerEventType();
    return QEvent::Type(type);
}

} // namespace

KeyEvent::KeyEvent() : KeyEvent(input_event{}) {}

KeyEvent::KeyEvent(const input_event& record) : QEvent(keyEventType()), m_record(record) {}

bool KeyEvent::isKey() const
{
    return m_record.type == EV_KEY;
}

bool KeyEvent::isKeyDown() const
{
    return isKey() && m_record.value == pressed;
}

bool KeyEvent::isKeyUp() const
{
    return isKey() && m_record.value == released;
}

bool KeyEvent::isKeyRepeat() const
{
    return isKey() && m_record.value == repeated;
}

quint16 KeyEvent::code() const
{
    return m_record.code;
}

const input_event& KeyEvent::event() const
{
    return m_record;
}

} // namespace ls
