// SPDX-License-Identifier: MIT
#include "workbench/web/HttpServer.h"

#include "workbench/web/ConnectionStream.h"
#include "workbench/web/PageFiles.h"

#include <algorithm>

#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr auto answerTime = 1s;

constexpr int badRequest = 400;
constexpr int notFound = 404;
constexpr int methodNotAllowed = 405;
constexpr int uriTooLong = 414;
constexpr int internalError = 500;
constexpr int unavailable = 503;

const char* const eventsPath = "/api/events";

const httplib::Headers commonHeaders{
    {"Content-Security-Policy",
     "default-src 'self'; img-src 'self' data: blob:; object-src 'none'; base-uri 'none'; "
     "form-action 'self'; frame-ancestors 'none'"},
    {"X-Content-Type-Options", "nosniff"},
    {"Referrer-Policy", "no-referrer"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
    {"Cache-Control", "no-store"}};

void send(const HttpAnswer& answer, httplib::Response& response)
{
    response.status = answer.status;
    response.set_content(answer.body.toStdString(), answer.type.toStdString());
    for (auto header = answer.headers.begin(); header != answer.headers.end(); ++header) {
        response.set_header(header.key().toStdString(), header.value().toStdString());
    }
}

HttpAnswer serverEnds()
{
    return HttpAnswer::error(unavailable, QStringLiteral("The server ends."));
}

/// Gives a body to what the library refuses by itself.
void explain(const httplib::Request& /*request*/, httplib::Response& response)
{
    if (!response.body.empty()) {
        return;
    }
    const QString sentence = response.status == uriTooLong ? QStringLiteral("The address is too long.")
                             : response.status >= internalError
                                 ? QStringLiteral("The server failed to answer.")
                                 : QStringLiteral("The request is not understood.");
    send(HttpAnswer::error(response.status, sentence), response);
}

/// Takes out what the library would act upon: other readers of bodies, parts and compression of answers.
void simplify(httplib::Request& request)
{
    request.ranges.clear();
    for (const char* name : {"Range", "Content-Type", "Accept-Encoding"}) {
        request.headers.erase(name);
    }
}

int clientOf(const httplib::Request& request)
{
    const std::string text = request.has_header("X-Client") ? request.get_header_value("X-Client")
                                                            : request.get_param_value("client");
    bool isNumber = true;
    const int number = text.empty() ? 0 : QByteArray::fromStdString(text).toInt(&isNumber);
    return isNumber && number >= 0 ? number : -1;
}

/// The body; nothing when it is too large or does not come.
std::optional<QByteArray> readBody(const httplib::ContentReader& reader, httplib::Response& response)
{
    QByteArray body;
    bool isTooLarge = false;
    const bool isRead = reader([&](const char* data, size_t size) {
        isTooLarge = size_t(body.size()) + size > RequestCheck::maximumBody;
        if (!isTooLarge) {
            body.append(data, int(size));
        }
        return !isTooLarge;
    });
    if (isTooLarge) {
        send(RequestCheck::tooLarge(), response);
    } else if (!isRead) {
        send(HttpAnswer::error(badRequest, QStringLiteral("The body does not come as announced.")), response);
    }
    return isRead && !isTooLarge ? std::optional(body) : std::nullopt;
}

const PanelApi::Route* routeOf(const std::string& path)
{
    const std::vector<PanelApi::Route>& routes = PanelApi::routes();
    const auto route = std::find_if(routes.begin(), routes.end(),
                                    [&path](const PanelApi::Route& entry) { return path == entry.path; });
    return route == routes.end() ? nullptr : &*route;
}

/// The method by which there is something at `path`; empty where there is nothing.
QByteArray methodOf(const std::string& path)
{
    if (const PanelApi::Route* route = routeOf(path)) {
        return route->method;
    }
    return path == eventsPath || pageFiles().count(path) > 0 ? "GET" : "";
}

/// Whether the library answers `request`, which is done by `method`; it leaves the body out of an answer to
/// HEAD.
bool isDoneBy(const QByteArray& method, const httplib::Request& request)
{
    return method == request.method.c_str() ||
           (method == "GET" && request.method == "HEAD" && request.path != eventsPath);
}

} // namespace

