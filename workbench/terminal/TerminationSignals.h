// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

/// Delivers SIGINT, SIGTERM and SIGHUP to the event loop, so that a program can clean up. Only one object may
/// exist.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignals(QObject* parent = nullptr);

Q_SIGNALS:
    void received(int number);

private:
    void read();

    std::unique_ptr<QSocketNotifier> m_notifier;
};
