// SPDX-License-Identifier: MIT
/// The keys and states that the model distinguishes. Both are numbered from the identifiers of `ls`.
#pragma once

#include <ls/EnumKey.h>

#include <QVector>

#include <optional>

namespace model {

/// A key. Zero is "Unknown", because the daemon uses that name for "no key" as well.
enum class Key : quint8 { None = 0 };

/// An operating state. Zero is "Undefined", the state until the first one is known.
enum class State : quint8 { Undefined = 0 };

/// The sizes of tables that are indexed by keys and states.
constexpr int maxKeys = 32;
constexpr int maxStates = 8;

constexpr int numberOf(Key key)
{
    return static_cast<int>(key);
}
constexpr int numberOf(State state)
{
    return static_cast<int>(state);
}

namespace Alphabet {

/// All keys: those of the panel, "Unknown", and "Undefined", the name of every code without an identifier.
const QVector<Key>& keys();
/// All states: those of the device in the order of their ordinals, then "Undefined".
const QVector<State>& states();

QString nameOf(Key key);
QString nameOf(State state);
/// Nothing if no key, or no state, has this name.
std::optional<Key> keyOf(const ls::EnumKey& name);
std::optional<State> stateOf(const ls::EnumKey& name);

/// Whether the panel has the key: it has neither "Unknown" nor "Undefined".
bool isOnPanel(Key key);
/// Whether the key has an identifier in `ls`. Commands can simulate only such keys.
bool isIdentified(Key key);
/// The Linux input key code; for "Undefined" a code without an identifier.
quint16 codeOf(Key key);

} // namespace Alphabet

} // namespace model
