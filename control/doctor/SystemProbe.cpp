// SPDX-License-Identifier: MIT
#include "control/doctor/Probes.h"

#include <QFileInfo>
#include <QProcess>

#include <algorithm>
#include <array>
#include <vector>

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

namespace control {

namespace {

/// A service manager that hangs must not hold up the other checks.
constexpr int toolTimeoutMs = 10'000;
constexpr int maxJournalLines = 1000;
const QString runningSystemd = QStringLiteral("/run/systemd/system");

struct ToolOutput
{
    QString text;
    /// Empty on success.
    QString fault;
};

ToolOutput outputOf(const QString& tool, const QStringList& arguments)
{
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(tool, arguments);
    if (!process.waitForFinished(toolTimeoutMs)) {
        const bool isHanging = process.state() == QProcess::Running;
        process.kill();
        process.waitForFinished();
        return {{}, isHanging ? tool + QStringLiteral(" does not end") : process.errorString()};
    }
    const QString complaint = QString::fromUtf8(process.readAllStandardError()).simplified();
    const bool isDone = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return {QString::fromUtf8(process.readAllStandardOutput()), isDone && complaint.isEmpty() ? QString()
                                                                : complaint.isEmpty()
                                                                    ? tool + QStringLiteral(" fails")
                                                                    : complaint};
}

QString userName()
{
    const passwd* entry = ::getpwuid(::getuid());
    return entry != nullptr ? QString::fromLocal8Bit(entry->pw_name) : QString::number(::getuid());
}

bool isInGroup(gid_t id)
{
    std::vector<gid_t> groups(static_cast<size_t>(std::max(0, ::getgroups(0, nullptr))));
    const int count = ::getgroups(static_cast<int>(groups.size()), groups.data());
    groups.resize(static_cast<size_t>(std::max(0, count)));
    return ::getegid() == id || std::find(groups.begin(), groups.end(), id) != groups.end();
}

bool isListed(const group& entry, const QString& user)
{
    for (char** member = entry.gr_mem; *member != nullptr; ++member) {
        if (QString::fromLocal8Bit(*member) == user) {
            return true;
        }
    }
    return false;
}

} // namespace

UserFacts Probes::user()
{
    UserFacts facts;
    facts.name = userName();
    facts.isRoot = ::geteuid() == 0;
    facts.group = QStringLiteral(KEYBOARD_HANDLER_SERVICE_GROUP);
    const group* entry = ::getgrnam(KEYBOARD_HANDLER_SERVICE_GROUP);
    facts.groupExists = entry != nullptr;
    facts.isMember = entry != nullptr && isInGroup(entry->gr_gid);
    facts.isListed = entry != nullptr && isListed(*entry, facts.name);
    return facts;
}

UnitFacts Probes::unit()
{
    UnitFacts facts;
    facts.hasSystemd = QFileInfo::exists(runningSystemd);
    if (!facts.hasSystemd) {
        return facts;
    }
    const ToolOutput output =
        outputOf(QStringLiteral("systemctl"),
                 {QStringLiteral("show"), QStringLiteral("--property=LoadState,ActiveState,Result"),
                  QStringLiteral("keyboard-handler.service")});
    facts.fault = output.fault;
    const QStringList lines = output.text.split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        const QString value = line.section(QLatin1Char('='), 1);
        if (line.startsWith(QLatin1String("LoadState="))) {
            facts.loadState = value;
        } else if (line.startsWith(QLatin1String("ActiveState="))) {
            facts.activeState = value;
        } else if (line.startsWith(QLatin1String("Result="))) {
            facts.result = value;
        }
    }
    return facts;
}

JournalFacts Probes::journal(qint64 process)
{
    if (!QFileInfo::exists(runningSystemd)) {
        return {QStringLiteral("this system does not run systemd, so there is no journal"), {}};
    }
    if (process == 0) {
        return {QStringLiteral("no daemon runs"), {}};
    }
    const ToolOutput output =
        outputOf(QStringLiteral("journalctl"),
                 {QStringLiteral("--boot"), QStringLiteral("--no-pager"), QStringLiteral("--output=cat"),
                  QStringLiteral("--lines=%1").arg(maxJournalLines), QStringLiteral("_PID=%1").arg(process)});
    if (!output.fault.isEmpty()) {
        return {output.fault, {}};
    }
    QStringList lines = output.text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    lines.removeAll(QStringLiteral("-- No entries --"));
    return {{}, lines};
}

Facts Probes::facts(const QString& prefix, const QVector<qint64>& daemons, const QStringList& missing)
{
    Facts facts;
    facts.user = user();
    facts.bus = bus(prefix);
    facts.unit = unit();
    QVector<qint64> processes = daemons;
    // The daemon that has the name is the one that the checks look at, whatever its program is called.
    if (facts.bus.owner != 0) {
        processes.removeOne(facts.bus.owner);
        processes.prepend(facts.bus.owner);
    }
    for (const qint64 daemon : qAsConst(processes)) {
        facts.daemons.append(process(daemon));
    }
    facts.readiness = {missing, readyTime()};
    facts.panel = panel(processes);
    facts.lists = lists();
    facts.journal = journal(facts.daemons.isEmpty() ? 0 : facts.daemons.first().id);
    return facts;
}

} // namespace control
