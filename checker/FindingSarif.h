// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Check.h"
#include "checker/ListSources.h"

#include <QByteArray>

namespace checker {

/// The findings in SARIF 2.1.0, the format of editors and code reviews for the results of analyses.
namespace FindingSarif {

/// A document in UTF-8 with one run. Invalid text of a file is replaced.
QByteArray of(const CheckResult& result, const ListSources& sources);

/// The reference of a file: relative for a relative name, otherwise with the scheme "file".
QString uriOf(const QString& fileName);

} // namespace FindingSarif

} // namespace checker
