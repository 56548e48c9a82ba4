// SPDX-License-Identifier: MIT
#include "device/SpeechFeedback.h"

#include "vocabulary/Vocabulary.h"

#include <speech/Speech.h>
#include <vantre/Singleton.h>

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QMetaEnum>

Q_LOGGING_CATEGORY(speechCategory, "SpeechFeedback", QtCriticalMsg)
Q_LOGGING_CATEGORY(speakCategory, "SpeechFeedback.speak", QtCriticalMsg)
// Declared for existing logging rules; reserved for synchronous speech.
Q_LOGGING_CATEGORY(syncCategory, "SpeechFeedback.sync", QtCriticalMsg)

namespace detail {

using libspeech::detail::Speech;
using libtranslation::Sid::EmbosserCore;
using libtranslation::Sid::EmbosserError;
using libtranslation::Sid::EmbosserMenu;

SpeechFeedback::SpeechFeedback(QObject* parent)
    : QObject(parent), m_speech(libvantre::Singleton<Speech>::instance())
{
    const auto onConnected = [this] {
        qCDebug(speechCategory) << "Connected to speech-daemon.";
        Q_EMIT connected();
    };
    const auto onDisconnected = [] { qCDebug(speechCategory) << "Disconnected from speech-daemon."; };
    connect(m_speech, &Speech::connected, m_speech, onConnected, Qt::DirectConnection);
    connect(m_speech, &Speech::disconnected, m_speech, onDisconnected, Qt::DirectConnection);
    connect(this, &SpeechFeedback::speakAsync, m_speech, &Speech::speakFromId, Qt::QueuedConnection);
    connect(this, &SpeechFeedback::cancelAsync, m_speech, &Speech::cancelAll, Qt::QueuedConnection);
    connect(qApp, &QCoreApplication::aboutToQuit, m_speech, &Speech::cancelAll);
}

void SpeechFeedback::speakFromId(EmbosserCore id, const QStringList& arguments)
{
    speak(id, vocabulary::coreSentences, arguments);
}

void SpeechFeedback::speakFromId(EmbosserError id, const QStringList& arguments)
{
    speak(id, vocabulary::errorSentences, arguments);
}

void SpeechFeedback::speakFromId(EmbosserMenu id, const QStringList& arguments)
{
    speak(id, vocabulary::menuSentences, arguments);
}

void SpeechFeedback::cancelAll()
{
    qCDebug(speakCategory) << "Cancelling all speech-requests.";
    Q_EMIT cancelAsync();
}

template <typename File>
void SpeechFeedback::speak(File sentence, int serviceId, const QStringList& arguments)
{
    const int sentenceId = static_cast<int>(sentence);
    QVariantMap request{{vocabulary::speechServiceIdKey, serviceId},
                        {vocabulary::speechSentenceIdKey, sentenceId}};
    if (!arguments.isEmpty()) {
        request.insert(vocabulary::speechArgumentsKey, arguments);
    }
    qCDebug(speakCategory).nospace() << "SpeechFeedback::speakFromId("
                                     << QMetaEnum::fromType<File>().valueToKey(sentenceId) << ")";
    Q_EMIT speakAsync(request);
}

} // namespace detail
