// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/session/Session.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QtTest>

#include <memory>

/// The base of tests that work with a session: a fresh one for each test function, and what it reported.
class SessionTest : public QObject
{
    Q_OBJECT

protected:
    /// Makes the session with `options`, once; it is not started.
    Session& session();
    /// Starts the session and waits until it is ready.
    bool launch();
    /// Waits for it; false when the device ends instead.
    bool awaitStatus(Session::Status status);

    /// Takes the statements, separated by ";", and returns the first fault.
    QString take(const QString& statements, int client = 0);

    /// All entries so far, and those of one type, as the page reads them.
    const QVector<QJsonObject>& entries() const { return m_entries; }
    QVector<QJsonObject> entries(const QString& type) const;
    /// One member of each entry of a type, as text.
    QStringList members(const QString& type, const QString& name) const;
    /// The keys that were written, as "device KEY value".
    QStringList keys() const;
    void forgetEntries() { m_entries.clear(); }

    /// Waits for an entry of this type whose member has this text; false when the device ends without it.
    bool awaitEntry(const QString& type, const QString& name, const QString& text);

    /// Taps Menu after `ms`, as one more client, and waits for it: what was to be done before that is done
    /// then.
    bool tapsMenuAfter(int ms);

    /// Kills the daemon and waits until the session has seen it.
    bool crash();

    /// Set before the session is used.
    DeviceOptions options;

private Q_SLOTS:
    void cleanup();

private:
    bool hasEnded() { return session().status() == Session::Status::Ended; }

    std::unique_ptr<Session> m_session;
    QVector<QJsonObject> m_entries;
};
