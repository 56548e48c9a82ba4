// SPDX-License-Identifier: MIT
#include "control/doctor/Checks.h"

#include "checker/FindingText.h"

namespace control {

namespace {

using Level = Diagnosis::Level;
using Checks::restart;
using model::List;

const QString listsCheck = QStringLiteral("lists");
const QString rowsCheck = QStringLiteral("rows");
const QString replacement = QStringLiteral("integration.md#7-replace-the-key-lists");
constexpr int maxFindings = 10;

QString timeOf(const QDateTime& time)
{
    return time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

Diagnoses missing(const ListFacts& facts)
{
    Diagnoses all;
    if (!facts.sources.fault.isEmpty()) {
        all.append(
            {listsCheck, Level::Failure, facts.sources.fault,
             QStringLiteral("ls -lL /var/lib/keyboard-handler; the daemon's user must be able to read the "
                            "lists."),
             replacement});
        return all;
    }
    for (const List list : model::allLists) {
        if (!facts.sources.found.contains(list)) {
            all.append({listsCheck, Level::Failure,
                        QStringLiteral("%1 is missing: its gestures are not recognised.")
                            .arg(facts.sources.file(list).name()),
                        QStringLiteral("systemd-tmpfiles --create, which links the installed list; then: ") +
                            restart,
                        replacement});
        }
    }
    return all;
}

/// The daemon reads the lists between its start and the moment at which it declares itself ready.
Diagnoses changed(const Facts& facts)
{
    Diagnoses all;
    if (facts.daemons.isEmpty()) {
        return all;
    }
    const QDateTime started = facts.daemons.first().started;
    const QDateTime ready = facts.readiness.ready;
    // A file of an earlier daemon that could not be removed says nothing about this one.
    const bool isCurrent = ready.isValid() && started.isValid() && ready >= started;
    for (const List list : facts.lists.sources.found) {
        const QDateTime change = facts.lists.changed[static_cast<size_t>(list)];
        const QString name = facts.lists.sources.file(list).name();
        if (isCurrent && change > ready) {
            all.append(
                {listsCheck, Level::Failure,
                 QStringLiteral("%1 was changed at %2, after the daemon had read it (it was ready at %3): "
                                "the change has no effect yet.")
                     .arg(name, timeOf(change), timeOf(ready)),
                 restart, replacement});
        } else if (started.isValid() && change > started) {
            all.append(
                {listsCheck, Level::Warning,
                 QStringLiteral("%1 was changed at %2, while the daemon was starting (since %3): it may "
                                "have read the former rows.")
                     .arg(name, timeOf(change), timeOf(started)),
                 restart, replacement});
        }
    }
    return all;
}

Diagnosis unchanged(const Facts& facts)
{
    return facts.daemons.isEmpty()
               ? Diagnosis{listsCheck,
                           Level::Unknown,
                           QStringLiteral("No daemon runs that could have read the lists."),
                           {},
                           {}}
               : Diagnosis{listsCheck,
                           Level::Ok,
                           QStringLiteral("No list was changed since the daemon started."),
                           {},
                           {}};
}

Diagnosis diagnosisOf(const checker::Finding& finding, const checker::ListSources& sources)
{
    const checker::SourceFile& file = sources.file(finding.place.list);
    const checker::Position position = file.position(finding.place.range.begin);
    const QString remark =
        finding.place.remark.isEmpty() ? QString() : QStringLiteral(": ") + finding.place.remark;
    return {rowsCheck, finding.level == checker::Level::Error ? Level::Failure : Level::Warning,
            QStringLiteral("%1:%2:%3: %4%5 [%6].")
                .arg(file.name(), QString::number(position.line), QString::number(position.column),
                     finding.message, remark, finding.id),
            finding.help.isEmpty() ? QStringLiteral("keyboard-handler-keys explain ") + finding.id
                                   : finding.help.left(1).toUpper() + finding.help.mid(1) + QLatin1Char('.'),
            QStringLiteral("first-key-list.md")};
}

Diagnoses findings(const ListFacts& facts)
{
    Diagnoses all;
    int others = 0;
    for (const checker::Finding& finding : facts.result.findings) {
        if (finding.level == checker::Level::Note) {
            continue;
        }
        if (all.size() < maxFindings) {
            all.append(diagnosisOf(finding, facts.sources));
        } else {
            ++others;
        }
    }
    if (others > 0) {
        all.append({rowsCheck, Level::Warning, QStringLiteral("There are %1 further findings.").arg(others),
                    QStringLiteral("keyboard-handler-keys check /var/lib/keyboard-handler"),
                    QStringLiteral("first-key-list.md")});
    }
    if (!facts.result.isProved) {
        all.append({rowsCheck, Level::Unknown,
                    QStringLiteral("The search for rows that keys never announce did not come to its end."),
                    QStringLiteral("keyboard-handler-keys check /var/lib/keyboard-handler"),
                    QStringLiteral("first-key-list.md")});
    }
    return all;
}

} // namespace

Diagnoses Checks::ofLists(const Facts& facts)
{
    Diagnoses all = missing(facts.lists) + changed(facts);
    if (all.isEmpty()) {
        all.append(unchanged(facts));
    }
    const Diagnoses found = findings(facts.lists);
    all += found;
    if (found.isEmpty()) {
        all.append(
            {rowsCheck,
             Level::Ok,
             QStringLiteral("Keys announce each of the %1 rows on the disk.").arg(facts.lists.result.rows),
             {},
             {}});
    }
    return all;
}

} // namespace control
