// SPDX-License-Identifier: MIT
#pragma once

#include <translation/Sid.h>

#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace libspeech::detail {
class Speech;
}

namespace detail {

/// Sends all speech requests of the daemon. The router and the modifier recogniser access it through
/// `libvantre::Singleton`. The event loop sends the requests in the order of the calls.
class SpeechFeedback : public QObject
{
    Q_OBJECT

public:
    explicit SpeechFeedback(QObject* parent);

    /// Speaks a sentence of the translation file that the type of `id` names. Never blocks and never fails; a
    /// number that the enumeration lacks is sent as well.
    void speakFromId(libtranslation::Sid::EmbosserCore id, const QStringList& arguments = QStringList());
    void speakFromId(libtranslation::Sid::EmbosserError id, const QStringList& arguments = QStringList());
    void speakFromId(libtranslation::Sid::EmbosserMenu id, const QStringList& arguments = QStringList());

    /// Cancels the current and all pending sentences. Never blocks.
    void cancelAll();

Q_SIGNALS:
    /// The speech daemon has connected or reconnected.
    void connected();
    void cancelAsync();
    void speakAsync(const QVariantMap& request);

private:
    /// `File` is the enumeration of a translation file, `serviceId` the number of that file.
    template <typename File>
    void speak(File sentence, int serviceId, const QStringList& arguments);

    libspeech::detail::Speech* m_speech;
};

} // namespace detail
