// SPDX-License-Identifier: MIT
/// The identifier families that the services of the device share.
///
/// Each family is a namespace of identifiers whose text is their name. A family with a `meta` table also
/// pairs each identifier with its ordinal: the input key code of a key, the input event value of a key
/// action, the number of a command. Both are generated from the list of the family.
#pragma once

#include <ls/EnumKey.h>

#include <QMap>

#include <linux/input-event-codes.h>

#define LS_IDENTIFIER(name, ordinal) inline const EnumKey name = QStringLiteral(#name);
#define LS_META_ENTRY(name, ordinal) {QStringLiteral(#name), ordinal},
#define LS_FAMILY(list) list(LS_IDENTIFIER) inline const QMap<QString, int> meta{list(LS_META_ENTRY)};

// clang-format off
#define LS_KEY_IDS(ID) \
    ID(On, KEY_WAKEUP) ID(Off, KEY_SLEEP) ID(Feed, KEY_LINEFEED) ID(Help, KEY_HELP) \
    ID(Menu, KEY_MENU) ID(Back, KEY_BACK) ID(Right, KEY_RIGHT) ID(Up, KEY_UP) \
    ID(Down, KEY_DOWN) ID(Ok, KEY_OK) ID(Chs, KEY_KPPLUSMINUS) ID(One, KEY_1) \
    ID(Ten, KEY_0) ID(Function, KEY_FN) ID(FactoryReset, KEY_RESTART) ID(Unknown, KEY_UNKNOWN)

// The values up to 2 are those of the input events; the gestures above never come from a device.
#define LS_KEY_ACTION_IDS(ID) \
    ID(None, -1) ID(Released, 0) ID(Pressed, 1) ID(Repeated, 2) \
    ID(LongPress, 3) ID(ModifierCombination, 4) ID(Shortcut, 5)

#define LS_KEYBOARD_HANDLER_CMD_IDS(ID) \
    ID(GetModifierKeyList, 1) ID(GetShortcutKeyList, 2) ID(GetLongKeysTimeout, 3) ID(GetLastKey, 4) \
    ID(StartTestMode, 5) ID(GetTestResult, 6) ID(SimulateKey, 7) ID(SimulateModifier, 8) \
    ID(SimulateShortcut, 9) ID(GetKeyList, 10)

#define LS_SERVICE_IDS(ID) \
    ID(KeyboardHandler, 1) ID(StateHandler, 2) ID(ErrorHandler, 3) ID(PrintManager, 4) \
    ID(UpdateManager, 5) ID(UserMenu, 6) ID(WwwApi, 7) ID(ServiceTool, 8)

#define LS_STATE_IDS(ID) \
    ID(Startup, 1) ID(Idle, 2) ID(Print, 3) ID(PrintOff, 4) ID(Update, 5) ID(Error, 6)
// clang-format on

namespace ls {

/// Front-panel keys; the ordinal is the Linux input key code. `Unknown` means "no key".
namespace KeyId {
LS_FAMILY(LS_KEY_IDS)
}

/// Actions of a key; the ordinal is the input event value. `None` has no such value.
namespace KeyActionId {
LS_FAMILY(LS_KEY_ACTION_IDS)
}

/// Commands of the keyboard service. `GetKeyList` is known but not served.
namespace KeyboardHandlerCmdId {
LS_FAMILY(LS_KEYBOARD_HANDLER_CMD_IDS)
}

/// Services: senders of commands and receivers of key actions. `ServiceTool` is a technician's client.
namespace ServiceId {
LS_FAMILY(LS_SERVICE_IDS)
}

/// Operating states of the device.
namespace StateId {
LS_FAMILY(LS_STATE_IDS)
}

/// Key actions that no key list names.
namespace KeyboardActionId {
LS_IDENTIFIER(SingleKey, )
LS_IDENTIFIER(FactoryReset, )
} // namespace KeyboardActionId

namespace KeyboardHandlerNotifId {
LS_IDENTIFIER(KeyboardChange, )
}

namespace StateHandlerCmdId {
LS_IDENTIFIER(GetState, )
}

namespace StateHandlerNotifId {
LS_IDENTIFIER(StateChange, )
}

namespace ResultId {
LS_IDENTIFIER(Success, )
LS_IDENTIFIER(Failure, )
} // namespace ResultId

namespace ErrorId {
LS_IDENTIFIER(InvalidCmd, )
LS_IDENTIFIER(InvalidSender, )
LS_IDENTIFIER(CmdNotFound, )
LS_IDENTIFIER(InvalidValue, )
LS_IDENTIFIER(ServiceError, )
} // namespace ErrorId

} // namespace ls

#undef LS_KEY_IDS
#undef LS_KEY_ACTION_IDS
#undef LS_KEYBOARD_HANDLER_CMD_IDS
#undef LS_SERVICE_IDS
#undef LS_STATE_IDS
#undef LS_FAMILY
#undef LS_META_ENTRY
#undef LS_IDENTIFIER
