// SPDX-License-Identifier: MIT
#pragma once

#include "model/KeyModel.h"
#include "model/Playback.h"
#include "model/RowProofs.h"

#include <QStringList>

#include <chrono>
#include <vector>

namespace checker {

/// The actions that the daemon announces without a row: SingleKey and FactoryReset.
namespace BuiltInActions {

/// Keys that cause the action in the same way: each alone, tapped or, for FactoryReset, held.
struct Group
{
    QStringList keys;
    /// From the last movement to the announcement.
    std::chrono::milliseconds delay{0};
    QStringList receivers;
    /// The first of the keys, until the announcement.
    model::Playback playback;
};

QStringList all();

/// The keys that cause `action` alone in `state`; empty if none does.
std::vector<Group> groups(const QString& action, const model::KeyModel& keyModel, model::State state);

/// Searches for any run in which keys cause `action` in `state`.
model::RowVerdict search(const QString& action, const model::KeyModel& keyModel, model::State state);

} // namespace BuiltInActions

} // namespace checker
