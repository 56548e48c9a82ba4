// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <optional>

/// The seeds of a test with random choices: `count` ones from `first` on.
struct Seeds
{
    quint64 first = 1;
    int count = 1;
};

/// What the environment's `variable` chooses as FIRST:COUNT, or `usual` when it is not set; nothing when it
/// is anything else.
std::optional<Seeds> chosenSeeds(const char* variable, const Seeds& usual);
