// SPDX-License-Identifier: MIT
#include "checker/SearchWords.h"

#include <QLocale>

namespace checker {

QString SearchWords::grouped(quint64 number)
{
    return QLocale(QLocale::English).toString(number);
}

QString SearchWords::extentOf(const model::Proof& proof)
{
    return QStringLiteral("%1; %2 situations, %3 steps")
        .arg(proof.environment.toText(), grouped(proof.situations), grouped(proof.steps));
}

} // namespace checker
