// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/session/DeviceSession.h"

/// The parts of a session's description that are the same for each session.
namespace SessionDescription {

/// What there is: models, states, keys, services, commands and key actions, the times of the keys' rules,
/// and the program's version.
QJsonObject ofVocabulary();
QString nameOf(DeviceSession::Status status);
/// A sentence on how the daemon ended: its exit status, or 128 and the number of the signal that ended it.
QString reasonOfEnd(int status);

} // namespace SessionDescription
