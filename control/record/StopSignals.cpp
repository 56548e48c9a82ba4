// SPDX-License-Identifier: MIT
#include "control/record/StopSignals.h"

#include <csignal>

#include <sys/signalfd.h>
#include <unistd.h>

namespace control {

StopSignals::StopSignals(QObject* parent) : QObject(parent)
{
    sigset_t set;
    sigemptyset(&set);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&set, number);
    }
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    m_fd = ::signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
    if (m_fd == -1) {
        pthread_sigmask(SIG_UNBLOCK, &set, nullptr); // they end the process as usual
        return;
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_fd, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        signalfd_siginfo info{};
        if (::read(m_fd, &info, sizeof info) == sizeof info) {
            Q_EMIT received();
        }
    });
}

StopSignals::~StopSignals()
{
    m_notifier.reset();
    if (m_fd != -1) {
        ::close(m_fd);
    }
}

} // namespace control
