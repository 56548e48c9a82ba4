// SPDX-License-Identifier: MIT
#include "simulator/script/ExpectationWords.h"

#include "simulator/script/ObservationText.h"
#include "simulator/script/ScriptWords.h"
#include "simulator/script/SentenceFiles.h"
#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>

#include <limits>

namespace {

const QString speakWord = QStringLiteral("speak ");

QStringList wordsOf(const QString& text)
{
    const QString simple = text.simplified();
    return simple.isEmpty() ? QStringList() : simple.split(' ');
}

bool isFreeText(const QString& kind)
{
    return kind == QLatin1String("log") || kind == QLatin1String("answer");
}

QString checkAnnouncement(const QStringList& words)
{
    QString fault = ScriptWords::checkCount(
        words, 3, 5, QStringLiteral("expect MS announce ACTION RECEIVER SENDER [KEY [KEY]]"));
    if (fault.isEmpty()) {
        fault = ScriptWords::checkService(words.at(1));
    }
    if (fault.isEmpty() && words.at(2) != QLatin1String("-")) {
        fault = ScriptWords::checkService(words.at(2));
    }
    // Key codes without an identifier are announced under this name.
    QStringList keys = words.mid(3);
    keys.removeAll(vocabulary::undefined);
    return fault.isEmpty() ? ScriptWords::checkKeys(keys) : fault;
}

QString checkSpeech(const QStringList& words)
{
    const QString usage = QStringLiteral("expect MS speak SENTENCE or expect MS speak FILE NUMBER");
    const QString fault = ScriptWords::checkCount(words, 1, 2, usage);
    if (!fault.isEmpty()) {
        return fault;
    }
    if (words.size() == 1) {
        const bool isNamed = SentenceFiles::sentences().contains(words.first());
        return isNamed ? QString() : QStringLiteral("Unknown sentence \"%1\".").arg(words.first());
    }
    if (!SentenceFiles::isKnown(words.first())) {
        return QStringLiteral("Unknown translation file \"%1\".").arg(words.first());
    }
    const bool numbered = ScriptWords::number(words.last(), 0, std::numeric_limits<int>::max()).has_value();
    return numbered ? QString() : QStringLiteral("\"%1\" is not a sentence number.").arg(words.last());
}

} // namespace

namespace ExpectationWords {

QString check(const QString& text)
{
    const QStringList words = wordsOf(text);
    const QString kind = words.value(0);
    if (kind == QLatin1String("announce")) {
        return checkAnnouncement(words.mid(1));
    }
    if (kind == QLatin1String("speak")) {
        return checkSpeech(words.mid(1));
    }
    if (kind == QLatin1String("cancel")) {
        return ScriptWords::checkCount(words, 1, 1, QStringLiteral("expect MS cancel"));
    }
    if (isFreeText(kind)) {
        return ScriptWords::checkCount(words, 2, -1, QStringLiteral("expect MS %1 TEXT").arg(kind));
    }
    return QStringLiteral("Expect one of announce, speak, cancel, log and answer, not \"%1\".").arg(kind);
}

QString normalised(const QString& text)
{
    const QString kind = wordsOf(text).value(0);
    if (isFreeText(kind)) {
        return kind + ' ' + ScriptWords::withoutWords(text, 1);
    }
    const QString simple = text.simplified();
    const QString number = SentenceFiles::sentences().value(simple.mid(speakWord.size()));
    return simple.startsWith(speakWord) && !number.isEmpty() ? speakWord + number : simple;
}

QString named(const QString& text)
{
    const QString name = SentenceFiles::sentences().key(text.mid(speakWord.size()));
    return text.startsWith(speakWord) && !name.isEmpty() ? speakWord + name : text;
}

} // namespace ExpectationWords
