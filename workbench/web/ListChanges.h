// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>

struct DeviceOptions;

/// What the keys do with other key lists.
namespace ListChanges {

constexpr int maxDifferences = 200;

/// The document of `keyboard-handler-keys diff --format json` for the lists and the models of two devices,
/// with at most `maxDifferences` differences; `leftOut` counts the others. Takes up to seconds.
QJsonObject between(const DeviceOptions& before, const DeviceOptions& after);

} // namespace ListChanges
