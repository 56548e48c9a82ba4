// SPDX-License-Identifier: MIT
#include "control/doctor/Checks.h"

#include "checker/OutputWords.h"

namespace control {

QString Checks::fewOf(const QStringList& texts)
{
    constexpr int maxShown = 4;
    QStringList shown = texts.mid(0, maxShown);
    if (texts.size() > maxShown) {
        shown.append(QStringLiteral("%1 more").arg(texts.size() - maxShown));
    }
    return checker::OutputWords::enumeration(shown);
}

Diagnoses Checks::all(const Facts& facts)
{
    return ofDaemon(facts) + ofPanel(facts) + ofLists(facts) + ofSurroundings(facts);
}

} // namespace control
