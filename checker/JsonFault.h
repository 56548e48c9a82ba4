// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QJsonParseError>
#include <QString>

namespace checker {

/// Why a text is not JSON.
struct JsonFault
{
    int offset = 0;
    /// "a comma or } is missing before a quote"
    QString text;

    /// The fault of a text that Qt's reader has rejected with `error`: the first place that breaks the
    /// grammar of JSON. If there is none, because the reader also has limits and checks the encoding, what
    /// the reader says.
    static JsonFault of(const QByteArray& text, const QJsonParseError& error);
};

} // namespace checker
