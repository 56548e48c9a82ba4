// SPDX-License-Identifier: MIT
#include "workbench/web/RequestCheck.h"

#include "workbench/web/PageFiles.h"
#include "workbench/web/PanelApi.h"

#include <algorithm>

namespace {

constexpr quint16 usualPort = 80;
constexpr int maxLineSize = 8 * 1024;
constexpr size_t maxHeadSize = 16 * 1024;
constexpr int maxBodySize = 1024 * 1024;

const QByteArrayList methods{"GET", "HEAD", "POST", "PUT", "DELETE", "CONNECT", "OPTIONS", "TRACE", "PATCH"};

bool isUnderstood(const HttpRequest& request)
{
    bool isUnderstood = methods.contains(request.method) && request.headSize <= maxHeadSize;
    for (auto header = request.headers.begin(); header != request.headers.end(); ++header) {
        isUnderstood = isUnderstood && header.key().size() + header->size() <= maxLineSize;
    }
    return isUnderstood;
}

bool isOwnHost(const QByteArray& host, quint16 port)
{
    const QByteArray suffix = ':' + QByteArray::number(port);
    const QByteArrayList names{"127.0.0.1", "localhost", "[::1]"};
    return std::any_of(names.begin(), names.end(), [&](const QByteArray& name) {
        return host == name + suffix || (port == usualPort && host == name);
    });
}

bool isFromElsewhere(const HttpRequest& request, const QByteArray& host)
{
    if (request.headers.contains("origin") && request.headers.value("origin").toLower() != "http://" + host) {
        return true;
    }
    // Browsers send no Origin with some requests, but say where those come from; "none" is the person.
    const QByteArray site = request.headers.value("sec-fetch-site", "none");
    return request.path.startsWith("/api/") && site != "same-origin" && site != "none";
}

/// The methods of a path; none if there is nothing.
QByteArrayList methodsOf(const QByteArray& path)
{
    if (pageFiles().contains(path)) {
        return {"GET"};
    }
    const auto route = PanelApi::routes().find(path);
    if (route == PanelApi::routes().end()) {
        return {};
    }
    return route->answerToPost ? QByteArrayList{route->method, "POST"} : QByteArrayList{route->method};
}

bool areFor(const QByteArrayList& allowed, const HttpRequest& request)
{
    const bool isHead = request.method == "HEAD" && request.path != "/api/events";
    return allowed.contains(request.method) || (isHead && allowed.contains("GET"));
}

HttpAnswer otherMethod(const QByteArrayList& allowed)
{
    HttpAnswer refusal = HttpAnswer::error(
        HttpStatus::methodNotAllowed,
        QStringLiteral("The method here is %1.").arg(QString::fromLatin1(allowed.join(" or "))));
    refusal.headers.insert("Allow", allowed.join(", "));
    return refusal;
}

bool hasStrangeBody(const HttpRequest& request)
{
    const int lengths = request.headers.count("content-length") + request.headers.count("transfer-encoding");
    return lengths > 1 || request.headers.value("transfer-encoding", "chunked").toLower() != "chunked";
}

} // namespace

std::optional<HttpAnswer> checkRequest(const HttpRequest& request, quint16 port)
{
    if (request.path.size() > maxLineSize) {
        return HttpAnswer::error(HttpStatus::uriTooLong, QStringLiteral("The address is too long."));
    }
    if (!isUnderstood(request)) {
        return HttpAnswer::error(HttpStatus::badRequest, QStringLiteral("The request is not understood."));
    }
    // A name that another site has pointed at this machine would make its pages ours.
    const QByteArray host = request.headers.value("host").toLower();
    if (request.headers.count("host") != 1 || !isOwnHost(host, port)) {
        return HttpAnswer::error(HttpStatus::forbidden,
                                 QStringLiteral("The Host of the request is not this server's address."));
    }
    if (isFromElsewhere(request, host)) {
        return HttpAnswer::error(HttpStatus::forbidden,
                                 QStringLiteral("The request comes from a page of another site."));
    }
    const QByteArrayList allowed = methodsOf(request.path);
    if (allowed.isEmpty()) {
        return HttpAnswer::error(HttpStatus::notFound, QStringLiteral("There is nothing at this address."));
    }
    if (!areFor(allowed, request)) {
        return otherMethod(allowed);
    }
    if (request.headers.contains("content-encoding")) {
        return HttpAnswer::error(HttpStatus::unsupportedMediaType,
                                 QStringLiteral("A compressed body is not taken."));
    }
    if (hasStrangeBody(request)) {
        return HttpAnswer::error(HttpStatus::badRequest,
                                 QStringLiteral("The body is sent in a way that is not known."));
    }
    // The library has refused a length that is not a number.
    if (request.headers.value("content-length").toULongLong() > maxBodySize ||
        request.body.size() > maxBodySize) {
        return HttpAnswer::error(HttpStatus::payloadTooLarge,
                                 QStringLiteral("The body is greater than 1 MiB."));
    }
    return std::nullopt;
}
