// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

namespace ls {

/// Reads standard input by lines without ever blocking the event loop.
///
/// A line is reported when its line end (LF or CR LF) has come, however its bytes were split. A line
/// of more than 64 KiB, its line end not counted, is dropped with one critical log line. The end of input
/// and a read error end the watch for good: an unfinished last line is dropped, and a closed or empty
/// standard input costs no processor time. A receiver of a line may delete the reader.
class ConsoleReader : public QObject
{
    Q_OBJECT

public:
    explicit ConsoleReader(QObject* parent = nullptr);

Q_SIGNALS:
    /// One line without its line end; bytes that are no UTF-8 arrive as replacement characters.
    void textReceived(const QString& line);

private Q_SLOTS:
    void readInput();

private:
    void deliverLines();
    int nextLineEnd();
    void finishLine(const QByteArray& line);
    void dropOverlongLine();
    static void reportOverlongLine();

    QSocketNotifier m_notifier;
    QByteArray m_buffer;
    int m_searched = 0; // so many bytes of the buffer hold no line end
    bool m_overlong = false;
};

} // namespace ls
