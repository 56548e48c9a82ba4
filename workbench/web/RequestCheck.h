// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/web/HttpAnswer.h"
#include "workbench/web/HttpRequest.h"

#include <optional>

/// The refusal of what is not served, or of what no page of this server sends: pages of other sites must not
/// reach the device, and no body may fill the memory. `port` is the server's.
std::optional<HttpAnswer> checkRequest(const HttpRequest& request, quint16 port);
