// SPDX-License-Identifier: MIT
#include "tests/delivery/target/BusMonitor.h"

#include "tests/delivery/target/MessageValue.h"

#include <ls/BusNames.h>
#include <ls/Identifiers.h>

#include <QSocketNotifier>

#include <systemd/sd-bus.h>

namespace {

constexpr const char* busAddress = "unix:path=/run/dbus/system_bus_socket";

const QString busDaemon = QStringLiteral("org.freedesktop.DBus");

} // namespace

BusMonitor::BusMonitor(QObject* parent) : QObject(parent) {}

BusMonitor::~BusMonitor()
{
    delete m_notifier;
    sd_bus_flush_close_unref(m_bus);
}

bool BusMonitor::start()
{
    const bool open = sd_bus_new(&m_bus) >= 0 && sd_bus_set_address(m_bus, busAddress) >= 0 &&
                      sd_bus_set_bus_client(m_bus, 1) >= 0 && sd_bus_set_monitor(m_bus, 1) >= 0 &&
                      sd_bus_start(m_bus) >= 0;
    if (!open || sd_bus_call_method(m_bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                    "org.freedesktop.DBus.Monitoring", "BecomeMonitor", nullptr, nullptr,
                                    "asu", 0, 0U) < 0) {
        return false;
    }
    sd_bus_add_filter(
        m_bus, nullptr,
        [](sd_bus_message* message, void* monitor, sd_bus_error*) {
            static_cast<BusMonitor*>(monitor)->report(message);
            return 1;
        },
        this);
    m_notifier = new QSocketNotifier(sd_bus_get_fd(m_bus), QSocketNotifier::Read);
    connect(m_notifier, &QSocketNotifier::activated, this, &BusMonitor::read);
    read();
    return true;
}

void BusMonitor::read()
{
    while (sd_bus_process(m_bus, nullptr) > 0) {
    }
}

void BusMonitor::report(sd_bus_message* message)
{
    const QString speechDaemon = ls::busName(QStringLiteral("SpeechDaemon"));
    if (sd_bus_message_is_signal(message, qPrintable(ls::busName(ls::ServiceId::KeyboardHandler)),
                                 "notification") > 0) {
        Q_EMIT announced(MessageValue::first(message).toMap());
    } else if (sd_bus_message_is_method_call(message, qPrintable(speechDaemon), "speakFromId") > 0) {
        Q_EMIT spoken(MessageValue::first(message).toMap());
    } else if (sd_bus_message_is_method_call(message, qPrintable(speechDaemon), "cancelAll") > 0) {
        Q_EMIT speechCancelled();
    } else if (sd_bus_message_get_destination(message) == m_client &&
               sd_bus_message_get_sender(message) != busDaemon) {
        reportAnswer(message);
    }
}

void BusMonitor::reportAnswer(sd_bus_message* message)
{
    if (sd_bus_message_is_method_error(message, nullptr) > 0) {
        Q_EMIT refused(QString::fromUtf8(sd_bus_message_get_error(message)->name));
        return;
    }
    quint8 type = 0;
    sd_bus_message_get_type(message, &type);
    if (type == SD_BUS_MESSAGE_METHOD_RETURN && sd_bus_message_has_signature(message, "a{sv}") > 0) {
        Q_EMIT answered(MessageValue::first(message).toMap());
    }
}
