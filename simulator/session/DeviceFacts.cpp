// SPDX-License-Identifier: MIT
#include "simulator/session/DeviceFacts.h"

#include "simulator/script/KeyValue.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <QJsonArray>

#include <algorithm>

namespace {

QString textOf(const QJsonObject& entry, const char* member)
{
    return entry.value(QLatin1String(member)).toString();
}

/// The end of a test is announced as a single Ok. While a test runs, no other single key is announced outside
/// Idle, and in Idle Ok goes to the user menu.
bool endsTest(const QJsonObject& entry)
{
    return textOf(entry, "action") == ls::KeyboardActionId::SingleKey &&
           entry.value(QLatin1String("keys")).toArray() == QJsonArray({ls::KeyId::Ok}) &&
           textOf(entry, "receiver") != ls::ServiceId::UserMenu;
}

} // namespace

void DeviceFacts::note(const QJsonObject& entry)
{
    const QString type = textOf(entry, "type");
    if (type == QLatin1String("device")) {
        *this = DeviceFacts();
    } else if (type == QLatin1String("key")) {
        noteKey(entry);
    } else if (type == QLatin1String("command")) {
        m_open.enqueue(textOf(entry, "text").section(' ', 0, 0) == ls::KeyboardHandlerCmdId::StartTestMode);
    } else if (type == QLatin1String("answer")) {
        noteAnswer(entry);
    } else if (type == QLatin1String("announcement") && endsTest(entry)) {
        m_isTesting = false;
    }
}

QJsonObject DeviceFacts::toJson() const
{
    QList<QPair<int, QString>> keys = m_held.values();
    std::sort(keys.begin(), keys.end());
    QJsonArray held;
    for (const auto& [device, key] : qAsConst(keys)) {
        held.append(QJsonObject{{QStringLiteral("device"), device}, {QStringLiteral("key"), key}});
    }
    return {{QStringLiteral("held"), held}, {QStringLiteral("testing"), m_isTesting}};
}

void DeviceFacts::noteKey(const QJsonObject& entry)
{
    const QPair<int, QString> key(entry.value(QLatin1String("device")).toInt(), textOf(entry, "key"));
    if (entry.value(QLatin1String("value")).toInt() == KeyValue::released) {
        m_held.remove(key);
    } else {
        m_held.insert(key);
    }
}

void DeviceFacts::noteAnswer(const QJsonObject& entry)
{
    const bool startsTest = !m_open.isEmpty() && m_open.dequeue();
    const QJsonObject response = entry.value(QLatin1String("response")).toObject();
    if (startsTest && response.value(ls::resultIdKey).toString() == ls::ResultId::Success) {
        m_isTesting = true;
    }
}
