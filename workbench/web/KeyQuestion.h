// SPDX-License-Identifier: MIT
#pragma once

#include "card/CardTypes.h"
#include "simulator/script/KeyScript.h"
#include "workbench/web/HttpAnswer.h"

#include <optional>

/// Keys that a client asks about, in place of pressing them.
struct KeyQuestion
{
    KeyScript script;
    /// Only the keys nearest to this time are meant.
    std::optional<std::chrono::milliseconds> at;
    /// The keys are to do this.
    std::optional<KeyCardEntry> task;
    /// Whether pauses count.
    bool isAtOwnPace = false;

    /// Reads the JSON of a request. `state` applies if the question names none. If it is faulty, returns
    /// nothing and sets `refusal`.
    static std::optional<KeyQuestion> read(const QByteArray& body, const QString& state, HttpAnswer* refusal);
};
