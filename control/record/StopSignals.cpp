// SPDX-License-Identifier: MIT
#include "control/record/StopSignals.h"

#include <csignal>

#include <sys/signalfd.h>
#include <unistd.h>

namespace control {

namespace {

sigset_t stopSignals()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&set, number);
    }
    return set;
}

} // namespace

StopSignals::StopSignals(QObject* parent) : QObject(parent)
{
    const sigset_t set = stopSignals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    m_fd = ::signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
    if (m_fd == -1) {
        release();
        return;
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_fd, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        if (take()) {
            Q_EMIT received();
        }
    });
}

void StopSignals::release()
{
    while (take()) {
    }
    const sigset_t set = stopSignals();
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

/// Whether a signal was waiting.
bool StopSignals::take()
{
    signalfd_siginfo info{};
    return m_fd != -1 && ::read(m_fd, &info, sizeof info) == sizeof info;
}

StopSignals::~StopSignals()
{
    m_notifier.reset();
    if (m_fd != -1) {
        ::close(m_fd);
    }
}

} // namespace control
