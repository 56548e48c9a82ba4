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

/// The daemon's unchanged classes on a virtual clock, for many thousands of runs in a second: input devices,
/// standard input and key lists are FIFOs, a pipe and files of the private root that the tests run in; the
/// speech daemon is a fake, and the state handler's proxy emits what `notify` is given.
class FuzzedDaemon : public QObject
{
    Q_OBJECT

public:
    /// Makes the application object, the clock and the files. One in a process.
    FuzzedDaemon();
    ~FuzzedDaemon() override;

    /// All three key lists are this file.
    void setKeyLists(const QByteArray& content);
    /// Rows of every kind that makes a difference.
    void setRichKeyLists();
    /// Builds the daemon's objects, in the state "Undefined".
    void start();
    /// Destroys them. To be called before another start.
    void stop();

    static QByteArray recordOf(quint16 type, quint16 code, qint32 value);

    /// The following ones return when the daemon has done what it does at once.
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
    /// Until every time that can be up in a session is up. No timer may be left then but a long press whose
    /// row has a longer time.
    void waitForQuiet();

    KeyboardHandler& handler() { return *m_handler; }
    VirtualTimeDispatcher& clock() { return m_clock; }
    /// The announcements since the start or the last call.
    QVector<QVariantMap> takeAnnouncements() { return std::exchange(m_announcements, {}); }
    /// How many sentences were spoken since then.
    int takeSentences() { return std::exchange(m_sentences, 0); }

    /// Ends the process unless the daemon is as it should be when everything is over: no timer runs, a lone
    /// key in Idle is spoken and announced, once and to the service for it, and nothing else comes. Leaves
    /// the daemon in Idle with nothing remembered but the last key.
    void requireThatItWorks();

private:
    void forgetEverything();
    void requireLoneKey();

    VirtualTimeDispatcher& m_clock;
    std::unique_ptr<QObject>
        m_root; // stands for the application object as the parent of the daemon's objects
    KeyboardHandler* m_handler = nullptr;
    std::array<int, 2> m_devices;
    int m_input = -1;
    int m_lists = -1;
    QVector<QVariantMap> m_announcements;
    int m_sentences = 0;
};
