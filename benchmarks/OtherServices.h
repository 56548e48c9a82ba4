// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>

#include <systemd/sd-bus.h>

/// The services around a measured program: the receiver of its announcements, and the state handler, which
/// tells that the device prints. They add as little time as possible of their own, and work only while they
/// are asked to.
class OtherServices
{
public:
    /// Joins the bus at `address`; throws when that fails.
    explicit OtherServices(const QString& address);
    ~OtherServices();

    OtherServices(const OtherServices&) = delete;
    OtherServices& operator=(const OtherServices&) = delete;

    /// Readable when something has arrived.
    int descriptor() const;
    /// Takes in and answers what has arrived, without waiting.
    void work();
    /// Works until the next announcement; throws when none comes within ten seconds.
    void waitForAnnouncement();

    /// The number of announcements that were taken in.
    int announcements() const { return m_announcements; }
    /// The texts of the last one by their keys; throws when there is none, or a value is no text.
    QMap<QString, QString> lastAnnouncement() const;

private:
    static int onAnnouncement(sd_bus_message* message, void* self, sd_bus_error* error);
    static int onQuestion(sd_bus_message* question, void* self, sd_bus_error* error);

    sd_bus* m_bus = nullptr;
    sd_bus_message* m_last = nullptr;
    int m_announcements = 0;
};
