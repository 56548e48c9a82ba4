// SPDX-License-Identifier: MIT
#include "workbench/web/HttpConnection.h"

#include "workbench/web/EventStream.h"
#include "workbench/web/PageFiles.h"
#include "workbench/web/PanelApi.h"
#include "workbench/web/RequestCheck.h"

#include <QPointer>

#include <microhttpd.h>
#include <sys/socket.h>

using namespace std::chrono_literals;

namespace {

constexpr auto maxHeadTime = 5s;
constexpr auto maxBodyTime = 10s;
constexpr auto maxAnswerTime = 10s;
constexpr auto maxFarewellTime = 2s;
constexpr size_t blockSize = 4096;

MHD_Result collect(void* map, MHD_ValueKind /*kind*/, const char* name, const char* value)
{
    static_cast<QMultiMap<QByteArray, QByteArray>*>(map)->insert(QByteArray(name).toLower(), value);
    return MHD_YES;
}

QByteArray asBytes(const HttpAnswer& answer)
{
    QByteArray bytes = "HTTP/1.1 " + QByteArray::number(answer.status) + ' ' +
                       MHD_get_reason_phrase_for(unsigned(answer.status)) +
                       "\r\nContent-Length: " + QByteArray::number(answer.body.size());
    const QMap<QByteArray, QByteArray> headers = answer.allHeaders();
    for (auto header = headers.begin(); header != headers.end(); ++header) {
        bytes += "\r\n" + header.key() + ": " + header.value();
    }
    return bytes + "\r\n\r\n";
}

} // namespace

HttpConnection::HttpConnection(MHD_Connection* connection, PanelApi& api, quint16 port)
    : m_connection(connection)
    , m_socket(MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD)->connect_fd)
    , m_api(api)
    , m_port(port)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &HttpConnection::onTimeout);
    enter(Phase::Head, maxHeadTime);
}

HttpConnection::~HttpConnection()
{
    if (isStream()) {
        Q_EMIT m_answer.stream->abandoned();
    }
}

bool HttpConnection::proceed(const char* method, const char* path, const char* data, size_t* size)
{
    if (m_phase == Phase::Head) {
        takeHead(method, path);
        return true;
    }
    if (m_phase == Phase::Body) {
        m_request.body.append(data, int(*size));
        check();
    }
    if (std::exchange(*size, 0) > 0) {
        return true;
    }
    if (m_phase == Phase::Body) {
        m_phase = Phase::Work;
        // Later: what the session does must not lead back into the library.
        QMetaObject::invokeMethod(this, &HttpConnection::work, Qt::QueuedConnection);
    } else if (m_phase == Phase::Work) {
        // Now, but not in the call before: the library would read on when the connection is resumed.
        suspend();
    } else if (m_phase == Phase::Ready) {
        respond();
    } else {
        return false;
    }
    return true;
}

void HttpConnection::finish()
{
    if (!MHD_get_connection_info(m_connection, MHD_CONNECTION_INFO_HTTP_STATUS) && m_phase == Phase::Body) {
        onTimeout();
    }
    m_timer.stop();
    m_phase = Phase::Over;
}

void HttpConnection::answer(const HttpAnswer& answer)
{
    if (m_phase == Phase::Work) {
        m_answer = answer;
        m_phase = Phase::Ready;
        resume();
    }
}

void HttpConnection::cutOff()
{
    m_departure.reset();
    m_timer.stop();
    m_phase = Phase::Over;
    shutdown(m_socket, SHUT_RDWR);
    resume();
}

void HttpConnection::end()
{
    if (m_phase == Phase::Work) {
        answer(HttpAnswer::error(HttpStatus::unavailable, QStringLiteral("The server ends.")));
    } else {
        shutdown(m_socket, SHUT_RD);
    }
}

void HttpConnection::enter(Phase phase, std::chrono::milliseconds maxTime)
{
    m_phase = phase;
    m_timer.start(maxTime);
}

