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

/// The daemon's one way to the speech daemon. Reached through `libvantre::Singleton`; used by the router and
/// the modifier recogniser. Requests leave from the event loop, in the order in which they were made.
class SpeechFeedback : public QObject
{
    Q_OBJECT

public:
    explicit SpeechFeedback(QObject* parent);

    /// Asks for a sentence of the translation file that its type names. Never blocks and never fails; any
    /// number is passed on, also one that the enumeration does not have.
    void speakFromId(libtranslation::Sid::EmbosserCore id, const QStringList& arguments = QStringList());
    void speakFromId(libtranslation::Sid::EmbosserError id, const QStringList& arguments = QStringList());
    void speakFromId(libtranslation::Sid::EmbosserMenu id, const QStringList& arguments = QStringList());

    /// Asks to abandon the current and all pending sentences. Never blocks.
    void cancelAll();

Q_SIGNALS:
    /// The speech daemon is there, for the first time or again.
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
