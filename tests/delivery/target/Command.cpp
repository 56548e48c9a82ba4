// SPDX-License-Identifier: MIT
#include "tests/delivery/target/Command.h"

#include <QProcess>

namespace {

constexpr int timeoutMs = 120'000;

} // namespace

namespace Command {

Result run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    const bool ended = process.waitForFinished(timeoutMs) && process.exitStatus() == QProcess::NormalExit;
    return {ended ? process.exitCode() : -1, QString::fromUtf8(process.readAll())};
}

Result shell(const QString& line)
{
    return run(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), line});
}

} // namespace Command
