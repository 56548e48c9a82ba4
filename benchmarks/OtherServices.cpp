// SPDX-License-Identifier: MIT
#include "benchmarks/OtherServices.h"

#include <ls/BusNames.h>
#include <ls/Identifiers.h>

#include <cstring>
#include <stdexcept>

#include <poll.h>

namespace {

constexpr int timeoutMs = 10'000;

int check(int result)
{
    if (result < 0) {
        throw std::runtime_error(std::string("The bus failed: ") + std::strerror(-result));
    }
    return result;
}

} // namespace

OtherServices::OtherServices(const QString& address)
{
    const QByteArray keyboardHandler = ls::busName(ls::ServiceId::KeyboardHandler).toUtf8();
    const QByteArray stateHandler = ls::busName(ls::ServiceId::StateHandler).toUtf8();
    check(sd_bus_new(&m_bus));
    check(sd_bus_set_address(m_bus, address.toUtf8().constData()));
    check(sd_bus_set_bus_client(m_bus, 1));
    check(sd_bus_start(m_bus));
    check(sd_bus_match_signal(m_bus, nullptr, nullptr, "/", keyboardHandler.constData(), "notification",
                              onAnnouncement, this));
    check(sd_bus_add_object(m_bus, nullptr, "/", onCall, this));
    check(sd_bus_request_name(m_bus, stateHandler.constData(), 0));
}

OtherServices::~OtherServices()
{
    sd_bus_message_unref(m_last);
    sd_bus_flush_close_unref(m_bus);
}

int OtherServices::descriptor() const
{
    return sd_bus_get_fd(m_bus);
}

void OtherServices::work()
{
    while (check(sd_bus_process(m_bus, nullptr)) > 0) {
    }
}

void OtherServices::waitForAnnouncement()
{
    const int before = m_announcements;
    pollfd poller{descriptor(), POLLIN, 0};
    for (work(); m_announcements == before; work()) {
        if (poll(&poller, 1, timeoutMs) != 1) {
            throw std::runtime_error("No announcement was received.");
        }
    }
}

QMap<QString, QString> OtherServices::lastAnnouncement() const
{
    QMap<QString, QString> texts;
    check(m_last ? sd_bus_message_rewind(m_last, 1) : -ENOMSG);
    check(sd_bus_message_enter_container(m_last, 'a', "{sv}"));
    while (check(sd_bus_message_enter_container(m_last, 'e', "sv")) > 0) {
        const char* key = nullptr;
        const char* text = nullptr;
        check(sd_bus_message_read(m_last, "sv", &key, "s", &text));
        check(sd_bus_message_exit_container(m_last));
        texts.insert(QString::fromUtf8(key), QString::fromUtf8(text));
    }
    return texts;
}

int OtherServices::onAnnouncement(sd_bus_message* message, void* self, sd_bus_error*)
{
    auto* services = static_cast<OtherServices*>(self);
    sd_bus_message_unref(services->m_last);
    services->m_last = sd_bus_message_ref(message);
    ++services->m_announcements;
    return 0;
}

int OtherServices::onCall(sd_bus_message* call, void*, sd_bus_error*)
{
    if (sd_bus_message_is_method_call(call, nullptr, "process") <= 0) {
        return 0;
    }
    return sd_bus_reply_method_return(call, "a{sv}", 3, "resultId", "s", "Success", "errorId", "s",
                                      "Undefined", "stateId", "s", "Print");
}
