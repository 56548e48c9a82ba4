// SPDX-License-Identifier: MIT
#pragma once

#include <ls/EnumKey.h>
#include <ls/KeyEvent.h>

#include <QObject>
#include <QString>

#include <functional>

class QSocketNotifier;

/// One input device of the front panel. Emits every record read from it, and simulated key events in the same
/// way. Owned by the router.
class Keyboard : public QObject
{
    Q_OBJECT

public:
    using Filter = std::function<bool(const ls::KeyEvent&)>;

    explicit Keyboard(QObject* parent = nullptr);
    explicit Keyboard(const QString& device, QObject* parent = nullptr);
    ~Keyboard() override;

    /// The identifier of the event's key; "Unknown" if the event is not a key event, "Undefined" if the key
    /// has no identifier.
    static ls::EnumKey keyOf(const ls::KeyEvent& event);

    bool isOpen() const;
    /// The last open, read or write error in readable form; empty before the first error.
    QString errorString() const { return m_errorString; }
    /// The event stored last; an empty event before the first.
    ls::KeyEvent lastEvent() const { return m_lastEvent; }
    Filter filter() const { return m_filter; }

    /// Sets the device node for the next `open()`.
    void setDevice(const QString& device);
    /// Opens the device node and watches it until destruction. Returns false after a log line if the node is
    /// not set or cannot be opened; may then be called again. Must not be called while open.
    bool open();
    /// Writes the record of `event` to the device. Returns false after a log line unless the device
    /// reports the expected count, which is not the size of a record.
    bool write(const ls::KeyEvent& event);
    /// Emits a key event as if the device had sent it. Returns false after a log line, with nothing
    /// emitted, for an action without an input event value; unknown keys and actions are emitted with
    /// fallback numbers.
    bool simulateKey(const ls::EnumKey& key, const ls::EnumKey& action);
    void setLastEvent(const ls::KeyEvent& event);
    /// Emits only the records for which `filter` returns true; with an empty filter, all records.
    void setFilter(const Filter& filter);

Q_SIGNALS:
    void event(ls::KeyEvent event);

private Q_SLOTS:
    void readEvents(int fd);

private:
    QString describe(const char* problem, int error) const;

    int m_fd = -1;
    QString m_errorString;
    QString m_device;
    ls::KeyEvent m_lastEvent;
    QSocketNotifier* m_notifier = nullptr;
    Filter m_filter;
};
