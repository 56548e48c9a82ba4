// SPDX-License-Identifier: MIT
#include "tests/faults/StoppableService.h"

#include <signal.h>

namespace {

constexpr int startTimeoutMs = 10'000;

} // namespace

bool StoppableService::start(const QString& name, const QString& busAddress)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QStringLiteral(STOPPABLE_SERVICE), {name, busAddress});
    return m_process.waitForReadyRead(startTimeoutMs) && m_process.readLine() == "ready\n";
}

void StoppableService::changeState(const QString& state)
{
    m_process.write(state.toUtf8() + '\n');
}

QList<QByteArray> StoppableService::takeSpoken()
{
    QList<QByteArray> lines;
    while (m_process.canReadLine()) {
        lines << m_process.readLine().trimmed();
    }
    return lines;
}

void StoppableService::stop()
{
    ::kill(pid_t(m_process.processId()), SIGSTOP);
}

void StoppableService::resume()
{
    if (m_process.processId() > 0) {
        ::kill(pid_t(m_process.processId()), SIGCONT);
    }
}
