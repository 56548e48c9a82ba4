// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

/// Compares documents with JSON schemas, with the validator of `package.json`.
namespace JsonSchema {

/// The schema of SARIF 2.1.0.
QByteArray sarif();

/// Where `document` does not match `schema`, a line for each fault; empty if it matches. A schema or document
/// that is not JSON is a fault as well.
QString faultsOf(const QByteArray& document, const QByteArray& schema);

} // namespace JsonSchema
