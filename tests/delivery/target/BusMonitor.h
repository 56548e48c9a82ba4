// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QVariantMap>

struct sd_bus;
struct sd_bus_message;
class QSocketNotifier;

/// Watches the system bus. It sees everything in the order in which the bus passes it on, whoever it is for:
/// announcements, requests to the speech daemon, and answers. Needs to be root.
class BusMonitor : public QObject
{
    Q_OBJECT

public:
    explicit BusMonitor(QObject* parent = nullptr);
    ~BusMonitor() override;

    /// False when the bus does not let it watch.
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
