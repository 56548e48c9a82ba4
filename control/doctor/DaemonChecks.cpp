// SPDX-License-Identifier: MIT
#include "control/doctor/Checks.h"

#include <ls/Identifiers.h>

namespace control {

namespace {

using Level = Diagnosis::Level;
using Checks::restart;

Diagnosis rights(const UserFacts& user)
{
    const QString check = QStringLiteral("rights");
    const QString document = QStringLiteral("integration.md#6-provide-the-services-around-it");
    if (!user.groupExists) {
        return {
            check, Level::Failure,
            QStringLiteral("The group %1 does not exist: no service but root may send commands, and none "
                           "can declare itself ready.")
                .arg(user.group),
            QStringLiteral("As root: systemd-sysusers; systemd-tmpfiles --create; systemctl reload dbus; ") +
                restart,
            QStringLiteral("reliability.md#on-the-device")};
    }
    if (user.isRoot) {
        return {check, Level::Ok, QStringLiteral("You are root: nothing is hidden."), {}, {}};
    }
    if (user.isMember) {
        return {check, Level::Unknown,
                QStringLiteral("You are in the group %1 and may send commands, but only root sees what the "
                               "daemon has open.")
                    .arg(user.group),
                QStringLiteral("For all checks: sudo keyboard-handlerctl doctor"), document};
    }
    if (user.isListed) {
        return {check, Level::Warning,
                QStringLiteral("The user %1 was added to the group %2 after you logged in: you may not send "
                               "commands yet.")
                    .arg(user.name, user.group),
                QStringLiteral("Log out and log in again."), document};
    }
    return {
        check, Level::Warning,
        QStringLiteral("The user %1 is not in the group %2: you may not send commands, and some checks "
                       "are not possible.")
            .arg(user.name, user.group),
        QStringLiteral("Use sudo, or as root: adduser %1 %2; then log in again.").arg(user.name, user.group),
        document};
}

Diagnosis bus(const BusFacts& bus)
{
    const QString check = QStringLiteral("bus");
    if (bus.fault.isEmpty()) {
        return {check, Level::Ok, QStringLiteral("The system bus answers."), {}, {}};
    }
    return {
        check, Level::Failure,
        QStringLiteral("There is no system bus (%1), so keys are neither announced nor spoken.")
            .arg(bus.fault),
        QStringLiteral("systemctl start dbus; the daemon starts with it. If DBUS_SYSTEM_BUS_ADDRESS is set, "
                       "check it."),
        QStringLiteral("reliability.md#on-the-device")};
}

Diagnosis unit(const UnitFacts& unit)
{
    const QString check = QStringLiteral("unit");
    const QString document = QStringLiteral("log-lines.md#start-up");
    if (!unit.hasSystemd) {
        return {check,
                Level::Ok,
                QStringLiteral("This system does not run systemd, so there is no unit."),
                {},
                {}};
    }
    if (!unit.fault.isEmpty()) {
        return {check, Level::Unknown, QStringLiteral("systemd does not describe the unit: ") + unit.fault,
                QStringLiteral("systemctl status keyboard-handler"), document};
    }
    if (unit.loadState != QLatin1String("loaded")) {
        const bool isMasked = unit.loadState == QLatin1String("masked");
        return {check, Level::Failure, QStringLiteral("The unit keyboard-handler is %1.").arg(unit.loadState),
                isMasked
                    ? QStringLiteral("systemctl unmask keyboard-handler; systemctl start keyboard-handler")
                    : QStringLiteral("Install the package keyboard-handler."),
                QStringLiteral("integration.md#4-install")};
    }
    if (unit.activeState == QLatin1String("active")) {
        return {check, Level::Ok, QStringLiteral("The unit keyboard-handler is active."), {}, {}};
    }
    if (unit.activeState == QLatin1String("failed")) {
        return {check, Level::Failure,
                QStringLiteral("The unit keyboard-handler has failed (%1).").arg(unit.result),
                QStringLiteral("journalctl -u keyboard-handler -n 20 says why. Then: systemctl reset-failed "
                               "keyboard-handler; systemctl start keyboard-handler"),
                document};
    }
    if (unit.activeState == QLatin1String("inactive")) {
        return {check, Level::Failure, QStringLiteral("The unit keyboard-handler is stopped."),
                QStringLiteral("systemctl start keyboard-handler"), document};
    }
    return {check, Level::Warning, QStringLiteral("The unit keyboard-handler is %1.").arg(unit.activeState),
            QStringLiteral("Wait a few seconds and try again; the check \"ready\" says what it waits for."),
            document};
}

QString listOf(const QVector<ProcessFacts>& daemons)
{
    QStringList ids;
    for (const ProcessFacts& daemon : daemons) {
        ids.append(QString::number(daemon.id));
    }
    return ids.join(QStringLiteral(" and "));
}

Diagnosis process(const Facts& facts)
{
    const QString check = QStringLiteral("process");
    const QString document = QStringLiteral("log-lines.md#start-up");
    if (facts.daemons.isEmpty()) {
        return {check, Level::Failure, QStringLiteral("No daemon runs."),
                QStringLiteral("systemctl start keyboard-handler"), document};
    }
    if (facts.daemons.size() > 1) {
        return {
            check, Level::Failure,
            QStringLiteral("%1 daemons run, the processes %2: each key is spoken and announced by all of "
                           "them.")
                .arg(QString::number(facts.daemons.size()), listOf(facts.daemons)),
            QStringLiteral("End those that the unit did not start (systemctl status keyboard-handler shows "
                           "its process): kill PROCESS; then: ") +
                restart,
            document};
    }
    const ProcessFacts& daemon = facts.daemons.first();
    if (daemon.state == QLatin1Char('T') || daemon.state == QLatin1Char('t')) {
        return {
            check, Level::Failure,
            QStringLiteral("The daemon, process %1, is stopped by a signal or a debugger.").arg(daemon.id),
            QStringLiteral("kill -CONT %1, or: %2").arg(QString::number(daemon.id), restart),
            QStringLiteral("reliability.md#in-the-fault-laboratory")};
    }
    return {check, Level::Ok, QStringLiteral("One daemon runs, the process %1.").arg(daemon.id), {}, {}};
}

Diagnosis ready(const Facts& facts)
{
    const QString check = QStringLiteral("ready");
    const QString document = QStringLiteral("integration.md#8-readiness-with-and-without-systemd");
    if (facts.daemons.isEmpty()) {
        return facts.readiness.ready.isValid()
                   ? Diagnosis{check, Level::Warning,
                               QStringLiteral(
                                   "The readiness file is there, but no daemon runs: it was killed, "
                                   "and services that ask for the file are misled."),
                               QStringLiteral("systemctl start keyboard-handler, or remove "
                                              "/run/service-watcher/keyboard-handler."),
                               document}
                   : Diagnosis{check,
                               Level::Failure,
                               QStringLiteral("The daemon is not ready: it does not run."),
                               {},
                               document};
    }
    if (facts.readiness.ready.isValid()) {
        return {check, Level::Ok, QStringLiteral("The daemon has declared itself ready."), {}, {}};
    }
    if (!facts.readiness.missing.isEmpty()) {
        return {
            check, Level::Failure,
            QStringLiteral("The daemon waits for %1, which must declare itself ready first: no key has an "
                           "effect until then.")
                .arg(facts.readiness.missing.join(QStringLiteral(" and "))),
            QStringLiteral("Start that service. It is ready while a file of its name is in "
                           "/run/service-watcher."),
            document};
    }
    return {
        check, Level::Failure,
        QStringLiteral("The daemon has not declared itself ready: it is still starting, or it may not write "
                       "in /run/service-watcher."),
        QStringLiteral("Try again. If it stays so, as root: systemd-sysusers; systemd-tmpfiles --create; ") +
            restart,
        document};
}

/// The prefixes of other daemons on the bus.
QStringList otherPrefixes(const BusFacts& bus)
{
    const QString ending = QLatin1Char('.') + ls::ServiceId::KeyboardHandler;
    QStringList prefixes;
    for (const QString& name : bus.names) {
        if (name.endsWith(ending) && !name.startsWith(QLatin1Char(':'))) {
            prefixes.append(name.chopped(ending.size()));
        }
    }
    prefixes.removeAll(bus.prefix);
    return prefixes;
}

Diagnosis absentName(const Facts& facts, const QString& check, const QString& name)
{
    const QStringList others = otherPrefixes(facts.bus);
    if (!others.isEmpty()) {
        return {check, Level::Failure,
                QStringLiteral("No daemon has the name %1, but there is one with another prefix: %2.")
                    .arg(name, others.join(QStringLiteral(", "))),
                QStringLiteral("keyboard-handlerctl doctor --prefix ") + others.first(),
                QStringLiteral("integration.md#3-choose-names")};
    }
    const bool isReady = !facts.daemons.isEmpty() && facts.readiness.ready.isValid();
    return {check, Level::Failure,
            isReady ? QStringLiteral("The daemon runs, but the name %1 is not on the bus: its bus was "
                                     "restarted, or the bus policy refuses the name.")
                          .arg(name)
                    : QStringLiteral("The name %1 is not on the bus.").arg(name),
            isReady
                ? restart + QStringLiteral("; if that does not help, install the daemon's bus policy.")
                : QStringLiteral("The daemon takes the name when it starts; see the checks \"process\" and "
                                 "\"ready\"."),
            QStringLiteral("log-lines.md#start-up")};
}

Diagnosis name(const Facts& facts)
{
    const QString check = QStringLiteral("name");
    const QString name = facts.bus.nameOf(ls::ServiceId::KeyboardHandler);
    if (!facts.bus.fault.isEmpty()) {
        return {check, Level::Unknown, QStringLiteral("Without a bus, there are no names."), {}, {}};
    }
    if (facts.bus.owner == 0) {
        return absentName(facts, check, name);
    }
    return {check,
            Level::Ok,
            QStringLiteral("The process %1 has the name %2.").arg(QString::number(facts.bus.owner), name),
            {},
            {}};
}

Diagnosis answer(const BusFacts& bus)
{
    const QString check = QStringLiteral("answer");
    switch (bus.answer) {
    case BusFacts::Answer::Answered:
        return {check, Level::Ok, QStringLiteral("The daemon answers."), {}, {}};
    case BusFacts::Answer::Refused:
        return {check,
                Level::Unknown,
                QStringLiteral("You may not ask the daemon whether it answers."),
                QStringLiteral("sudo keyboard-handlerctl doctor"),
                {}};
    case BusFacts::Answer::Missing:
        return {
            check, Level::Failure,
            QStringLiteral("The daemon has its name, but does not answer: its main thread is busy or hangs."),
            QStringLiteral("If it takes a whole core (top), check both nodes. Otherwise: ") + restart,
            QStringLiteral("log-lines.md#keys")};
    case BusFacts::Answer::NotAsked:
        break;
    }
    return {check, Level::Unknown, QStringLiteral("There is no daemon on the bus to ask."), {}, {}};
}

} // namespace

Diagnoses Checks::ofDaemon(const Facts& facts)
{
    return {rights(facts.user), bus(facts.bus), unit(facts.unit), process(facts),
            ready(facts),       name(facts),    answer(facts.bus)};
}

} // namespace control
