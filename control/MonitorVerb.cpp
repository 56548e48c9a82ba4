// SPDX-License-Identifier: MIT
#include "control/MonitorVerb.h"

#include "control/LineQueue.h"
#include "control/LiveKeys.h"
#include "control/Monitor.h"
#include "control/Options.h"
#include "control/SpeechRequests.h"
#include "simulator/script/ScriptWords.h"

#include <QCoreApplication>
#include <QDir>

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

/// The daemon comes first: on a busy processor, the monitor reads keys and messages later, not the daemon.
void yieldToTheDaemon()
{
    const sched_param noPriority{};
    const QStringList threads =
        QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& thread : threads) {
        ::sched_setscheduler(thread.toInt(), SCHED_IDLE, &noPriority); // refused where it is not allowed
    }
}

/// Events that are words, or words and what they say for programs.
auto reportOf(LineQueue& queue, const MonitorLines& lines, const QString& kind)
{
    return [&queue, &lines, kind](const QString& words, const QJsonObject& members) {
        queue.add(lines.of({QDateTime::currentDateTime(), kind, words,
                            members.isEmpty() ? QJsonObject{{QStringLiteral("remark"), words}} : members}));
    };
}

/// Returns an empty string, or what is wrong with the input devices.
QString follow(LiveKeys& keys, const Monitor& monitor)
{
    QString fault = keys.open();
    if (fault.isEmpty()) {
        QObject::connect(&monitor, &Monitor::announced, &keys, &LiveKeys::takeAnnouncement);
        QObject::connect(&monitor, &Monitor::stateSeen, &keys, &LiveKeys::setState);
        QObject::connect(&monitor, &Monitor::daemonCame, &keys, &LiveKeys::restart);
    }
    return fault;
}

Status monitor(const Call& call, const QString& prefix, const MonitorLines& lines)
{
    LineQueue queue(STDOUT_FILENO, [&lines](int count) { return lines.loss(count); });
    QObject::connect(&queue, &LineQueue::broken, qApp, [&call] {
        QCoreApplication::exit(call.complain(Unusable, QStringLiteral("The output could not be written.")));
    });
    Monitor monitor(Bus(prefix, BusSocket::timeout), call.options.values(receiver),
                    [&](const MonitorEvent& event) { queue.add(lines.of(event)); });
    QObject::connect(&monitor, &Monitor::busLost, qApp, [] { QCoreApplication::exit(NoBus); });
    LiveKeys keys(reportOf(queue, lines, QStringLiteral("key")));
    if (call.options.isSet(why)) {
        const QString keysFault = follow(keys, monitor);
        if (!keysFault.isEmpty()) {
            return call.complain(keys.isForbidden() ? NoRights : Unusable, keysFault);
        }
    }
    const BusFault fault = monitor.begin();
    if (fault.isFault()) {
        return call.complain(fault.status, fault.text);
    }
    const auto reportSpeech = reportOf(queue, lines, QStringLiteral("speech"));
    SpeechRequests speech(reportSpeech);
    QObject::connect(&monitor, &Monitor::busLost, &speech, &SpeechRequests::close);
    const QString noSpeech = speech.open(prefix);
    if (!noSpeech.isEmpty()) {
        reportSpeech(noSpeech, {});
    }
    if (call.options.isSet(why)) {
        yieldToTheDaemon();
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
        return call.complain(Unusable, fault);
    }
    return monitor(call, *prefix, MonitorLines(Options::hasJson(call), call.out.charset()));
}

} // namespace

Verb monitorVerb()
{
    return {
        QStringLiteral("monitor"),
        {},
        QStringLiteral("Show each announcement, speech request and change of the operating state."),
        QStringLiteral("It sends the daemon nothing, so the next announcement names the same sender as "
                       "without it; it asks the state handler for the state. Speech requests take the right "
                       "to monitor the bus, usually root's; without it, a line says so. It runs until "
                       "Ctrl-C, or until the bus ends (status 3). If its lines are read too "
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
