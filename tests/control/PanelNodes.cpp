// SPDX-License-Identifier: MIT
#include "tests/control/PanelNodes.h"

#include <linux/input.h>
#include <sys/stat.h>

PanelNodes::PanelNodes()
{
    for (int keyboard = 0; keyboard < int(m_sinks.size()); ++keyboard) {
        if (::mkfifo(qPrintable(node(keyboard)), 0600) != 0 ||
            !m_sinks.at(size_t(keyboard)).open(node(keyboard))) {
            qFatal("%s cannot be made", qPrintable(node(keyboard)));
        }
    }
}

void PanelNodes::follow(Panel& panel)
{
    connect(&panel, &Panel::written, this, [this](int keyboard, const RawRecord& record) {
        input_event event{};
        event.type = record.type;
        event.code = record.code;
        event.value = record.value;
        m_sinks.at(size_t(keyboard)).write({reinterpret_cast<const char*>(&event), int(sizeof event)});
    });
}

QStringList PanelNodes::viewOf(const DeviceFolder& device) const
{
    return {"--dev",
            "/dev",
            "--bind",
            m_folder.path(),
            "/dev/input",
            "--bind",
            device.libraryFolder(),
            "/var/lib",
            "--bind",
            device.runFolder(),
            "/run"};
}
