// SPDX-License-Identifier: MIT
#include "simulator/session/SessionDescription.h"

#include "keys/KeyRules.h"
#include "simulator/script/Autorepeat.h"
#include "simulator/script/ScriptWords.h"

#include <algorithm>

#include <string.h>

namespace {

constexpr int firstSignalStatus = 128;

/// The identifiers of a family in the order of their ordinals.
QStringList inOrder(const QMap<QString, int>& family)
{
    QStringList names = family.keys();
    std::sort(names.begin(), names.end(), [&](const QString& one, const QString& other) {
        return family.value(one) < family.value(other);
    });
    return names;
}

QJsonArray without(QStringList names, const QString& name)
{
    names.removeOne(name);
    return QJsonArray::fromStringList(names);
}

QJsonObject timesOfKeys()
{
    return {{QStringLiteral("singleKeyMs"), qint64(KeyRules::singleKeyInterval.count())},
            {QStringLiteral("factoryResetMs"), qint64(KeyRules::factoryResetHold.count())},
            {QStringLiteral("repeatDelayMs"), qint64(Autorepeat::delay.count())}};
}

} // namespace

namespace SessionDescription {

QJsonObject ofVocabulary()
{
    return {{QStringLiteral("models"), QJsonArray::fromStringList(ScriptWords::models())},
            {QStringLiteral("states"), QJsonArray::fromStringList(inOrder(ls::StateId::meta))},
            {QStringLiteral("keys"), without(inOrder(ls::KeyId::meta), ls::KeyId::Unknown)},
            {QStringLiteral("services"), QJsonArray::fromStringList(inOrder(ls::ServiceId::meta))},
            {QStringLiteral("commands"),
             without(inOrder(ls::KeyboardHandlerCmdId::meta), ls::KeyboardHandlerCmdId::GetKeyList)},
            {QStringLiteral("actions"), QJsonArray::fromStringList(inOrder(ls::KeyActionId::meta))},
            {QStringLiteral("times"), timesOfKeys()},
            {QStringLiteral("version"), QStringLiteral(KEYBOARD_HANDLER_VERSION)}};
}

QString nameOf(DeviceSession::Status status)
{
    switch (status) {
    case DeviceSession::Status::Starting:
        return QStringLiteral("starting");
    case DeviceSession::Status::Ready:
        return QStringLiteral("ready");
    case DeviceSession::Status::Ended:
        return QStringLiteral("ended");
    }
    return {};
}

QString reasonOfEnd(int status)
{
    const char* name = sigabbrev_np(status - firstSignalStatus);
    const char* description = sigdescr_np(status - firstSignalStatus);
    if (!name || !description) {
        return QStringLiteral("The daemon has ended with status %1.").arg(status);
    }
    return QStringLiteral("The daemon was ended by the signal SIG%1 (%2).")
        .arg(QLatin1String(name), QString::fromLatin1(description).toLower());
}

} // namespace SessionDescription
