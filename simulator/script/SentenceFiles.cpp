// SPDX-License-Identifier: MIT
#include "simulator/script/SentenceFiles.h"

#include "vocabulary/Vocabulary.h"

#include <translation/Sid.h>

#include <QMetaEnum>
#include <QStringList>

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

const QMap<QString, QString>& sentences()
{
    static const auto numbers = [] {
        QMap<QString, QString> map;
        const QMetaObject& files = libtranslation::Sid::staticMetaObject;
        for (const QString& file : names()) {
            const QMetaEnum sentences = files.enumerator(files.indexOfEnumerator(qPrintable(file)));
            for (int i = 0; i < sentences.keyCount(); ++i) {
                map.insert(QString::fromLatin1(sentences.key(i)),
                           file + ' ' + QString::number(sentences.value(i)));
            }
        }
        return map;
    }();
    return numbers;
}

} // namespace SentenceFiles
