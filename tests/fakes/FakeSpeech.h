// SPDX-License-Identifier: MIT
#pragma once

#include <QVariantMap>

#include <functional>

/// The speech daemon as the daemon sees it through a speech library that has no bus behind it.
namespace FakeSpeech {

/// Called with each request to speak.
void onSpeak(const std::function<void(const QVariantMap&)>& listener);
/// Called with each request to cancel.
void onCancel(const std::function<void()>& listener);

} // namespace FakeSpeech
