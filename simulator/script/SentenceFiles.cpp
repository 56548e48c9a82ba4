// SPDX-License-Identifier: MIT
#include "simulator/script/SentenceFiles.h"

#include <QStringList>

namespace {

const QStringList& names()
{
    static const QStringList list{QStringLiteral("EmbosserCore"), QStringLiteral("EmbosserError"),
                                  QStringLiteral("EmbosserMenu")};
    return list;
}

} // namespace

namespace SentenceFiles {

QString nameOf(int number)
{
    return names().value(number);
}

bool isKnown(const QString& name)
{
    return names().contains(name);
}

} // namespace SentenceFiles
