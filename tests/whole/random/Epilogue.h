// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

/// The end of every random script: releases all keys, taps a key to end pending gestures, waits for a long
/// time, and taps Up.
namespace Epilogue {

/// `script` with the epilogue appended.
KeyScript appendedTo(const KeyScript& script);

/// The times of an epilogue: the start of the wait, and the last press and release.
std::chrono::milliseconds quietBegin(const KeyScript& script);
std::chrono::milliseconds lastPress(const KeyScript& script);
std::chrono::milliseconds lastRelease(const KeyScript& script);

} // namespace Epilogue
