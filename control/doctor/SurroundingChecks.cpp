// SPDX-License-Identifier: MIT
#include "control/doctor/Checks.h"

#include "keys/KeyRules.h"
#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>

#include <QMap>
#include <QRegularExpression>

namespace control {

namespace {

using Level = Diagnosis::Level;

const QString behaviour = QStringLiteral("behaviour.md#single-keys");

/// The actions that each service gets, by services.
QMap<QString, QStringList> actionsByReceiver(const model::KeyLists& lists)
{
    QMap<QString, QStringList> actions;
    const auto add = [&actions](const QString& receiver, const QString& action) {
        if (!actions[receiver].contains(action)) {
            actions[receiver].append(action);
        }
    };
    for (const QString& state : ls::StateId::meta.keys()) {
        for (const QString& key : ls::KeyId::meta.keys()) {
            const QStringList receivers = KeyRules::singleKeyReceivers(key, state);
            for (const QString& receiver : receivers) {
                add(receiver, QStringLiteral("single keys"));
            }
        }
    }
    for (const model::RowId id : lists.ids()) {
        add(lists.row(id).receiverService(), lists.row(id).eAction());
    }
    actions.remove(vocabulary::undefined); // drops the action deliberately
    return actions;
}

Diagnoses receivers(const Facts& facts)
{
    const QString check = QStringLiteral("receivers");
    const QString document = QStringLiteral("integration.md#6-provide-the-services-around-it");
    if (!facts.bus.fault.isEmpty()) {
        return {{check, Level::Unknown, QStringLiteral("Without a bus, no receiver can be found."), {}, {}}};
    }
    Diagnoses all;
    const QMap<QString, QStringList> actions = actionsByReceiver(facts.lists.sources.lists(false));
    for (auto receiver = actions.begin(); receiver != actions.end(); ++receiver) {
        if (!facts.bus.has(receiver.key())) {
            all.append({check, Level::Warning,
                        QStringLiteral("%1 is not on the bus, so probably no service acts on: %2.")
                            .arg(facts.bus.nameOf(receiver.key()), Checks::fewOf(*receiver)),
                        QStringLiteral("Start the service %1, or name another receiver in the rows.")
                            .arg(receiver.key()),
                        document});
        }
    }
    if (all.isEmpty()) {
        all.append({check, Level::Ok, QStringLiteral("All receivers are on the bus."), {}, {}});
    }
    return all;
}

Diagnosis speech(const BusFacts& bus)
{
    const QString check = QStringLiteral("speech");
    const QString service = QStringLiteral("SpeechDaemon");
    if (!bus.fault.isEmpty()) {
        return {check,
                Level::Unknown,
                QStringLiteral("Without a bus, the speech daemon cannot be found."),
                {},
                {}};
    }
    if (bus.has(service)) {
        return {check, Level::Ok, QStringLiteral("The speech daemon is on the bus."), {}, {}};
    }
    return {
        check, Level::Warning,
        QStringLiteral("%1 is not on the bus: keys are announced, but not spoken.").arg(bus.nameOf(service)),
        QStringLiteral("Start the speech daemon."),
        QStringLiteral("integration.md#6-provide-the-services-around-it")};
}

/// What the state means for the keys.
QString effectOf(const QString& state)
{
    if (state == ls::StateId::Startup) {
        return QStringLiteral("each key is refused with a spoken sentence, and nothing is announced");
    }
    return QStringLiteral("each released key is announced at once, unspoken, to %1, and no combination can "
                          "begin")
        .arg(KeyRules::singleKeyReceivers(ls::KeyId::Help, state).join(QLatin1Char(' ')));
}

Diagnosis state(const BusFacts& bus)
{
    const QString check = QStringLiteral("state");
    if (!bus.fault.isEmpty()) {
        return {check,
                Level::Unknown,
                QStringLiteral("Without a bus, the state handler cannot be asked."),
                {},
                {}};
    }
    if (bus.stateAnswer == BusFacts::Answer::Refused) {
        return {check, Level::Unknown,
                QStringLiteral("%1 does not let you ask for the state.")
                    .arg(bus.nameOf(ls::ServiceId::StateHandler)),
                QStringLiteral("Let root call the state handler in its bus policy."),
                QStringLiteral("integration.md#6-provide-the-services-around-it")};
    }
    if (bus.state.isEmpty()) {
        return {check, Level::Failure,
                QStringLiteral(
                    "%1 does not report the state. A daemon that starts meanwhile announces single keys "
                    "unspoken, and no gesture of the key lists is valid.")
                    .arg(bus.nameOf(ls::ServiceId::StateHandler)),
                QStringLiteral("Start the state handler, then: systemctl restart keyboard-handler"),
                QStringLiteral("log-lines.md#device-state")};
    }
    if (bus.state == ls::StateId::Idle) {
        return {check,
                Level::Ok,
                QStringLiteral("The state handler reports Idle, in which all gestures work."),
                {},
                {}};
    }
    return {
        check, Level::Warning,
        QStringLiteral("The state handler reports %1: %2.").arg(bus.state, effectOf(bus.state)),
        QStringLiteral("If the device is really in this state, wait or use the keys that are valid in it "
                       "(keyboard-handler-keys card /var/lib/keyboard-handler). Otherwise restart the state "
                       "handler."),
        behaviour};
}

bool isFault(const QString& line)
{
    static const QRegularExpression fault(
        QStringLiteral("( ERROR:| FAILED!|^Unable |is lost\\.$|^No thread | dropped: )"));
    return line.contains(fault);
}

QString refusalsIn(const QStringList& lines)
{
    const QStringList refused = lines.filter(QStringLiteral("WARN: Expected state is:"));
    return refused.isEmpty()
               ? QString()
               : QStringLiteral(" It has refused actions because of the state; the last line: ") +
                     refused.last();
}

Diagnosis log(const Facts& facts)
{
    const QString check = QStringLiteral("log");
    if (!facts.journal.fault.isEmpty()) {
        return {check, Level::Unknown,
                QStringLiteral("The log of the daemon cannot be read: %1.").arg(facts.journal.fault),
                QStringLiteral("Use sudo; without systemd, read the daemon's standard error."),
                QStringLiteral("log-lines.md")};
    }
    QStringList faults;
    for (const QString& line : facts.journal.lines) {
        if (isFault(line)) {
            faults.append(line);
        }
    }
    if (faults.isEmpty()) {
        return {check,
                Level::Ok,
                QStringLiteral("The running daemon has logged no error.") + refusalsIn(facts.journal.lines),
                {},
                {}};
    }
    return {check, Level::Warning,
            QStringLiteral("The running daemon has logged errors (%1 lines); the last one: %2")
                .arg(QString::number(faults.size()), faults.last()),
            QStringLiteral("Look the line up in the document; journalctl -b -u keyboard-handler shows all."),
            QStringLiteral("log-lines.md")};
}

} // namespace

Diagnoses Checks::ofSurroundings(const Facts& facts)
{
    return receivers(facts) + Diagnoses{speech(facts.bus), state(facts.bus), log(facts)};
}

} // namespace control
