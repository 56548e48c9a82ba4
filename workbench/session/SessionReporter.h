// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/session/RefusalFinder.h"
#include "workbench/session/SessionEntry.h"

#include <QDBusError>
#include <QObject>

class SimulatedDevice;

/// Reports what happens at a simulated device as the events of a session and as the observations that a key
/// script can expect.
class SessionReporter : public QObject
{
    Q_OBJECT

public:
    /// `rows` are those of the device's key lists.
    SessionReporter(SimulatedDevice& device, const QString& state, const QVector<KeyRow>& rows,
                    QObject* parent = nullptr);

    /// `step` is about to be taken; its keys and records report themselves.
    void noteStep(const ScriptStep& step);

Q_SIGNALS:
    void happened(const SessionEvent& event);
    void observed(const QString& text);

private:
    void onWritten(int keyboard, const RawRecord& record);
    void onAnnounced(const QVariantMap& notification);
    void onSpoken(const QVariantMap& request);
    void onAnswered(const QVariantMap& response);
    void onFailed(const QDBusError& error);
    void onLogLine(const QString& line);

    QString m_state;
    RefusalFinder m_refusals;
};
