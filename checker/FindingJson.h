// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Check.h"
#include "checker/ListSources.h"

#include <QByteArray>
#include <QJsonObject>

namespace checker {

/// The findings as JSON for other programs.
namespace FindingJson {

/// Increases with each change that a program which reads the format must know. New members do not count.
constexpr int version = 1;

/// A document in UTF-8. Invalid text of a file is replaced.
QByteArray of(const CheckResult& result, const ListSources& sources);

/// What a search has decided, as in the findings.
QJsonObject of(const ProofNote& note);

} // namespace FindingJson

} // namespace checker
