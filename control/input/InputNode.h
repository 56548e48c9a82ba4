// SPDX-License-Identifier: MIT
#pragma once

#include "control/input/InputRecord.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVector>

#include <memory>
#include <optional>

class QSocketNotifier;
struct input_event;

namespace control {

/// Reads an input node while the daemon reads it too: for reading only and without a grab, so that the daemon
/// misses nothing. The kernel stamps the records with the monotonic clock; records of a file that is not an
/// input device, such as a FIFO, get the time at which they are read.
class InputNode : public QObject
{
    Q_OBJECT

public:
    InputNode(int keyboard, const QString& path, QObject* parent = nullptr);
    ~InputNode() override;

    /// Opens the node and watches it until destruction, also when it vanishes and returns. Returns 0, or the
    /// number of the system's error; then nothing is watched and `open` may be called again.
    int open();
    bool isOpen() const { return m_fd != -1; }
    QString path() const { return m_path; }
    /// The codes of the keys that are down now; nothing if the node is closed or not an input device.
    std::optional<QVector<quint16>> keysDown() const;

Q_SIGNALS:
    /// Emitted in the order of the node, also for records that are not of keys.
    void recorded(const InputRecord& record);
    void gapFound(const InputGap& gap);

private:
    void readSome();
    bool takeBytes();
    void take(const input_event& event);
    void reportGap(InputGap::Reason reason, std::chrono::microseconds at);
    void close();
    void loseNode();
    void lookForNode();

    int m_keyboard;
    QString m_path;
    int m_fd = -1;
    bool m_isStamped = false;
    // After dropped records, up to the end of the report.
    bool m_isSkipping = false;
    // The beginning of a record whose rest has not been read.
    QByteArray m_partial;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_search;
};

} // namespace control
