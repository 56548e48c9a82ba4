// SPDX-License-Identifier: MIT
#include "control/doctor/Checks.h"

#include "card/CardGestures.h"
#include "checker/OutputWords.h"

#include <ls/Identifiers.h>

#include <algorithm>

namespace control {

namespace {

using Level = Diagnosis::Level;
using Checks::restart;
using Kind = NodeFacts::Kind;
using model::List;

const QString nodesCheck = QStringLiteral("nodes");
const QString autorepeatCheck = QStringLiteral("autorepeat");
const QString keysCheck = QStringLiteral("keys");
const QString panelDocument = QStringLiteral("integration.md#5-make-the-panels-nodes-stable");
/// Where the panel's devices are, for a node that is another device.
QString whereabouts(const PanelFacts& panel)
{
    QStringList places;
    for (auto place = panel.nodesByName.begin(); place != panel.nodesByName.end(); ++place) {
        places.append(QStringLiteral("%1 is %2").arg(place.key(), place.value()));
    }
    return places.isEmpty() ? QStringLiteral("no input device has one of the panel's names")
                            : places.join(QStringLiteral(", "));
}

/// Whether the daemon reads the node.
Diagnosis opened(const NodeFacts& node, const Facts& facts)
{
    if (facts.daemons.isEmpty()) {
        return {nodesCheck,
                Level::Unknown,
                QStringLiteral("%1 is there; no daemon reads it.").arg(node.path),
                {},
                {}};
    }
    const ProcessFacts& daemon = facts.daemons.first();
    if (!daemon.files) {
        return {nodesCheck,
                Level::Unknown,
                QStringLiteral("%1 is there; only root sees whether the daemon has it open.").arg(node.path),
                QStringLiteral("sudo keyboard-handlerctl doctor"),
                {}};
    }
    if (daemon.files->contains(node.id)) {
        return {nodesCheck, Level::Ok, QStringLiteral("The daemon has %1 open.").arg(node.path), {}, {}};
    }
    const bool isFormer = daemon.fileNames.contains(node.path + QStringLiteral(" (deleted)"));
    return {nodesCheck, Level::Failure,
            isFormer
                ? QStringLiteral("The daemon has a former %1 open: the device was unplugged and plugged in "
                                 "again, and its keys are lost.")
                      .arg(node.path)
                : QStringLiteral("%1 is there, but the daemon does not have it open: the keys of this device "
                                 "are lost.")
                      .arg(node.path),
            QStringLiteral("ls -l %1 must show the daemon's group with read and write access. Then: %2")
                .arg(node.path, restart),
            QStringLiteral("log-lines.md#start-up")};
}

Diagnosis place(const NodeFacts& node, const Facts& facts)
{
    if (node.kind == Kind::Missing) {
        return {nodesCheck, Level::Failure,
                QStringLiteral("%1 is missing: the keys of this device are lost (%2).")
                    .arg(node.path, whereabouts(facts.panel)),
                QStringLiteral("Connect the panel and load its driver, then: ") + restart, panelDocument};
    }
    if (node.kind == Kind::Other) {
        return {nodesCheck, Level::Failure, QStringLiteral("%1 is not an input device.").arg(node.path),
                QStringLiteral("Remove it (ls -lL %1 says what it is), then: %2").arg(node.path, restart),
                QStringLiteral("log-lines.md#keys")};
    }
    if (!node.name.isEmpty() && !facts.panel.names.contains(node.name)) {
        return {
            nodesCheck, Level::Failure,
            QStringLiteral("%1 is \"%2\", not a device of the panel (%3): the daemon reads the wrong device.")
                .arg(node.path, node.name, whereabouts(facts.panel)),
            QStringLiteral("Load the panel's driver before all other input drivers."), panelDocument};
    }
    return opened(node, facts);
}

Diagnoses readers(const NodeFacts& node)
{
    if (node.readers.isEmpty()) {
        return {};
    }
    return {
        {nodesCheck, Level::Warning,
         QStringLiteral("%1 is also open in %2: a program that has grabbed it takes the keys away from the "
                        "daemon.")
             .arg(node.path, checker::OutputWords::enumeration(node.readers)),
         QStringLiteral("End that program, and press the key again."), panelDocument}};
}

bool repeats(const NodeFacts& node)
{
    return node.hasAutorepeat && node.repeatDelay > 0 && node.repeatPeriod > 0;
}

/// The actions of long presses with a key that this device sends.
QStringList longPressesOf(const NodeFacts& node, const Facts& facts)
{
    QStringList rows;
    const model::KeyLists lists = facts.lists.sources.lists(false);
    for (const KeyEntry& row : lists.longPresses) {
        if (node.codes.contains(ls::KeyId::meta.value(row.firstKey(), -1))) {
            rows.append(QStringLiteral("%1 (%2)").arg(row.eAction(), row.firstKey()));
        }
    }
    return rows;
}

Diagnosis unreadable(const QString& check, const NodeFacts& node)
{
    return {check,
            Level::Unknown,
            node.kind == Kind::Fifo
                ? QStringLiteral("%1 is a FIFO, as on a simulated device, and does not say what it can do.")
                      .arg(node.path)
                : QStringLiteral("%1 does not say what it can do: %2.").arg(node.path, node.fault),
            node.kind == Kind::Fifo ? QString() : QStringLiteral("sudo keyboard-handlerctl doctor"),
            {}};
}

Diagnosis repetition(const NodeFacts& node, const Facts& facts)
{
    if (repeats(node)) {
        return {autorepeatCheck,
                Level::Ok,
                QStringLiteral("%1 repeats held keys, first after %2 ms, then every %3 ms.")
                    .arg(node.path, QString::number(node.repeatDelay), QString::number(node.repeatPeriod)),
                {},
                {}};
    }
    const QStringList rows = longPressesOf(node, facts);
    return {
        autorepeatCheck, Level::Failure,
        QStringLiteral("%1 does not repeat held keys, so the daemon cannot recognise a long press%2.")
            .arg(node.path, rows.isEmpty() ? QString() : QStringLiteral(": ") + Checks::fewOf(rows)),
        node.hasAutorepeat
            ? QStringLiteral("Its delay is %1 ms and its period %2 ms: with a 0, the kernel does not repeat. "
                             "Set both (kbdrate, or the driver), then press the key again.")
                  .arg(QString::number(node.repeatDelay), QString::number(node.repeatPeriod))
            : QStringLiteral("Give its node in the device tree the property autorepeat, or have its driver "
                             "set EV_REP."),
        panelDocument};
}

/// The rows with a key that no device sends, each with these keys.
QStringList deadRows(const QSet<int>& codes, const model::KeyLists& lists)
{
    QStringList rows;
    for (const model::RowId id : lists.ids()) {
        QStringList missing;
        for (const QString& key : CardGestures::keysOf(lists.row(id), id.list)) {
            const auto code = ls::KeyId::meta.constFind(key);
            if (code != ls::KeyId::meta.constEnd() && !codes.contains(*code) && !missing.contains(key)) {
                missing.append(key);
            }
        }
        if (!missing.isEmpty()) {
            rows.append(
                QStringLiteral("%1 (%2)").arg(lists.row(id).eAction(), missing.join(QStringLiteral(", "))));
        }
    }
    return rows;
}

/// The keys that no device sends and no row needs.
QString absentKeys(const QSet<int>& codes)
{
    QStringList absent;
    for (auto key = ls::KeyId::meta.begin(); key != ls::KeyId::meta.end(); ++key) {
        if (key.key() != ls::KeyId::Unknown && !codes.contains(*key)) {
            absent.append(key.key());
        }
    }
    return absent.isEmpty()
               ? QString()
               : QStringLiteral(" It does not have %1.").arg(checker::OutputWords::enumeration(absent));
}

bool isReadable(const NodeFacts& node)
{
    return node.kind == Kind::InputDevice && node.fault.isEmpty();
}

Diagnosis sendable(const Facts& facts)
{
    QSet<int> codes;
    for (const NodeFacts& node : facts.panel.nodes) {
        if (node.kind == Kind::Fifo || (node.kind == Kind::InputDevice && !node.fault.isEmpty())) {
            return {
                keysCheck,
                Level::Unknown,
                QStringLiteral("%1 does not say which keys it has, so a row whose key is missing cannot be "
                               "found.")
                    .arg(node.path),
                {},
                {}};
        }
        codes += node.codes;
    }
    if (facts.lists.sources.found.isEmpty()) {
        return {keysCheck,
                Level::Unknown,
                QStringLiteral("There is no list whose keys the panel should have."),
                {},
                {}};
    }
    const QStringList rows = deadRows(codes, facts.lists.sources.lists(false));
    if (rows.isEmpty()) {
        return {keysCheck,
                Level::Ok,
                QStringLiteral("The panel has the keys of all rows.") + absentKeys(codes),
                {},
                {}};
    }
    return {
        keysCheck, Level::Failure,
        QStringLiteral("No device sends the keys of these actions (the missing key is in brackets): %1.")
            .arg(Checks::fewOf(rows)),
        QStringLiteral("Give the panel's driver the codes of these keys, or write the rows with other keys."),
        panelDocument};
}

} // namespace

Diagnoses Checks::ofPanel(const Facts& facts)
{
    Diagnoses all;
    for (const NodeFacts& node : facts.panel.nodes) {
        all.append(place(node, facts));
        all += readers(node);
    }
    for (const NodeFacts& node : facts.panel.nodes) {
        if (isReadable(node)) {
            all.append(repetition(node, facts));
        } else if (node.kind == Kind::InputDevice || node.kind == Kind::Fifo) {
            all.append(unreadable(autorepeatCheck, node));
        }
    }
    all.append(sendable(facts));
    return all;
}

} // namespace control
