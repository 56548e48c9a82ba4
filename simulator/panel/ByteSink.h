// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QObject>
#include <QQueue>
#include <QSocketNotifier>

#include <memory>

/// Writes to a FIFO that may be full for a while: what does not fit is kept, and written in its order as
/// the reader makes room. The bytes of one call are never torn apart unless they are more than PIPE_BUF.
class ByteSink : public QObject
{
    Q_OBJECT

public:
    explicit ByteSink(QObject* parent = nullptr);
    ~ByteSink() override;

    /// Opens the FIFO at `path`, with or without a reader at its other end. False when it is not there or
    /// cannot be opened; what is written is dropped then.
    bool open(const QString& path);

    void write(const QByteArray& bytes);

    /// How many bytes wait for room.
    int pending() const;

private:
    void writePending();

    int m_descriptor = -1;
    QQueue<QByteArray> m_pending;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
