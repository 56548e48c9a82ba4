// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Seeds.h"

#include <QtTest>

/// The seeds of each fault test: 1, or those that the environment sets with FAULT_SEEDS=FIRST:COUNT.
namespace FaultSeeds {

/// For `initTestCase_data()`.
inline void addRows()
{
    QTest::addColumn<quint64>("seed");
    const Seeds seeds = chosenSeeds("FAULT_SEEDS", {}).value_or(Seeds{0, 0});
    QVERIFY2(seeds.count > 0, "write it as FAULT_SEEDS=FIRST:COUNT");
    for (quint64 value = seeds.first; value < seeds.first + quint64(seeds.count); ++value) {
        QTest::addRow("seed %llu", value) << value;
    }
}

/// The seed of this run.
inline quint64 current()
{
    QFETCH_GLOBAL(quint64, seed);
    return seed;
}

} // namespace FaultSeeds
