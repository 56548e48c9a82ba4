// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

namespace control {

/// Turns Ctrl-C and the end of the service or of the terminal into a Qt signal, so that what was begun is
/// completed.
class StopSignals : public QObject
{
    Q_OBJECT

public:
    /// Must be created before the process has another thread, because it blocks the signals.
    explicit StopSignals(QObject* parent = nullptr);
    ~StopSignals() override;

    /// From now on, the signals end the process. Forgets those that came before.
    void release();

Q_SIGNALS:
    void received();

private:
    bool take();

    int m_fd = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace control
