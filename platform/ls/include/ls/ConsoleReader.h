// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

namespace ls {

/// Reads standard input by lines without ever blocking the event loop.
///
/// A line is reported when its line end (LF or CR LF) has arrived, however its bytes were split. A line of
/// more than 64 KiB, not counting its line end, is dropped with one critical log line. End of input and read
/// errors disable the reader for good: an unfinished last line is dropped, and an empty standard input costs
/// no processor time. Standard input must be open; otherwise descriptor 0 may be any file that the process
/// opens. A receiver of a line must neither delete the reader nor run an event loop.
class ConsoleReader : public QObject
{
    Q_OBJECT

public:
    explicit ConsoleReader(QObject* parent = nullptr);

Q_SIGNALS:
    /// One line without its line end; invalid UTF-8 arrives as replacement characters.
    void textReceived(const QString& line);

private Q_SLOTS:
    void readInput();

private:
    void take(const QByteArray& chunk);
    void append(const QByteArray& piece);
    void finishLine();

    QSocketNotifier m_notifier;
    QByteArray m_line;
    bool m_isOverlong = false;
};

} // namespace ls
