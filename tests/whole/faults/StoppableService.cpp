// SPDX-License-Identifier: MIT
#include "tests/whole/faults/StoppableService.h"

#include "tests/whole/faults/Signals.h"

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

bool StoppableService::stop()
{
    return signalTo(m_process.processId(), SIGSTOP);
}

void StoppableService::resume()
{
    signalTo(m_process.processId(), SIGCONT);
}
