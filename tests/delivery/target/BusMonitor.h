// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QVariantMap>

struct sd_bus;
struct sd_bus_message;
class QSocketNotifier;

/// Monitors the system bus: announcements, requests to the speech daemon and answers, in the order in which
/// the bus forwards them. Requires root.
class BusMonitor : public QObject
{
    Q_OBJECT

public:
    explicit BusMonitor(QObject* parent = nullptr);
    ~BusMonitor() override;

    /// False if the bus does not allow monitoring.
    bool start();
    /// The unique name of the client whose answers are reported.
    void setClient(const QString& client) { m_client = client; }

Q_SIGNALS:
    void announced(const QVariantMap& notification);
    void spoken(const QVariantMap& request);
    void speechCancelled();
    void answered(const QVariantMap& response);
    void refused(const QString& error);

private:
    void read();
    void report(sd_bus_message* message);
    void reportAnswer(sd_bus_message* message);

    sd_bus* m_bus = nullptr;
    QSocketNotifier* m_notifier = nullptr;
    QString m_client;
};
