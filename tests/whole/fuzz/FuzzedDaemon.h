// SPDX-License-Identifier: MIT
#pragma once

#include "tests/virtual/VirtualTimeDispatcher.h"

#include <QByteArray>
#include <QObject>
#include <QVariantMap>
#include <QVector>

#include <array>
#include <memory>

#include <linux/input.h>

class KeyboardHandler;

/// Runs the daemon's unchanged classes on a virtual clock, fast enough for many thousands of runs a second.
/// Input devices, standard input and key lists are FIFOs, a pipe and files in the test's private root. The
/// speech daemon is a fake, and the state handler's proxy emits the notifications passed to `notify`.
class FuzzedDaemon : public QObject
{
    Q_OBJECT

public:
    /// Creates the application object, the clock and the files. Only one may exist in a process.
    FuzzedDaemon();
    ~FuzzedDaemon() override;

    /// Sets the content of all three key lists.
    void setKeyLists(const QByteArray& content);
    /// Sets key lists with rows of every relevant kind.
    void setRichKeyLists();
    /// Creates the daemon's objects, in the state "Undefined".
    void start();
    /// Destroys them. Must be called before another start.
    void stop();

    static QByteArray recordOf(quint16 type, quint16 code, qint32 value);

    /// The following functions return when the daemon has finished its immediate reaction.
    void write(int device, const QByteArray& bytes);
    void record(int device, quint16 type, quint16 code, qint32 value);
    void press(const QString& key);
    void release(const QString& key);
    void type(const QByteArray& bytes);
    void setState(const QString& state);
    void notify(const QVariantMap& notification);
    QVariantMap process(const QVariantMap& command);
    void settle() { m_clock.settle(); }
    void wait(std::chrono::milliseconds duration) { m_clock.advance(duration); }
    /// Waits until all timers have expired, except that of a long press with a longer time in its row.
    void waitForQuiet();

    KeyboardHandler& handler() { return *m_handler; }
    VirtualTimeDispatcher& clock() { return m_clock; }
    /// The announcements since the start or the last call.
    QVector<QVariantMap> takeAnnouncements() { return std::exchange(m_announcements, {}); }
    /// Likewise, the number of spoken sentences.
    int takeSentences() { return std::exchange(m_sentences, 0); }

    /// Aborts unless the daemon is idle and works: no timer runs; a lone key in Idle is spoken once and
    /// announced once, to its service; and nothing else happens. Leaves the daemon in Idle, with only the
    /// last key remembered.
    void requireThatItWorks();

private:
    void resetKeys();
    void requireLoneKey();

    VirtualTimeDispatcher& m_clock;
    std::unique_ptr<QObject> m_root; // the parent of the daemon's objects, in place of the application object
    KeyboardHandler* m_handler = nullptr;
    std::array<int, 2> m_devices;
    int m_input = -1;
    int m_lists = -1;
    QVector<QVariantMap> m_announcements;
    int m_sentences = 0;
};
