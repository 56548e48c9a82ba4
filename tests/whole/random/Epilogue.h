// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

/// What is played behind every random script: the keys are let go, a key ends whatever is under way, nothing
/// is done for a long while, and then Up is tapped once more.
namespace Epilogue {

/// `script` with the epilogue behind its end.
KeyScript appendedTo(const KeyScript& script);

/// When the quiet time begins and when the last key is pressed in a script with an epilogue.
std::chrono::milliseconds quietBegin(const KeyScript& script);
std::chrono::milliseconds lastPress(const KeyScript& script);
std::chrono::milliseconds lastRelease(const KeyScript& script);

} // namespace Epilogue
