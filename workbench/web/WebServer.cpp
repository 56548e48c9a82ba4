// SPDX-License-Identifier: MIT
#include "workbench/web/WebServer.h"

#include "workbench/web/HttpConnection.h"
#include "workbench/web/PanelApi.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <microhttpd.h>
#include <netinet/in.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr int maxConnections = 64;
// With those that are cut off, but not closed yet.
constexpr unsigned maxOpenConnections = maxConnections + 16;
// For the head of a request, or a piece of an event stream.
constexpr size_t memoryOfConnection = 64 * 1024;
constexpr auto maxEndTime = 1s;
constexpr auto recoveryTime = 100ms;
// The library has more to do at once after most steps of a request. Some malformed requests keep it busy
// until their time is over, but then not all of the time.
constexpr int maxTurns = 8;
constexpr auto pauseTime = 1ms;

/// A path ends at a zero byte, which an address may have in its middle; there is nothing at such an address.
size_t unescape(void* /*closure*/, MHD_Connection* /*connection*/, char* text)
{
    const size_t size = MHD_http_unescape(text);
    *text = strlen(text) < size ? '\0' : *text;
    return strlen(text);
}

MHD_Result handle(void* /*closure*/, MHD_Connection* connection, const char* path, const char* method,
                  const char* /*version*/, const char* data, size_t* size, void** context)
{
    *context = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT)->socket_context;
    return static_cast<HttpConnection*>(*context)->proceed(method, path, data, size) ? MHD_YES : MHD_NO;
}

void finish(void* /*closure*/, MHD_Connection* /*connection*/, void** context,
            MHD_RequestTerminationCode /*code*/)
{
    static_cast<HttpConnection*>(*context)->finish();
}

} // namespace

WebServer::WebServer(Session& session) : m_session(session), m_streams(session)
{
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { run(); });
}

WebServer::~WebServer()
{
    stop();
}

bool WebServer::listen(quint16 port)
{
    stop();
    m_daemon = startDaemon(port);
    if (!m_daemon) {
        m_error = QStringLiteral("The port %1 cannot be served: %2.").arg(port).arg(qt_error_string(errno));
        return false;
    }
    m_port = MHD_get_daemon_info(m_daemon, MHD_DAEMON_INFO_BIND_PORT)->port;
    m_api = std::make_unique<PanelApi>(m_session, m_streams);
    const int epoll = MHD_get_daemon_info(m_daemon, MHD_DAEMON_INFO_EPOLL_FD)->epoll_fd;
    m_notifier = std::make_unique<QSocketNotifier>(epoll, QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] { run(); });
    return true;
}

QString WebServer::url() const
{
    return m_daemon ? QStringLiteral("http://127.0.0.1:%1/").arg(m_port) : QString();
}

void WebServer::stop()
{
    if (!m_daemon) {
        return;
    }
    m_notifier.reset();
    close(MHD_quiesce_daemon(m_daemon));
    m_streams.closeAll();
    for (QDeadlineTimer deadline(maxEndTime); !m_connections.empty() && !deadline.hasExpired();) {
        for (const auto& connection : m_connections) {
            connection->end();
        }
        MHD_run_wait(m_daemon, int(deadline.remainingTime()));
    }
    MHD_stop_daemon(std::exchange(m_daemon, nullptr));
    m_api.reset();
    m_timer.stop();
}

MHD_Daemon* WebServer::startDaemon(quint16 port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const MHD_NotifyConnectionCallback notify = [](void* self, MHD_Connection* connection, void** context,
                                                   MHD_ConnectionNotificationCode code) {
        auto& server = *static_cast<WebServer*>(self);
        if (code == MHD_CONNECTION_NOTIFY_STARTED) {
            *context = server.open(connection);
        } else {
            server.m_connections.remove_if([context](const auto& open) { return open.get() == *context; });
        }
    };
    return MHD_start_daemon(MHD_USE_EPOLL | MHD_ALLOW_SUSPEND_RESUME, 0, nullptr, nullptr, handle, nullptr,
                            MHD_OPTION_SOCK_ADDR, &address, MHD_OPTION_CONNECTION_LIMIT, maxOpenConnections,
                            MHD_OPTION_CONNECTION_MEMORY_LIMIT, memoryOfConnection,
                            MHD_OPTION_UNESCAPE_CALLBACK, &unescape, nullptr, MHD_OPTION_NOTIFY_CONNECTION,
                            notify, this, MHD_OPTION_NOTIFY_COMPLETED, &finish, nullptr, MHD_OPTION_END);
}

void WebServer::run()
{
    // To accept a connection without a free descriptor fails, and would be tried again without end.
    const int spare = dup(STDERR_FILENO);
    close(spare);
    m_notifier->setEnabled(spare != -1);
    if (spare == -1) {
        m_timer.start(recoveryTime);
        return;
    }
    m_timer.stop();
    MHD_UNSIGNED_LONG_LONG timeout = 0;
    for (int turn = 0; turn < maxTurns; ++turn) {
        MHD_run(m_daemon);
        if (MHD_get_timeout(m_daemon, &timeout) == MHD_NO) {
            return;
        }
    }
    m_timer.start(pauseTime);
}

HttpConnection* WebServer::open(MHD_Connection* connection)
{
    const auto isOpen = [](const auto& other) { return !other->isCutOff(); };
    if (std::count_if(m_connections.begin(), m_connections.end(), isOpen) >= maxConnections) {
        // The oldest one makes room, unless it is an event stream: so clients that are slow, or say nothing,
        // keep the others not out.
        const auto oldest = std::find_if(m_connections.begin(), m_connections.end(), [&](const auto& other) {
            return isOpen(other) && !other->isStream();
        });
        (*oldest)->cutOff();
    }
    HttpConnection* const opened =
        m_connections.emplace_back(std::make_unique<HttpConnection>(connection, *m_api, m_port)).get();
    QObject::connect(opened, &HttpConnection::resumed, &m_timer, [this] { m_timer.start(0); });
    return opened;
}
