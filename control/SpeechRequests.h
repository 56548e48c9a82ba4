// SPDX-License-Identifier: MIT
#pragma once

#include "control/doctor/BusSocket.h"

#include <QJsonObject>
#include <QObject>
#include <QString>

#include <functional>

struct sd_bus_message;

class QSocketNotifier;

namespace control {

/// Watches the calls of the daemon to the speech daemon. That takes the right to monitor the bus, and a
/// connection that sends nothing else.
class SpeechRequests : public QObject
{
    Q_OBJECT

public:
    /// `words` are for people, `members` for programs.
    using Report = std::function<void(const QString& words, const QJsonObject& members)>;

    explicit SpeechRequests(Report report);
    ~SpeechRequests() override;

    /// Begins to watch the daemon with this prefix. Returns a sentence why the requests cannot be seen; empty
    /// if they can.
    QString open(const QString& prefix);
    /// Ends that.
    void close();

private:
    void readSome();
    bool readOne();
    void take(sd_bus_message* message);

    Report m_report;
    BusSocket::Client m_bus;
    std::unique_ptr<QSocketNotifier> m_notifier;
    bool m_isPending = false;
};

} // namespace control
