// SPDX-License-Identifier: MIT
#include "workbench/terminal/TerminationSignals.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

namespace {

int signalPipe[2] = {-1, -1};

void onSignal(int number)
{
    const auto byte = static_cast<unsigned char>(number);
    // A full pipe can be ignored, because it contains a signal already.
    if (write(signalPipe[1], &byte, 1) == -1) {
    }
}

} // namespace

TerminationSignals::TerminationSignals(QObject* parent) : QObject(parent)
{
    // Handlers instead of a signal mask, which the daemon would inherit.
    if (pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) == -1) {
        return;
    }
    m_notifier = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &TerminationSignals::read);
    struct sigaction action
    {};
    action.sa_handler = onSignal;
    for (int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaction(number, &action, nullptr);
    }
}

void TerminationSignals::read()
{
    unsigned char byte = 0;
    while (::read(signalPipe[0], &byte, 1) == 1) {
        Q_EMIT received(byte);
    }
}
