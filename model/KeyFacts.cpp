// SPDX-License-Identifier: MIT
#include "model/KeyFacts.h"

#include "keys/KeyRules.h"
#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>

#include <array>

namespace model {

namespace {

using Flags = std::array<bool, maxKeys>;

template <typename Condition>
Flags flagsOf(Condition condition)
{
    Flags flags{};
    for (const Key key : Alphabet::keys()) {
        flags[static_cast<size_t>(key)] = condition(Alphabet::nameOf(key));
    }
    return flags;
}

} // namespace

const Key KeyFacts::menu = *Alphabet::keyOf(ls::KeyId::Menu);
const Key KeyFacts::help = *Alphabet::keyOf(ls::KeyId::Help);
const Key KeyFacts::ten = *Alphabet::keyOf(ls::KeyId::Ten);
const Key KeyFacts::ok = *Alphabet::keyOf(ls::KeyId::Ok);
const Key KeyFacts::factoryReset = *Alphabet::keyOf(ls::KeyId::FactoryReset);
const State KeyFacts::startup = *Alphabet::stateOf(ls::StateId::Startup);
const State KeyFacts::idle = *Alphabet::stateOf(ls::StateId::Idle);

bool KeyFacts::hasName(Key key)
{
    static const Flags named =
        flagsOf([names = vocabulary::keyNames()](const QString& name) { return names.contains(name); });
    return named[static_cast<size_t>(key)];
}

bool KeyFacts::isSilent(Key key, bool isOrvane)
{
    static const Flags silentOnPellit =
        flagsOf([](const QString& name) { return KeyRules::isSilent(name, false); });
    static const Flags silentOnOrvane =
        flagsOf([](const QString& name) { return KeyRules::isSilent(name, true); });
    return (isOrvane ? silentOnOrvane : silentOnPellit)[static_cast<size_t>(key)];
}

} // namespace model
