// SPDX-License-Identifier: MIT
#include "workbench/terminal/Prompt.h"

#include <QTimer>

#include <cstdio>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr auto backgroundPause = 1s;

/// Whether another process group is in the foreground. The kernel stops background processes that read from
/// the terminal.
bool isInBackground()
{
    const pid_t foreground = tcgetpgrp(STDIN_FILENO);
    return foreground != -1 && foreground != getpgrp();
}

} // namespace

Prompt::Prompt(QObject* parent) : QObject(parent), m_notifier(STDIN_FILENO, QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, &Prompt::read);
}

bool Prompt::isAtTerminal()
{
    return isatty(STDIN_FILENO) == 1;
}

void Prompt::show()
{
    std::fputs("> ", stdout);
    std::fflush(stdout);
}

void Prompt::read()
{
    if (isInBackground()) {
        m_notifier.setEnabled(false);
        QTimer::singleShot(backgroundPause, this, [this] { m_notifier.setEnabled(true); });
        return;
    }
    char buffer[4096];
    const ssize_t count = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (count <= 0) {
        m_notifier.setEnabled(false);
        Q_EMIT ended();
        return;
    }
    m_pending.append(buffer, int(count));
    for (int end = m_pending.indexOf('\n'); end != -1; end = m_pending.indexOf('\n')) {
        const QByteArray line = m_pending.left(end);
        m_pending.remove(0, end + 1);
        Q_EMIT typed(QString::fromUtf8(line.constData(), line.size()));
    }
}
