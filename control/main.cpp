// SPDX-License-Identifier: MIT
#include "control/Program.h"

#include <QCoreApplication>
#include <QFile>

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {

/// A socket or a file that is opened later must not become the standard output. Writing there then fails.
void fillClosedStreams()
{
    int fd = -1;
    do {
        fd = ::open("/dev/null", O_RDONLY);
    } while (fd >= 0 && fd <= STDERR_FILENO);
    ::close(fd);
}

} // namespace

int main(int argc, char* argv[])
{
    fillClosedStreams();
    std::signal(SIGPIPE, SIG_DFL); // a pager that was left is the end of the output
    const QCoreApplication application(argc, argv);
    QFile outFile;
    QFile errFile;
    outFile.open(STDOUT_FILENO, QIODevice::WriteOnly | QIODevice::Unbuffered);
    errFile.open(STDERR_FILENO, QIODevice::WriteOnly | QIODevice::Unbuffered);
    control::Output out(outFile, control::localCharset());
    control::Output err(errFile, control::localCharset());
    return control::run(QCoreApplication::arguments().mid(1), out, err);
}