HttpServer::HttpServer(int listener, quint16 port, const PanelApi& api, EventStreams& streams)
    : m_check(port), m_api(api), m_streams(streams)
{
    // The library sends streams for as long as it knows a listening socket.
    svr_sock_ = listener;
    set_default_headers(commonHeaders);
    set_error_handler(explain);
    set_pre_routing_handler(
        [this](const Request& request, Response& response) { return answerHead(request, response); });
    Post(".*", [this](const Request& request, Response& response, const httplib::ContentReader& reader) {
        answerBody(request, response, reader);
    });
}

HttpServer::~HttpServer()
{
    m_mainThread.stop();
    m_streams.closeAll();
    m_connections.stopReading();
    if (!m_threads.waitForDone(answerTime)) {
        m_connections.cutOff();
    }
}

void HttpServer::serve(int socket)
{
    if (!m_connections.add(socket)) {
        close(socket);
    } else if (!m_threads.start([this, socket] { converse(socket); })) {
        m_connections.remove(socket);
        close(socket);
    }
}

void HttpServer::converse(int socket)
{
    ConnectionStream stream(socket);
    try {
        bool isClosed = false;
        process_request(stream, true, isClosed, [&](Request& request) {
            stream.expectBody();
            simplify(request);
            if (request.path == eventsPath) {
                m_connections.keep(socket);
            }
        });
    } catch (const std::exception&) {
        // The library throws at some malformed heads; nothing can be answered then.
    }
    m_connections.unkeep(socket);
    stream.finish();
    m_connections.remove(socket);
}

std::optional<HttpAnswer> HttpServer::refusalOf(const Request& request) const
{
    if (const std::optional<HttpAnswer> refusal = m_check.checkOrigin(request)) {
        return refusal;
    }
    const QByteArray method = methodOf(request.path);
    if (method.isEmpty()) {
        return HttpAnswer::error(notFound, QStringLiteral("There is nothing at this address."));
    }
    if (!isDoneBy(method, request)) {
        HttpAnswer refusal = HttpAnswer::error(
            methodNotAllowed, QStringLiteral("The method here is %1.").arg(method.constData()));
        refusal.headers.insert("Allow", method);
        return refusal;
    }
    return RequestCheck::checkBody(request);
}

httplib::Server::HandlerResponse HttpServer::answerHead(const Request& request, Response& response)
{
    if (const std::optional<HttpAnswer> refusal = refusalOf(request)) {
        send(*refusal, response);
    } else if (request.path == eventsPath) {
        openEvents(response);
    } else if (const PanelApi::Route* route = routeOf(request.path)) {
        const bool awaitsBody = request.method == "POST" && RequestCheck::hasBody(request);
        if (awaitsBody) {
            return HandlerResponse::Unhandled;
        }
        answerRoute(*route, {{}, clientOf(request), {}}, response);
    } else {
        send(pageFiles().at(request.path), response);
    }
    return HandlerResponse::Handled;
}

void HttpServer::answerBody(const Request& request, Response& response, const httplib::ContentReader& reader)
{
    if (const std::optional<QByteArray> body = readBody(reader, response)) {
        answerRoute(*routeOf(request.path), {*body, clientOf(request), {}}, response);
    }
}

void HttpServer::answerRoute(const PanelApi::Route& route, HttpRequest request, Response& response)
{
    using Rest = PanelApi::Rest;
    if (const std::optional<HttpAnswer> refusal = PanelApi::read(route, &request)) {
        send(*refusal, response);
        return;
    }
    const std::optional<Rest> rest =
        m_mainThread.call<Rest>([this, &route, &request] { return m_api.begin(route, request); });
    send(rest ? (*rest)() : serverEnds(), response);
}

void HttpServer::openEvents(Response& response)
{
    using Stream = std::shared_ptr<EventStream>;
    const std::optional<Stream> stream = m_mainThread.call<Stream>([this] { return m_streams.open(); });
    if (!stream) {
        send(serverEnds(), response);
        return;
    }
    if (!*stream) {
        send(HttpAnswer::error(unavailable, QStringLiteral("There are too many event streams.")), response);
        return;
    }
    response.set_chunked_content_provider(
        "text/event-stream",
        [events = *stream](size_t /*offset*/, httplib::DataSink& sink) { return events->writeTo(sink); },
        [this, client = (*stream)->client()](bool /*success*/) {
            m_mainThread.post([this, client] { m_streams.close(client); });
        });
}
