// SPDX-License-Identifier: MIT
#include "workbench/web/RequestCheck.h"

#include <httplib.h>

#include <algorithm>

namespace {

constexpr quint16 usualPort = 80;

constexpr int badRequest = 400;
constexpr int forbidden = 403;
constexpr int payloadTooLarge = 413;
constexpr int unsupportedMediaType = 415;

std::string lowered(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char letter) { return letter >= 'A' && letter <= 'Z' ? char(letter + 32) : letter; });
    return text;
}

bool isApi(const httplib::Request& request)
{
    return request.path.rfind("/api/", 0) == 0;
}

bool isNumber(const std::string& text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

} // namespace

RequestCheck::RequestCheck(quint16 port)
{
    for (const char* name : {"127.0.0.1", "localhost", "[::1]"}) {
        m_hosts.insert(std::string(name) + ':' + std::to_string(port));
        if (port == usualPort) {
            m_hosts.insert(name);
        }
    }
}

std::optional<HttpAnswer> RequestCheck::checkOrigin(const httplib::Request& request) const
{
    // A name that another site has pointed at this machine would make its pages ours.
    const std::string host = lowered(request.get_header_value("Host"));
    if (request.get_header_value_count("Host") != 1 || m_hosts.count(host) == 0) {
        return HttpAnswer::error(forbidden,
                                 QStringLiteral("The Host of the request is not this server's address."));
    }
    const HttpAnswer elsewhere =
        HttpAnswer::error(forbidden, QStringLiteral("The request comes from a page of another site."));
    if (request.has_header("Origin") && lowered(request.get_header_value("Origin")) != "http://" + host) {
        return elsewhere;
    }
    // Browsers send no Origin with some requests, but say where those come from; "none" is the person.
    const std::string site = request.get_header_value("Sec-Fetch-Site");
    if (isApi(request) && !site.empty() && site != "same-origin" && site != "none") {
        return elsewhere;
    }
    return std::nullopt;
}

std::optional<HttpAnswer> RequestCheck::checkBody(const httplib::Request& request)
{
    if (request.has_header("Content-Encoding")) {
        return HttpAnswer::error(unsupportedMediaType, QStringLiteral("A compressed body is not taken."));
    }
    const std::string encoding = lowered(request.get_header_value("Transfer-Encoding"));
    if (!encoding.empty()) {
        if (encoding == "chunked" && !request.has_header("Content-Length")) {
            return std::nullopt;
        }
        return HttpAnswer::error(badRequest, QStringLiteral("The body is sent in a way that is not known."));
    }
    if (!request.has_header("Content-Length")) {
        return std::nullopt;
    }
    const std::string length = request.get_header_value("Content-Length");
    if (request.get_header_value_count("Content-Length") != 1 || !isNumber(length)) {
        return HttpAnswer::error(badRequest, QStringLiteral("The Content-Length is not a number."));
    }
    // Not converted: the number may be too great for any type.
    const std::string digits = length.substr(std::min(length.find_first_not_of('0'), length.size() - 1));
    const std::string limit = std::to_string(maximumBody);
    if (digits.size() > limit.size() || (digits.size() == limit.size() && digits > limit)) {
        return tooLarge();
    }
    return std::nullopt;
}

HttpAnswer RequestCheck::tooLarge()
{
    return HttpAnswer::error(payloadTooLarge, QStringLiteral("The body is greater than 1 MiB."));
}

bool RequestCheck::hasBody(const httplib::Request& request)
{
    return request.has_header("Content-Length") || request.has_header("Transfer-Encoding");
}
