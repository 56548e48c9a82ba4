// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/session/Session.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QtTest>

#include <memory>

/// The base class of tests with a session: a new session for each test function and its entries.
class SessionTest : public QObject
{
    Q_OBJECT

protected:
    /// The session; the first call creates it with `options`, without starting it.
    Session& session();
    /// Starts the session and waits until it is ready.
    bool launch();
    /// Waits for `status`; false if the device ends instead.
    bool awaitStatus(Session::Status status);

    /// Executes the statements, separated by ";", and returns the first fault.
    QString execute(const QString& statements, int client = 0);

    /// All entries so far, or those of one type, in the JSON form of the page.
    const QVector<QJsonObject>& entries() const { return m_entries; }
    QVector<QJsonObject> entries(const QString& type) const;
    /// One member of each entry of a type, as text.
    QStringList members(const QString& type, const QString& name) const;
    /// The written keys as "DEVICE KEY VALUE".
    QStringList keys() const;
    void forgetEntries() { m_entries.clear(); }

    /// Waits for an entry of this type and member value; false if the device ends first.
    bool awaitEntry(const QString& type, const QString& name, const QString& text);

    /// Taps Menu after `ms`, as an additional client, and waits for the tap. Earlier steps are then finished.
    bool tapMenuAfter(int ms);

    /// Kills the daemon and waits until the session reports its end.
    bool crash();

    /// Must be set before the first call of `session`.
    DeviceOptions options;

private Q_SLOTS:
    void cleanup();

private:
    bool hasEnded() { return session().status() == Session::Status::Ended; }

    std::unique_ptr<Session> m_session;
    QVector<QJsonObject> m_entries;
};
