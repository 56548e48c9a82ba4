// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QVariantMap>

namespace libspeech::detail {

/// Asynchronous client of the speech daemon on the system bus. Never blocks, expects no reply and queues
/// nothing: requests are lost while the speech daemon is absent.
class Speech : public QObject
{
    Q_OBJECT

public:
    explicit Speech(QObject* parent = nullptr);

public Q_SLOTS:
    /// Speaks a sentence: "serviceId" and "sentenceId" (integers), "arguments" (string list, optional).
    void speakFromId(const QVariantMap& request);
    /// Cancels the current and all pending sentences.
    void cancelAll();

Q_SIGNALS:
    /// The speech daemon has appeared on the bus, or was there when this object was created.
    void connected();
    /// The speech daemon has left the bus.
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
