// SPDX-License-Identifier: MIT
#pragma once

#include <QMutex>
#include <QString>
#include <QStringList>
#include <QVector>

/// One line of the process's log.
struct LogLine
{
    QtMsgType type;
    QString category;
    QString text;
    bool hasSource = false; ///< whether it has a file, line or function
};

bool operator==(const LogLine& left, const LogLine& right);

/// Captures the log of all threads of the process during its lifetime, instead of printing it. Only one may
/// exist at a time.
class LogRecorder
{
public:
    LogRecorder();
    ~LogRecorder();
    LogRecorder(const LogRecorder&) = delete;
    LogRecorder& operator=(const LogRecorder&) = delete;

    /// All lines since construction or the last `take()`.
    QVector<LogLine> lines() const;
    /// Returns and clears these lines.
    QVector<LogLine> take();
    /// The texts of the lines of one type, in order.
    QStringList texts(QtMsgType type) const;

private:
    static void record(QtMsgType type, const QMessageLogContext& context, const QString& text);

    static inline LogRecorder* s_current = nullptr;

    mutable QMutex m_mutex;
    QVector<LogLine> m_lines;
    QtMessageHandler m_previous;
};
