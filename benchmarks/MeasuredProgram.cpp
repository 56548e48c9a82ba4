// SPDX-License-Identifier: MIT
#include "benchmarks/MeasuredProgram.h"

#include <QCoreApplication>
#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <linux/input.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

using std::chrono::nanoseconds;
using std::chrono::system_clock;

namespace {

constexpr int startTimeoutMs = 60'000; // programs start slowly under callgrind
const QStringList awaitedServices{QStringLiteral("state-handler"), QStringLiteral("speechd")};
constexpr auto betweenServices = std::chrono::milliseconds(100);
// The writable folder of programs on the device.
constexpr char writableFolder[] = "/run";
constexpr char readinessSocket[] = "/run/readiness";
constexpr char launchFile[] = "/run/launched";

constexpr input_event key(qint32 value)
{
    input_event record{};
    record.type = EV_KEY;
    record.code = KEY_UP;
    record.value = value;
    return record;
}

/// A key event as the kernel reports it: the record and a SYN_REPORT record.
struct Report
{
    input_event record;
    input_event sync;
};
constexpr Report pressed{key(1), {}};
constexpr Report released{key(0), {}};

struct Tap
{
    Report down = pressed;
    Report up = released;
};
// Writes of this size are atomic; the program would drop an incomplete record.
constexpr int tapsPerWrite = PIPE_BUF / sizeof(Tap);

void require(bool condition, const QString& fault)
{
    if (!condition) {
        throw std::runtime_error(qPrintable(fault));
    }
}

void requireNone(const QString& fault)
{
    require(fault.isEmpty(), fault);
}

DeviceOptions printingDevice()
{
    DeviceOptions options;
    options.standardInput = DeviceOptions::StandardInput::Null;
    return options;
}

QByteArray bytesOf(const Report& report)
{
    return {reinterpret_cast<const char*>(&report), int(sizeof report)};
}

void write(int device, const Report& report)
{
    require(::write(device, &report, sizeof report) == sizeof report,
            QStringLiteral("The input device does not accept keys."));
}

} // namespace

MeasuredProgram::MeasuredProgram(const QString& name, const QString& executable)
    : m_name(name), m_executable(executable), m_options(printingDevice()), m_folder(m_options)
{
    for (const QString& service : awaitedServices) {
        m_folder.setReady(service, true);
    }
    requireNone(m_folder.errorString());
    m_input =
        ::open(QFile::encodeName(m_folder.keyboardFile(0)).constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    require(m_input != -1, QStringLiteral("The input device cannot be opened."));
    m_readiness = std::make_unique<ReadinessSocket>(hostPath(readinessSocket));
    requireNone(m_bus.start(m_folder, m_options.namePolicy));
    m_services = std::make_unique<OtherServices>(m_bus.address());
    QObject::connect(&m_process, &DaemonProcess::logLine, [this](const QString& line) {
        static const QRegularExpression collected(QStringLiteral("Collected : (\\d+)"));
        const QRegularExpressionMatch match = collected.match(line);
        m_instructions = match.hasMatch() ? match.captured(1).toLongLong() : m_instructions;
    });
}

MeasuredProgram::~MeasuredProgram()
{
    m_watchers.clear();
    m_process.stop();
    ::close(m_input);
}

nanoseconds MeasuredProgram::start()
{
    run({m_executable});
    const ReadinessSocket::Time ready = awaitReadiness();
    return ready - launchTime();
}

void MeasuredProgram::startEarly()
{
    for (const QString& service : awaitedServices) {
        m_folder.setReady(service, false);
    }
    run({m_executable});
}

nanoseconds MeasuredProgram::declareServices()
{
    nanoseconds declared{};
    for (const QString& service : awaitedServices) {
        std::this_thread::sleep_for(betweenServices);
        declared = system_clock::now().time_since_epoch();
        m_folder.setReady(service, true);
    }
    return awaitReadiness() - declared;
}

void MeasuredProgram::startCounting()
{
    m_instructions = -1;
    run({QStringLiteral("/usr/bin/valgrind"), QStringLiteral("--tool=callgrind"),
         QStringLiteral("--callgrind-out-file=/dev/null"), m_executable});
    awaitReadiness();
}

void MeasuredProgram::stop()
{
    m_process.stop();
}

qint64 MeasuredProgram::stopCounting()
{
    m_process.stop();
    require(m_instructions != -1, QStringLiteral("callgrind does not report the number of instructions."));
    return m_instructions;
}

void MeasuredProgram::watch(const QStringList& command)
{
    m_watchers.push_back(std::make_unique<Watcher>(command, m_folder, m_bus.address()));
}

void MeasuredProgram::press()
{
    write(m_input, pressed);
    for (const auto& watcher : m_watchers) {
        watcher->write(bytesOf(pressed));
    }
}

void MeasuredProgram::release()
{
    write(m_input, released);
    for (const auto& watcher : m_watchers) {
        watcher->write(bytesOf(released));
    }
}

int MeasuredProgram::tap(int maxKeys)
{
    static const std::array<Tap, tapsPerWrite> taps;
    int keys = 0;
    while (keys < maxKeys) {
        const int count = std::min(maxKeys - keys, tapsPerWrite);
        if (::write(m_input, taps.data(), size_t(count) * sizeof(Tap)) == -1) {
            break;
        }
        keys += count;
    }
    return keys;
}

bool MeasuredProgram::hasReadAll() const
{
    int pending = -1;
    return ::ioctl(m_input, FIONREAD, &pending) == 0 && pending == 0;
}

void MeasuredProgram::run(const QStringList& command)
{
    m_options.daemon = QCoreApplication::applicationFilePath();
    m_options.daemonArguments = QStringList(QLatin1String(launchOption)) + command;
    requireNone(m_process.start(m_folder, m_options));
}

ReadinessSocket::Time MeasuredProgram::awaitReadiness()
{
    pollfd pollers[] = {{m_readiness->descriptor(), POLLIN, 0}, {m_services->descriptor(), POLLIN, 0}};
    std::optional<ReadinessSocket::Time> ready;
    while (!ready) {
        require(::poll(pollers, 2, startTimeoutMs) > 0,
                m_executable + QStringLiteral(" does not become ready."));
        m_services->work(); // the program may ask for the state
        ready = m_readiness->takeDeclaration();
    }
    return *ready;
}

ReadinessSocket::Time MeasuredProgram::launchTime() const
{
    QFile file(hostPath(launchFile));
    require(file.open(QIODevice::ReadOnly), file.errorString());
    return ReadinessSocket::Time(file.readAll().toLongLong());
}

QString MeasuredProgram::hostPath(const char* path) const
{
    return m_folder.runFolder() + QLatin1String(path + std::strlen(writableFolder));
}

int launch(char* command[])
{
    qputenv("NOTIFY_SOCKET", readinessSocket);
    qputenv("TMPDIR", writableFolder);
    QFile file{QLatin1String(launchFile)};
    if (file.open(QIODevice::WriteOnly)) {
        const nanoseconds now = system_clock::now().time_since_epoch();
        file.write(QByteArray::number(qint64(now.count())));
        file.close();
        ::execv(command[0], command);
    }
    return EXIT_FAILURE;
}
