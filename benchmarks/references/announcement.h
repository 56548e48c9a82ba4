// SPDX-License-Identifier: MIT
// What the references have in common: where they read keys and under which name they announce them.
#pragma once

#define INPUT_DEVICE "/dev/input/event0"
#define SERVICE KEYBOARD_HANDLER_BUS_PREFIX ".KeyboardHandler"
