// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <QByteArray>

/// What a route gets to know of a request.
struct HttpRequest
{
    QByteArray body;
    /// The number of the client's event stream; 0 when it names none, -1 when it is not a number.
    int client = 0;
    /// What the body says, where the route replays it.
    KeyScript script;
};
