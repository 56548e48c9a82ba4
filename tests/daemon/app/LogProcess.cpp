// SPDX-License-Identifier: MIT
#include "tests/daemon/app/LogProcess.h"

#include "app/LogOutput.h"

#include <cstdlib>

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#ifdef __SANITIZE_ADDRESS__
/// In a forked process, the memory of the test's other threads looks leaked.
extern "C" int __lsan_is_turned_off()
{
    return 1;
}
#endif

LogProcess::LogProcess(int file, const std::function<void()>& log)
{
    if (::pipe2(m_logged, O_CLOEXEC) == -1 || ::pipe2(m_end, O_CLOEXEC) == -1 ||
        (m_process = ::fork()) == -1) {
        std::abort();
    }
    if (m_process == 0) {
        run(file, log);
    }
    ::close(m_logged[1]);
    ::close(m_end[0]);
}

LogProcess::~LogProcess()
{
    if (m_process != 0) {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
    ::close(m_logged[0]);
    ::close(m_end[1]);
}

bool LogProcess::awaitLogged() const
{
    char byte = 0;
    return ::read(m_logged[0], &byte, 1) == 1;
}

void LogProcess::end()
{
    ::close(m_end[1]);
    m_end[1] = -1;
}

int LogProcess::status()
{
    int status = 0;
    ::waitpid(m_process, &status, 0);
    m_process = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void LogProcess::run(int file, const std::function<void()>& log)
{
    ::close(m_logged[0]);
    ::close(m_end[1]);
    ::dup2(file, STDERR_FILENO);
    ::close(file);
    LogOutput::install();
    log();
    char byte = 0;
    if (::write(m_logged[1], &byte, 1) == -1 || ::read(m_end[0], &byte, 1) != 0) {
        std::abort();
    }
    std::exit(EXIT_SUCCESS);
}
