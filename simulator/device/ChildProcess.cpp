// SPDX-License-Identifier: MIT
#include "simulator/device/ChildProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

constexpr int terminateTimeoutMs = 2000;
constexpr int killTimeoutMs = 5000;

} // namespace

ChildProcess::ChildProcess(QObject* parent) : QProcess(parent), m_parent(getpid()) {}

ChildProcess::~ChildProcess()
{
    end();
}

void ChildProcess::end()
{
    if (state() == NotRunning) {
        return;
    }
    terminate();
    if (!waitForFinished(terminateTimeoutMs)) {
        kill();
        waitForFinished(killTimeoutMs);
    }
}

void ChildProcess::setupChildProcess()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // Signals typed at the parent's terminal, such as Ctrl-C, must reach only the parent.
    setpgid(0, 0);
    // If the parent ended before prctl(), no signal will ever end this process.
    if (getppid() != m_parent) {
        _exit(EXIT_FAILURE);
    }
    if (m_inherited != -1) {
        fcntl(m_inherited, F_SETFD, 0);
    }
}
