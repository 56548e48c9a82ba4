// SPDX-License-Identifier: MIT
#include "benchmarks/Watcher.h"

#include <QDir>
#include <QFile>

#include <stdexcept>

#include <fcntl.h>
#include <linux/input.h>
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
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    m_changed.notify_one();
    m_feeder.join();
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
    {
        const std::lock_guard lock(m_mutex);
        m_reports.push_back(report);
    }
    m_changed.notify_one();
}

void Watcher::feed()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_isEnding || !m_reports.empty(); });
        if (m_reports.empty()) {
            return;
        }
        const QByteArray report = m_reports.front();
        m_reports.pop_front();
        lock.unlock();
        // A watcher that reads too slowly misses keys, as on a device.
        if (::write(m_inputs[0], report.constData(), size_t(report.size())) == -1) {
        }
        lock.lock();
    }
}
