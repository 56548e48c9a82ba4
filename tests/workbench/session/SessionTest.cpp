// SPDX-License-Identifier: MIT
#include "tests/workbench/session/SessionTest.h"

#include "tests/support/Waiting.h"
#include "workbench/web/SessionJson.h"

#include <QJsonDocument>

#include <algorithm>

#include <signal.h>

namespace {

QString text(const QJsonValue& value)
{
    return value.toVariant().toString();
}

} // namespace

Session& SessionTest::session()
{
    if (!m_session) {
        m_session = std::make_unique<Session>(options);
        connect(m_session.get(), &Session::added, this,
                [this](const SessionEntry& entry) { m_entries.append(SessionJson::entry(entry)); });
    }
    return *m_session;
}

bool SessionTest::launch()
{
    session().start();
    return awaitStatus(Session::Status::Ready);
}

bool SessionTest::awaitStatus(Session::Status status)
{
    WAIT_FOR(session().status() == status || hasEnded());
    return session().status() == status;
}

QString SessionTest::execute(const QString& statements, int client)
{
    const QVector<ScriptFault> faults = session().execute(QString(statements).replace(';', '\n'), client);
    return faults.isEmpty() ? QString() : faults.first().text;
}

QVector<QJsonObject> SessionTest::entries(const QString& type) const
{
    QVector<QJsonObject> found;
    std::copy_if(m_entries.begin(), m_entries.end(), std::back_inserter(found),
                 [&](const QJsonObject& entry) { return text(entry.value("type")) == type; });
    return found;
}

QStringList SessionTest::members(const QString& type, const QString& name) const
{
    QStringList texts;
    const QVector<QJsonObject> found = entries(type);
    for (const QJsonObject& entry : found) {
        texts << text(entry.value(name));
    }
    return texts;
}

QStringList SessionTest::keys() const
{
    QStringList texts;
    const QVector<QJsonObject> found = entries(QStringLiteral("key"));
    for (const QJsonObject& entry : found) {
        texts << QStringLiteral("%1 %2 %3")
                     .arg(text(entry.value("device")), text(entry.value("key")), text(entry.value("value")));
    }
    return texts;
}

bool SessionTest::awaitEntry(const QString& type, const QString& name, const QString& text)
{
    WAIT_FOR(members(type, name).contains(text) || hasEnded());
    return members(type, name).contains(text);
}

bool SessionTest::tapMenuAfter(int ms)
{
    constexpr int additionalClient = 1000;
    const bool isAccepted = execute(QStringLiteral("wait %1; tap Menu").arg(ms), additionalClient).isEmpty();
    WAIT_FOR(keys().contains(QStringLiteral("0 Menu 0")) || !isAccepted || hasEnded());
    return isAccepted && !hasEnded();
}

bool SessionTest::crash()
{
    const auto daemon = pid_t(session().daemonProcess());
    return daemon != 0 && kill(daemon, SIGKILL) == 0 && awaitStatus(Session::Status::Ended);
}

void SessionTest::cleanup()
{
    if (QTest::currentTestFailed()) {
        const int first = std::max(0, m_entries.size() - 50);
        for (const QJsonObject& entry : m_entries.mid(first)) {
            qInfo("%s", QJsonDocument(entry).toJson(QJsonDocument::Compact).constData());
        }
    }
    m_session.reset();
    m_entries.clear();
    options = DeviceOptions();
}
