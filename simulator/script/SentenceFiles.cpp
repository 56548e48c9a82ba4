// SPDX-License-Identifier: MIT
#include "simulator/script/SentenceFiles.h"

#include "vocabulary/Vocabulary.h"

namespace {

const QMap<int, QString>& names()
{
    static const QMap<int, QString> byNumber{{vocabulary::coreSentences, QStringLiteral("EmbosserCore")},
                                             {vocabulary::errorSentences, QStringLiteral("EmbosserError")},
                                             {vocabulary::menuSentences, QStringLiteral("EmbosserMenu")}};
    return byNumber;
}

} // namespace

namespace SentenceFiles {

QString nameOf(int number)
{
    return names().value(number);
}

bool isKnown(const QString& name)
{
    return names().values().contains(name);
}

} // namespace SentenceFiles
