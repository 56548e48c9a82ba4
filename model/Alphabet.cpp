// SPDX-License-Identifier: MIT
#include "model/Alphabet.h"

#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>

#include <QStringList>

namespace model {

namespace {

constexpr quint16 codeWithoutIdentifier = 30;

/// The names by the numbers of the keys.
const QStringList& keyNames()
{
    static const QStringList names = [] {
        QStringList all = ls::KeyId::meta.keys();
        all.removeOne(ls::KeyId::Unknown);
        return QStringList(ls::KeyId::Unknown) + all + QStringList(vocabulary::undefined);
    }();
    return names;
}

/// The names by the numbers of the states.
const QStringList& stateNames()
{
    static const QStringList names = [] {
        QMap<int, QString> byOrdinal;
        for (auto it = ls::StateId::meta.cbegin(); it != ls::StateId::meta.cend(); ++it) {
            byOrdinal.insert(it.value(), it.key());
        }
        return QStringList(vocabulary::undefined) + byOrdinal.values();
    }();
    return names;
}

template <typename Id>
std::optional<Id> find(const QStringList& names, const QString& name)
{
    const int index = names.indexOf(name);
    return index == -1 ? std::nullopt : std::optional<Id>(static_cast<Id>(index));
}

} // namespace

const QVector<Key>& Alphabet::keys()
{
    static const QVector<Key> all = [] {
        Q_ASSERT(keyNames().size() <= maxKeys);
        QVector<Key> keys;
        for (int i = 1; i < keyNames().size() - 1; ++i) {
            keys.append(static_cast<Key>(i));
        }
        return keys << Key::None << static_cast<Key>(keyNames().size() - 1);
    }();
    return all;
}

const QVector<State>& Alphabet::states()
{
    static const QVector<State> all = [] {
        Q_ASSERT(stateNames().size() <= maxStates);
        QVector<State> states;
        for (int i = 1; i < stateNames().size(); ++i) {
            states.append(static_cast<State>(i));
        }
        return states << State::Undefined;
    }();
    return all;
}

QString Alphabet::nameOf(Key key)
{
    return keyNames().at(numberOf(key));
}

QString Alphabet::nameOf(State state)
{
    return stateNames().at(numberOf(state));
}

std::optional<Key> Alphabet::keyOf(const ls::EnumKey& name)
{
    return find<Key>(keyNames(), name);
}

std::optional<State> Alphabet::stateOf(const ls::EnumKey& name)
{
    return find<State>(stateNames(), name);
}

bool Alphabet::isOnPanel(Key key)
{
    return key != Key::None && isIdentified(key);
}

bool Alphabet::isIdentified(Key key)
{
    return ls::KeyId::meta.contains(nameOf(key));
}

quint16 Alphabet::codeOf(Key key)
{
    return static_cast<quint16>(ls::KeyId::meta.value(nameOf(key), codeWithoutIdentifier));
}

} // namespace model
