// SPDX-License-Identifier: MIT
#pragma once

#include "control/input/InputNodes.h"
#include "control/record/DaemonSignals.h"
#include "control/record/Recording.h"

namespace control {

/// Records the keys, the changes of the state and the announcements of the device. Passive: it reads the
/// input nodes next to the daemon and sends it nothing.
class Recorder : public QObject
{
    Q_OBJECT

public:
    explicit Recorder(const QString& prefix, QObject* parent = nullptr);

    /// Opens the input nodes and subscribes. On a fault, nothing is recorded.
    BusFault begin();
    /// Keeps only what is younger than `age`, to a minute. Without a call, everything is kept until the
    /// recording is full.
    void keepOnly(std::chrono::seconds age);
    /// What was recorded so far, as a key script.
    QByteArray script();

Q_SIGNALS:
    /// The recording has reached its limit. From now on, the oldest is dropped.
    void filled();
    void busLost();

private:
    void add(const Happening& happening);
    void forgetOld();
    void addGap(const InputGap& gap);
    void addKeysDown(int keyboard);
    void readLists();
    QStringList remarks() const;

    Bus m_bus;
    InputNodes m_nodes;
    DaemonSignals m_signals;
    Recording m_recording;
    std::chrono::seconds m_maxAge{0};
    QTimer m_ageTimer;
    QMap<QString, QByteArray> m_lists;
    QStringList m_listRemarks;
};

} // namespace control
