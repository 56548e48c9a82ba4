// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>

#include <systemd/sd-bus.h>

/// The services around a measured program: the receiver of its announcements and a state handler in the state
/// Print. They add little overhead and run only within `work` and `waitForAnnouncement`.
class OtherServices
{
public:
    /// Connects to the bus at `address`; throws on failure.
    explicit OtherServices(const QString& address);
    ~OtherServices();

    OtherServices(const OtherServices&) = delete;
    OtherServices& operator=(const OtherServices&) = delete;

    /// Readable when messages have arrived.
    int descriptor() const;
    /// Processes all messages that have arrived, without blocking.
    void work();
    /// Processes messages until the next announcement; throws after ten seconds.
    void waitForAnnouncement();

    /// The number of received announcements.
    int announcements() const { return m_announcements; }
    /// The last announcement; throws if there is none or a value is not a string.
    QMap<QString, QString> lastAnnouncement() const;

private:
    static int onAnnouncement(sd_bus_message* message, void* self, sd_bus_error* error);
    static int onCall(sd_bus_message* call, void* self, sd_bus_error* error);

    sd_bus* m_bus = nullptr;
    sd_bus_message* m_last = nullptr;
    int m_announcements = 0;
};
