// SPDX-License-Identifier: MIT
#include "simulator/script/Panel.h"

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
    for (int device = 0; device < deviceCount; ++device) {
        connect(&at(device).keys, &KeyDevice::recorded, this, [this, device](const input_event& record) {
            at(device).sink.write(bytesOf(record));
            Q_EMIT written(device, {record.type, record.code, record.value});
        });
    }
}

bool Panel::open(int device, const QString& path)
{
    return at(device).sink.open(path);
}

void Panel::press(int device, const QString& key)
{
    at(device).keys.press(codeOf(key));
}

void Panel::release(int device, const QString& key)
{
    at(device).keys.release(codeOf(key));
}

void Panel::record(int device, const RawRecord& record)
{
    at(device).keys.report(record.type, record.code, record.value);
}

void Panel::writeRaw(int device, const QByteArray& bytes)
{
    at(device).sink.write(bytes);
}

int Panel::pending(int device) const
{
    return m_devices.at(size_t(device)).sink.pending();
}
