// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

/// The keys and states that a key card is about.
namespace CardVocabulary {

/// The identifiers of the keys that the panel has.
QStringList panelKeys();
bool isPanelKey(const QString& key);

/// The states of the device in the order of their numbers, then "Undefined": the state that is not known.
QStringList states();
/// Whether `state` is one of them and keys count in it, as they do in all but Startup.
bool hasKeys(const QString& state);

} // namespace CardVocabulary
