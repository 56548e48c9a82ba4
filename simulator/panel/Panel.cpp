// SPDX-License-Identifier: MIT
#include "simulator/panel/Panel.h"

namespace {

quint16 codeOf(const QString& key)
{
    return quint16(ls::KeyId::meta.value(key));
}

QByteArray bytesOf(const input_event& record)
{
    return {reinterpret_cast<const char*>(&record), int(sizeof record)};
}

} // namespace

Panel::Panel(QObject* parent) : QObject(parent)
{
    for (int keyboard = 0; keyboard < keyboardCount; ++keyboard) {
        connect(&at(keyboard).keys, &EvdevKeyboard::recorded, this,
                [this, keyboard](const input_event& record) {
                    at(keyboard).sink.write(bytesOf(record));
                    Q_EMIT written(keyboard, {record.type, record.code, record.value});
                });
    }
}

bool Panel::open(int keyboard, const QString& path)
{
    return at(keyboard).sink.open(path);
}

void Panel::press(int keyboard, const QString& key)
{
    at(keyboard).keys.press(codeOf(key));
}

void Panel::release(int keyboard, const QString& key)
{
    at(keyboard).keys.release(codeOf(key));
}

void Panel::record(int keyboard, const RawRecord& record)
{
    at(keyboard).keys.report(record.type, record.code, record.value);
}

void Panel::writeRaw(int keyboard, const QByteArray& bytes)
{
    at(keyboard).sink.write(bytes);
}

int Panel::pending(int keyboard) const
{
    return m_keyboards.at(size_t(keyboard)).sink.pending();
}
