// SPDX-License-Identifier: MIT
// The common part of the references: the input device and the bus name.
#pragma once

#define INPUT_DEVICE "/dev/input/event0"
#define SERVICE KEYBOARD_HANDLER_BUS_PREFIX ".KeyboardHandler"
