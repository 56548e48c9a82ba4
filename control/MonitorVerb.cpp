// SPDX-License-Identifier: MIT
#include "control/MonitorVerb.h"

#include "control/LineQueue.h"
#include "control/LiveKeys.h"
#include "control/Monitor.h"
#include "control/Options.h"
#include "simulator/script/ScriptWords.h"

#include <QCoreApplication>

#include <sched.h>
#include <unistd.h>

namespace control {

namespace {

const QString receiver = QStringLiteral("receiver");
const QString why = QStringLiteral("why");

QString faultOf(const Call& call)
{
    if (!call.words.isEmpty()) {
        return QStringLiteral("There is an argument too many: %1.").arg(call.words.first());
    }
    const QStringList receivers = call.options.values(receiver);
    for (const QString& each : receivers) {
        const QString fault = ScriptWords::checkService(each);
        if (!fault.isEmpty()) {
            return fault;
        }
    }
    return {};
}

/// The daemon comes first: on a busy processor, the monitor reads the keys later, not the daemon.
void yieldToTheDaemon()
{
    const sched_param noPriority{};
    ::sched_setscheduler(0, SCHED_IDLE, &noPriority); // refused where it is not allowed
}

Status monitor(const Call& call, const QString& prefix, const MonitorLines& lines)
{
    LineQueue queue(STDOUT_FILENO, [&lines](int count) { return lines.loss(count); });
    QObject::connect(&queue, &LineQueue::broken, qApp, [] { QCoreApplication::exit(Unusable); });
    Monitor monitor(Bus(prefix, std::chrono::seconds(1)), call.options.values(receiver),
                    [&](const MonitorEvent& event) { queue.add(lines.of(event)); });
    QObject::connect(&monitor, &Monitor::busLost, qApp, [] { QCoreApplication::exit(NoBus); });
    LiveKeys keys([&](const QString& words, const QJsonObject& members) {
        queue.add(lines.of({QDateTime::currentDateTime(), QStringLiteral("key"), words,
                            members.isEmpty() ? QJsonObject{{QStringLiteral("remark"), words}} : members}));
    });
    if (call.options.isSet(why)) {
        yieldToTheDaemon();
        const QString keysFault = keys.open();
        if (!keysFault.isEmpty()) {
            call.err.line(keysFault);
            return keys.isForbidden() ? NoRights : Unusable;
        }
        QObject::connect(&monitor, &Monitor::announced, &keys, &LiveKeys::takeAnnouncement);
        QObject::connect(&monitor, &Monitor::stateSeen, &keys, &LiveKeys::setState);
        QObject::connect(&monitor, &Monitor::daemonCame, &keys, &LiveKeys::restart);
    }
    const BusFault fault = monitor.begin();
    if (fault.isFault()) {
        call.err.line(fault.text);
        return fault.status;
    }
    return static_cast<Status>(QCoreApplication::exec());
}

Status run(const Call& call)
{
    const auto prefix = Options::prefixOf(call);
    if (!prefix) {
        return Unusable;
    }
    const QString fault = faultOf(call);
    if (!fault.isEmpty()) {
        call.err.line(fault);
        return Unusable;
    }
    return monitor(call, *prefix, MonitorLines(Options::hasJson(call), call.out.charset()));
}

} // namespace

Verb monitorVerb()
{
    return {
        QStringLiteral("monitor"),
        {},
        QStringLiteral("Show each announcement and change of the operating state."),
        QStringLiteral("It sends the daemon nothing, so the next announcement names the same sender as "
                       "without it; it asks the state handler for the state. Speech is not shown. It "
                       "runs until Ctrl-C, or until the bus ends (status 3). If its lines are read too "
                       "slowly, some are dropped, and a line says how many."),
        {QStringLiteral("monitor"), QStringLiteral("monitor --receiver UserMenu --json"),
         QStringLiteral("monitor --why")},
        {Options::prefix(), Options::json(),
         QCommandLineOption(receiver, QStringLiteral("Only announcements to this service. May be repeated."),
                            QStringLiteral("service")),
         QCommandLineOption(why, QStringLiteral("Add each key and the rule that decided about it. Reads the "
                                                "input devices next to the daemon, and the key lists on the "
                                                "disk, so it needs root."))},
        &run};
}

} // namespace control
