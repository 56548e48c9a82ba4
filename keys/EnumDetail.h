// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

/// Carries enumerations whose value names are looked up at run time: the names of `RowKeyList` are the
/// section keys of the key-list files.
class EnumDetail : public QObject
{
    Q_OBJECT

public:
    enum class RowKeyList {
        Keys = 0,
        ModifierKeys = 1,
        LongKeys = 2,
        ShortcutKeys = 3,
    };
    Q_ENUM(RowKeyList)

    /// Conditions on a command; declared for the services that share the key lists.
    enum class ValidateKeyCommand {
        Undefined = 0,
        AlwaysValid = 1,
        AlwaysInvalid = 2,
        ModelIsOrvane = 3,
        ModelIsPellit = 4,
    };
    Q_ENUM(ValidateKeyCommand)
};
