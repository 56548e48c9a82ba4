// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <initializer_list>
#include <random>

/// Random choices that depend only on the seed. Standard engines are portable; standard distributions are
/// not.
class Dice
{
public:
    explicit Dice(quint64 seed) : m_engine(seed) {}

    /// From 0 to `count` - 1; `count` must be positive.
    int below(int count) { return static_cast<int>(m_engine() % static_cast<quint64>(count)); }
    bool oneIn(int count) { return below(count) == 0; }

    template <typename List>
    auto pick(const List& list)
    {
        return *(list.begin() + below(static_cast<int>(list.size())));
    }
    template <typename Value>
    Value pick(std::initializer_list<Value> list)
    {
        return *(list.begin() + below(static_cast<int>(list.size())));
    }

private:
    std::mt19937_64 m_engine;
};
