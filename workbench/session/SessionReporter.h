// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/session/RefusalFinder.h"
#include "workbench/session/SessionEntry.h"

#include <QDBusError>
#include <QElapsedTimer>
#include <QObject>

class SimulatedDevice;

/// Reports the activity of a simulated device both as events of a session and as observations of a key
/// script.
class SessionReporter : public QObject
{
    Q_OBJECT

public:
    /// `lists` are the device's key lists.
    SessionReporter(SimulatedDevice& device, const QString& state, const model::KeyLists& lists,
                    QObject* parent = nullptr);

    /// Reports a step that is about to be played. Keys and records are reported when the panel writes them.
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

    std::chrono::milliseconds now() const { return std::chrono::milliseconds(m_clock.elapsed()); }

    QElapsedTimer m_clock;
    QString m_state;
    RefusalFinder m_refusals;
};
