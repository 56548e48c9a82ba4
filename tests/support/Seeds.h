// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <optional>

/// The seeds of a randomised test: `count` seeds from `first`.
struct Seeds
{
    quint64 first = 1;
    int count = 1;
};

/// The seeds that the environment variable sets as FIRST:COUNT, or `defaults` if it is not set; nothing if it
/// is malformed.
std::optional<Seeds> chosenSeeds(const char* variable, const Seeds& defaults);
