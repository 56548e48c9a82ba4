// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMultiMap>

/// A request of a client.
struct HttpRequest
{
    QByteArray method;
    /// Decoded, without the query.
    QByteArray path;
    QMultiMap<QByteArray, QByteArray> query;
    /// By their names in lower case.
    QMultiMap<QByteArray, QByteArray> headers;
    /// The bytes of the request line and the headers.
    size_t headSize = 0;
    /// As far as it has come.
    QByteArray body;
};
