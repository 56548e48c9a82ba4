// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QVariantMap>

namespace libspeech::detail {

/// Asynchronous client of the speech daemon on the system bus. It never blocks, expects no reply and
/// keeps nothing back: what is sent while the speech daemon is absent is gone.
class Speech : public QObject
{
    Q_OBJECT

public:
    explicit Speech(QObject* parent = nullptr);

public Q_SLOTS:
    /// Asks for a sentence: "serviceId" and "sentenceId" (integers), "arguments" (string list, optional).
    void speakFromId(const QVariantMap& request);
    /// Asks to abandon the current and all pending sentences.
    void cancelAll();

Q_SIGNALS:
    /// The speech daemon is on the bus: now that it appeared, or already when this object was made.
    void connected();
    /// The speech daemon left the bus.
    void disconnected();

private:
    void watchOwner();
    void queryOwner();
    void setOwner(const QString& owner);
    void send(const QString& member, const QVariantList& arguments);

    QString m_owner;
    bool m_ownerChangeSeen = false;
};

} // namespace libspeech::detail
