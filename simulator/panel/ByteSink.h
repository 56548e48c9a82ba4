// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QObject>
#include <QQueue>
#include <QSocketNotifier>

#include <memory>

/// Writes to a FIFO. Bytes that do not fit are queued and written in order as the reader makes room. Each
/// `write` of up to PIPE_BUF bytes is atomic.
class ByteSink : public QObject
{
    Q_OBJECT

public:
    explicit ByteSink(QObject* parent = nullptr);
    ~ByteSink() override;

    /// Opens the FIFO at `path`, which need not have a reader. On failure, returns false; later writes are
    /// dropped.
    bool open(const QString& path);

    void write(const QByteArray& bytes);

    /// The number of queued bytes.
    int pending() const;

private:
    void writePending();

    int m_descriptor = -1;
    QQueue<QByteArray> m_pending;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
