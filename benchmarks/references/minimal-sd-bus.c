// SPDX-License-Identifier: MIT
// A minimal C program, with sd-bus, that announces each released key as the daemon announces Up in the state Print.
#include "benchmarks/references/announcement.h"

#include <fcntl.h>
#include <linux/input.h>
#include <stdlib.h>
#include <systemd/sd-bus.h>
#include <systemd/sd-daemon.h>
#include <unistd.h>

static void announce(sd_bus* bus)
{
    sd_bus_emit_signal(bus, "/", SERVICE, "notification", "a{sv}", 5, "actionId", "s", "SingleKey",
                       "firstKey", "s", "Up", "notificationId", "s", "KeyboardChange", "receiverId", "s",
                       "PrintManager", "senderId", "s", "KeyboardHandler");
}

static void announceReleases(sd_bus* bus, const struct input_event* records, size_t count)
{
    for (size_t i = 0; i < count; ++i) {
        if (records[i].type == EV_KEY && records[i].value == 0) {
            announce(bus);
        }
    }
    sd_bus_flush(bus);
}

int main(void)
{
    const int device = open(INPUT_DEVICE, O_RDWR | O_CLOEXEC);
    sd_bus* bus = NULL;
    if (device == -1 || sd_bus_open_system(&bus) < 0 || sd_bus_request_name(bus, SERVICE, 0) < 0) {
        return EXIT_FAILURE;
    }
    sd_notify(0, "READY=1");
    struct input_event records[32];
    ssize_t size = read(device, records, sizeof records);
    for (; size > 0; size = read(device, records, sizeof records)) {
        announceReleases(bus, records, (size_t)size / sizeof records[0]);
    }
    return EXIT_FAILURE;
}
