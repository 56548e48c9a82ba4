// SPDX-License-Identifier: MIT
#include "control/doctor/Report.h"

#include <QJsonArray>

#include <algorithm>

namespace control {

namespace {

using Level = Diagnosis::Level;

QStringList linesOf(const Diagnosis& diagnosis)
{
    QStringList lines{QStringLiteral("%1: %2: %3")
                          .arg(Diagnosis::nameOf(diagnosis.level), diagnosis.check, diagnosis.cause)};
    if (!diagnosis.remedy.isEmpty()) {
        lines.append(QStringLiteral("    remedy: ") + diagnosis.remedy);
    }
    if (!diagnosis.document.isEmpty()) {
        lines.append(QStringLiteral("    read: ") + diagnosis.document);
    }
    return lines;
}

int countOf(const Diagnoses& diagnoses, Level level)
{
    return static_cast<int>(std::count_if(diagnoses.begin(), diagnoses.end(),
                                          [level](const Diagnosis& each) { return each.level == level; }));
}

Level worstOf(const Diagnoses& diagnoses)
{
    Level worst = Level::Ok;
    for (const Diagnosis& diagnosis : diagnoses) {
        worst = std::max(worst, diagnosis.level);
    }
    return worst;
}

} // namespace

QStringList Report::toLines(const Diagnoses& diagnoses)
{
    QStringList lines;
    for (const Diagnosis& diagnosis : diagnoses) {
        lines += linesOf(diagnosis);
    }
    return lines << QStringLiteral("failures: %1, warnings: %2, unknown: %3, ok: %4")
                        .arg(QString::number(countOf(diagnoses, Level::Failure)),
                             QString::number(countOf(diagnoses, Level::Warning)),
                             QString::number(countOf(diagnoses, Level::Unknown)),
                             QString::number(countOf(diagnoses, Level::Ok)))
                 << QStringLiteral("The documents are in ") +
                        QStringLiteral(KEYBOARD_HANDLER_DOCUMENT_FOLDER);
}

QJsonObject Report::toObject(const Diagnoses& diagnoses)
{
    QJsonArray checks;
    for (const Diagnosis& diagnosis : diagnoses) {
        checks.append(QJsonObject{{QStringLiteral("check"), diagnosis.check},
                                  {QStringLiteral("level"), Diagnosis::nameOf(diagnosis.level)},
                                  {QStringLiteral("cause"), diagnosis.cause},
                                  {QStringLiteral("remedy"), diagnosis.remedy},
                                  {QStringLiteral("document"), diagnosis.document}});
    }
    return {{QStringLiteral("version"), version},
            {QStringLiteral("level"), Diagnosis::nameOf(worstOf(diagnoses))},
            {QStringLiteral("checks"), checks}};
}

Status Report::statusOf(const Diagnoses& diagnoses)
{
    const Level worst = worstOf(diagnoses);
    return worst == Level::Failure ? Failed : worst == Level::Ok ? Done : Doubtful;
}

} // namespace control
