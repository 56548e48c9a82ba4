// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

/// What a route gets to know of a request.
struct HttpRequest
{
    QByteArray body;
    /// The number of the client's event stream; 0 when it names none, -1 when it is not a number.
    int client = 0;
};
