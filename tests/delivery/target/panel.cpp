// SPDX-License-Identifier: MIT
// The front panel of the target tests: two keyboards that execute statements from a FIFO, one a line:
// "press DEVICE KEY", "release DEVICE KEY", "plug DEVICE" or "unplug DEVICE". Initially both are plugged in.
#include "tests/delivery/target/UinputKeyboard.h"

#include <ls/Identifiers.h>

#include <QTextStream>

#include <array>
#include <fstream>
#include <memory>
#include <string>

#include <sys/stat.h>
#include <systemd/sd-daemon.h>

namespace {

using Keyboards = std::array<std::unique_ptr<UinputKeyboard>, 2>;

bool plug(Keyboards& keyboards, int device)
{
    auto& keyboard = keyboards.at(size_t(device));
    keyboard = std::make_unique<UinputKeyboard>(QStringLiteral("embosser-panel-%1").arg(device));
    return keyboard->isPlugged();
}

bool execute(Keyboards& keyboards, const QStringList& words)
{
    const QString verb = words.value(0);
    const int device = words.value(1) == QLatin1String("1") ? 1 : 0;
    auto& keyboard = keyboards.at(size_t(device));
    if (verb == QLatin1String("plug")) {
        return plug(keyboards, device);
    }
    if (verb == QLatin1String("unplug")) {
        keyboard.reset();
        return true;
    }
    const int code = ls::KeyId::meta.value(words.value(2), -1);
    return code != -1 && keyboard && keyboard->setPressed(quint16(code), verb == QLatin1String("press"));
}

} // namespace

int main(int argc, char* argv[])
{
    Keyboards keyboards;
    if (argc != 2 || !plug(keyboards, 0) || !plug(keyboards, 1)) {
        QTextStream(stderr) << "usage: embosser-panel FIFO (with /dev/uinput)\n";
        return 2;
    }
    mkfifo(argv[1], S_IRUSR | S_IWUSR);
    // Also open for writing, so that the input does not end when a writer closes it.
    std::fstream statements(argv[1], std::ios::in | std::ios::out);
    sd_notify(0, "READY=1");
    for (std::string line; std::getline(statements, line);) {
        if (!execute(keyboards, QString::fromStdString(line).split(' '))) {
            QTextStream(stderr) << "failed: " << line.c_str() << '\n';
        }
    }
    return 1;
}