void HttpConnection::takeHead(const char* method, const char* path)
{
    enter(Phase::Body, maxBodyTime);
    m_request.method = method;
    m_request.path = path;
    m_request.headSize =
        MHD_get_connection_info(m_connection, MHD_CONNECTION_INFO_REQUEST_HEADER_SIZE)->header_size;
    MHD_get_connection_values(m_connection, MHD_HEADER_KIND, collect, &m_request.headers);
    MHD_get_connection_values(m_connection, MHD_GET_ARGUMENT_KIND, collect, &m_request.query);
    // The library asks for a body that waits for that, even after an answer.
    if (!m_request.headers.contains("expect")) {
        check();
    }
}

void HttpConnection::work()
{
    if (m_phase != Phase::Work) {
        return;
    }
    const auto reply = [self = QPointer<HttpConnection>(this)](const HttpAnswer& answer) {
        if (self) {
            self->answer(answer);
        }
    };
    if (const auto file = pageFiles().find(m_request.path); file != pageFiles().end()) {
        reply(*file);
    } else {
        PanelApi::routes().value(m_request.path).handlerOf(m_request.method)(m_api, m_request, reply);
    }
}

void HttpConnection::check()
{
    if (const std::optional<HttpAnswer> refusal = checkRequest(m_request, m_port)) {
        refuse(*refusal);
    }
}

/// Answers before the whole request has come. The library would close the connection with bytes unread, which
/// resets it, and the client might lose the answer.
void HttpConnection::refuse(const HttpAnswer& refusal)
{
    // The system has room for these, which are the first bytes.
    const QByteArray bytes = asBytes(refusal) + (m_request.method == "HEAD" ? QByteArray() : refusal.body);
    ::send(m_socket, bytes.constData(), size_t(bytes.size()), MSG_NOSIGNAL | MSG_DONTWAIT);
    shutdown(m_socket, SHUT_WR);
    m_request.body.clear();
    enter(Phase::Refused, maxFarewellTime);
}

void HttpConnection::onTimeout()
{
    if (m_phase == Phase::Body) {
        refuse(HttpAnswer::error(HttpStatus::badRequest,
                                 QStringLiteral("The body does not come as announced.")));
    } else {
        cutOff();
    }
}

void HttpConnection::respond()
{
    QByteArray& body = m_answer.body;
    MHD_Response* const response =
        isStream()
            ? makeStream()
            : MHD_create_response_from_buffer(size_t(body.size()), body.data(), MHD_RESPMEM_PERSISTENT);
    const QMap<QByteArray, QByteArray> headers = m_answer.allHeaders();
    for (auto header = headers.begin(); header != headers.end(); ++header) {
        MHD_add_response_header(response, header.key(), header.value());
    }
    MHD_queue_response(m_connection, unsigned(m_answer.status), response);
    MHD_destroy_response(response);
    enter(Phase::Answer, maxAnswerTime);
}

MHD_Response* HttpConnection::makeStream()
{
    connect(m_answer.stream.get(), &EventStream::changed, this, &HttpConnection::resume);
    connect(m_answer.stream.get(), &EventStream::closed, this, &HttpConnection::cutOff);
    // A client says nothing more, so what comes is its end.
    m_departure = std::make_unique<QSocketNotifier>(m_socket, QSocketNotifier::Read);
    connect(m_departure.get(), &QSocketNotifier::activated, this, &HttpConnection::cutOff);
    const auto take = [](void* self, uint64_t /*position*/, char* data, size_t maxSize) {
        return static_cast<HttpConnection*>(self)->takeEvents(data, maxSize);
    };
    return MHD_create_response_from_callback(MHD_SIZE_UNKNOWN, blockSize, take, this, nullptr);
}

void HttpConnection::suspend()
{
    m_timer.stop();
    m_isSuspended = true;
    MHD_suspend_connection(m_connection);
}

void HttpConnection::resume()
{
    if (std::exchange(m_isSuspended, false)) {
        MHD_resume_connection(m_connection);
    }
    Q_EMIT resumed();
}

ssize_t HttpConnection::takeEvents(char* data, size_t maxSize)
{
    if (m_phase == Phase::Over) {
        // An error here would leave the connection open until the library has something else to do.
        return MHD_CONTENT_READER_END_OF_STREAM;
    }
    const int size = m_answer.stream->take(data, int(maxSize));
    if (size > 0) {
        m_timer.start(maxAnswerTime);
    } else {
        suspend();
    }
    return size;
}
