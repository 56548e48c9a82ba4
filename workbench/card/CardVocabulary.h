// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

/// The keys and states of a key card.
namespace CardVocabulary {

/// The identifiers of the keys that the panel has.
QStringList panelKeys();
bool isPanelKey(const QString& key);

/// The states of the device in the order of their numbers, then "Undefined", the unknown state.
QStringList states();
/// Whether `state` is one of them, except Startup, in which keys are ignored.
bool acceptsKeys(const QString& state);

} // namespace CardVocabulary
