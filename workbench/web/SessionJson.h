// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/session/SessionEntry.h"

#include <QJsonObject>

class Session;

/// A session as the page reads it.
namespace SessionJson {

QJsonObject entry(const SessionEntry& entry);
/// What the session is now, the names that statements may use, and the times of the keys' rules.
QJsonObject description(const Session& session);

} // namespace SessionJson
