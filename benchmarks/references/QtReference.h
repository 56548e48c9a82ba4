// SPDX-License-Identifier: MIT
// The common part of the Qt references: all but the announcement.
#pragma once

#include "benchmarks/references/announcement.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QSocketNotifier>
#include <QVariantMap>

#include <cstdlib>

#include <fcntl.h>
#include <linux/input.h>
#include <systemd/sd-daemon.h>
#include <unistd.h>

inline QVariantMap announcement()
{
    return {{QStringLiteral("notificationId"), QStringLiteral("KeyboardChange")},
            {QStringLiteral("actionId"), QStringLiteral("SingleKey")},
            {QStringLiteral("senderId"), QStringLiteral("KeyboardHandler")},
            {QStringLiteral("receiverId"), QStringLiteral("PrintManager")},
            {QStringLiteral("firstKey"), QStringLiteral("Up")}};
}

/// Reads once and calls `announce` for each released key.
template <typename Announce>
void announceReleases(int device, Announce announce)
{
    input_event records[32];
    const ssize_t size = read(device, records, sizeof records);
    for (ssize_t i = 0; i < size / ssize_t(sizeof records[0]); ++i) {
        if (records[i].type == EV_KEY && records[i].value == 0) {
            announce();
        }
    }
}

/// Runs the application; calls `announce` for each released key.
template <typename Announce>
int run(Announce announce)
{
    const int device = open(INPUT_DEVICE, O_RDWR | O_NONBLOCK | O_CLOEXEC);
    QSocketNotifier notifier(device, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated,
                     [device, announce] { announceReleases(device, announce); });
    if (device == -1 || !QDBusConnection::systemBus().registerService(QStringLiteral(SERVICE))) {
        return EXIT_FAILURE;
    }
    sd_notify(0, "READY=1");
    return QCoreApplication::exec();
}
