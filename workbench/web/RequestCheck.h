// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/web/HttpAnswer.h"

#include <QtGlobal>

#include <optional>
#include <set>
#include <string>

namespace httplib {
struct Request;
} // namespace httplib

/// Refuses what no page of this server sends: pages of other sites must not reach the device, and no
/// body may fill the memory. May be called by all threads.
class RequestCheck
{
public:
    static constexpr size_t maximumBody = 1024 * 1024;

    explicit RequestCheck(quint16 port);

    /// The refusal of a request from elsewhere, if it is one.
    std::optional<HttpAnswer> checkOrigin(const httplib::Request& request) const;
    /// The refusal of a request whose announced body cannot be taken, if it is one.
    static std::optional<HttpAnswer> checkBody(const httplib::Request& request);
    static HttpAnswer tooLarge();
    /// Whether a body is announced, be it an empty one.
    static bool hasBody(const httplib::Request& request);

private:
    std::set<std::string> m_hosts;
};
