// SPDX-License-Identifier: MIT
#include "control/Program.h"

#include <QCoreApplication>
#include <QFile>

#include <csignal>

#include <unistd.h>

int main(int argc, char* argv[])
{
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
