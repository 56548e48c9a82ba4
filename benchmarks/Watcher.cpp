// SPDX-License-Identifier: MIT
#include "benchmarks/Watcher.h"

#include <QDir>
#include <QFile>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <stdexcept>

#include <fcntl.h>
#include <linux/input.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr auto pollInterval = std::chrono::milliseconds(10);

} // namespace

Watcher::Watcher(const QStringList& command, const DeviceFolder& folder, const QString& busAddress)
{
    for (int device = 0; device < 2; ++device) {
        const QByteArray path = QFile::encodeName(m_folder.filePath(QStringLiteral("event%1").arg(device)));
        if (::mkfifo(path.constData(), 0600) == -1 ||
            (m_inputs[device] = ::open(path.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC)) == -1) {
            throw std::runtime_error("The watcher's input device cannot be made.");
        }
    }
    if (::pipe2(m_reports, O_CLOEXEC) == -1 || ::fcntl(m_reports[1], F_SETFL, O_NONBLOCK) == -1) {
        throw std::runtime_error("The watcher's reports have no pipe.");
    }
    QDir(folder.runFolder()).mkdir(QStringLiteral("keyboard-handler-recorder"));
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), busAddress);
    variables.insert(QStringLiteral("QT_NO_GLIB"), QStringLiteral("1"));
    m_process.setProcessEnvironment(variables);
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QStringList line{"--die-with-parent", "--ro-bind", "/", "/", "--dev", "/dev"};
    line << "--bind" << m_folder.path() << "/dev/input";
    line << "--bind" << folder.libraryFolder() << "/var/lib";
    line << "--bind" << folder.runFolder() << "/run";
    line << "--";
    m_process.start(QStringLiteral("bwrap"), line + command);
    awaitReader();
    m_feeder = std::thread([this] { feed(); });
}

Watcher::~Watcher()
{
    ::close(m_reports[1]);
    m_feeder.join();
    ::close(m_reports[0]);
    m_process.end();
    for (const int input : m_inputs) {
        ::close(input);
    }
}

/// Each reads a record that ends a report without content.
void Watcher::awaitReader()
{
    const input_event end{};
    int pending = 0;
    for (const int input : m_inputs) {
        if (::write(input, &end, sizeof end) != sizeof end) {
            throw std::runtime_error("The watcher's input device does not accept records.");
        }
        do {
            std::this_thread::sleep_for(pollInterval);
            if (m_process.waitForFinished(0)) {
                throw std::runtime_error("The watcher has ended.");
            }
        } while (::ioctl(input, FIONREAD, &pending) == 0 && pending > 0);
    }
}

void Watcher::write(const QByteArray& report)
{
    const ssize_t size = ::write(m_reports[1], report.constData(), size_t(report.size()));
    if (size == -1 && errno != EAGAIN) {
        throw std::runtime_error("The watcher's reports are not passed on.");
    }
}

void Watcher::feed()
{
    // On a device, the kernel does this work: it must not keep a processor from the measured program.
    const sched_param noPriority{};
    if (::sched_setscheduler(0, SCHED_IDLE, &noPriority) == -1) {
        std::perror("The watcher's keys come with the priority of the program");
    }
    std::array<char, PIPE_BUF> bytes{};
    for (ssize_t size = 0; (size = ::read(m_reports[0], bytes.data(), bytes.size())) > 0;) {
        // A watcher that reads too slowly misses keys, as on a device.
        if (::write(m_inputs[0], bytes.data(), size_t(size)) == -1) {
        }
    }
}
