// SPDX-License-Identifier: MIT
#pragma once

#include <QVariantMap>

#include <functional>

/// A fake speech daemon, linked with a speech library that uses no bus.
namespace FakeSpeech {

/// Called with each request to speak.
void onSpeak(const std::function<void(const QVariantMap&)>& listener);
/// Called with each request to cancel.
void onCancel(const std::function<void()>& listener);

} // namespace FakeSpeech
