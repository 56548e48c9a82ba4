// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

/// Numbers of the sentences that the speech daemon knows, one enumeration for each translation file.
namespace libtranslation::Sid {
Q_NAMESPACE

enum class EmbosserCore {
    KeyOn = 17,
    KeyOff = 18,
    KeyFeed = 19,
    KeyHelp = 20,
    KeyMenu = 21,
    KeyBack = 22,
    KeyRight = 23,
    KeyUp = 24,
    KeyDown = 25,
    KeyOk = 26,
    KeyChs = 27,
    KeyOne = 28,
    KeyTen = 29,
    KeyFunctionOrvane = 30,
    KeyFunction = 31,
};
Q_ENUM_NS(EmbosserCore)

enum class EmbosserError {
    StartingUp = 69,
};
Q_ENUM_NS(EmbosserError)

enum class EmbosserMenu {
    FactoryReset = 487,
};
Q_ENUM_NS(EmbosserMenu)

} // namespace libtranslation::Sid
