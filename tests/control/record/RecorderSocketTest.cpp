// SPDX-License-Identifier: MIT
#include "control/record/RecorderSocket.h"
#include "tests/support/Waiting.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <cerrno>
#include <future>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace control;

namespace {

// Longer than any test.
constexpr std::chrono::hours timeout{4};

struct Fetched
{
    QByteArray content;
    int error = 0;
};

/// A client that never reads; the caller closes the descriptor.
int hangingClient(const QString& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, qPrintable(path), sizeof address.sun_path);
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    return ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ? fd : -1;
}

} // namespace

/// Tests how the recorder gives away what it holds.
class RecorderSocketTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void aClientGetsEverything();
    void onlyUserAndGroupMayConnect();
    void clientsThatDoNotReadHoldUpNoOther();
    void aClientNoticesThatARecorderEnded();
    void aClientNoticesThatNoRecorderRuns();
    void aClientNoticesThatARecorderHangs();
    void aSecondRecorderIsRefused();
    void theSocketOfAKilledRecorderIsReplaced();

private:
    Fetched fetch();
    QString path() const { return m_folder->filePath(QStringLiteral("socket")); }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<RecorderSocket> m_socket;
    QByteArray m_content;
};

void RecorderSocketTest::init()
{
    m_socket.reset();
    m_folder = std::make_unique<QTemporaryDir>();
    m_content = QByteArray(1'000'000, 'x') + "end\n";
    m_socket = std::make_unique<RecorderSocket>([this] { return m_content; });
    QCOMPARE(m_socket->listen(path()), QString());
}

Fetched RecorderSocketTest::fetch()
{
    auto result = std::async(std::launch::async, [socket = path()] {
        Fetched fetched;
        fetched.content = RecorderSocket::fetch(socket, timeout, fetched.error);
        return fetched;
    });
    WAIT_FOR(result.wait_for(std::chrono::seconds(0)) == std::future_status::ready);
    return result.get();
}

void RecorderSocketTest::aClientGetsEverything()
{
    const Fetched fetched = fetch();
    QCOMPARE(fetched.error, 0);
    QVERIFY(fetched.content == m_content);
}

void RecorderSocketTest::onlyUserAndGroupMayConnect()
{
    const auto allowed = QFileInfo(path()).permissions();
    QVERIFY(allowed.testFlag(QFileDevice::WriteOwner) && allowed.testFlag(QFileDevice::WriteGroup));
    QVERIFY(!(allowed & (QFileDevice::ReadOther | QFileDevice::WriteOther | QFileDevice::ExeOther)));
}

void RecorderSocketTest::clientsThatDoNotReadHoldUpNoOther()
{
    QVector<int> clients;
    for (int i = 0; i < 3 * RecorderSocket::maxClients; ++i) {
        clients.append(hangingClient(path()));
        QVERIFY(clients.last() != -1);
        QCoreApplication::processEvents();
    }
    QVERIFY(fetch().content == m_content);
    for (const int client : qAsConst(clients)) {
        ::close(client);
    }
    QVERIFY(fetch().content == m_content);
}

void RecorderSocketTest::aClientNoticesThatARecorderEnded()
{
    auto result = std::async(std::launch::async, [socket = path()] {
        Fetched fetched;
        fetched.content = RecorderSocket::fetch(socket, timeout, fetched.error);
        return fetched;
    });
    // The client is connected, and a part of what does not fit into the socket is sent.
    m_content = QByteArray(50'000'000, 'x');
    for (int round = 0; round < 2; ++round) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    m_socket.reset();
    const Fetched fetched = result.get();
    QVERIFY(fetched.error != 0);
    QCOMPARE(fetched.content, QByteArray());
}

void RecorderSocketTest::aClientNoticesThatNoRecorderRuns()
{
    m_socket.reset();
    QCOMPARE(fetch().error, ECONNREFUSED);
    QVERIFY(QFile::remove(path()));
    QCOMPARE(fetch().error, ENOENT);
}

/// The recorder has no event loop here, so the kernel alone accepts the clients, as many as its queue holds:
/// the first and these.
void RecorderSocketTest::aClientNoticesThatARecorderHangs()
{
    Fetched fetched;
    fetched.content = RecorderSocket::fetch(path(), std::chrono::seconds(1), fetched.error);
    QCOMPARE(fetched.error, ETIMEDOUT);
    QCOMPARE(fetched.content, QByteArray());
    QVector<int> clients;
    for (int i = 0; i < RecorderSocket::maxClients; ++i) {
        clients.append(hangingClient(path()));
    }
    fetched.content = RecorderSocket::fetch(path(), std::chrono::seconds(1), fetched.error);
    QCOMPARE(fetched.error, ETIMEDOUT);
    for (const int client : qAsConst(clients)) {
        ::close(client);
    }
}

void RecorderSocketTest::aSecondRecorderIsRefused()
{
    RecorderSocket second([] { return QByteArray(); });
    QCOMPARE(second.listen(path()), QStringLiteral("A recorder runs already, at %1.").arg(path()));
    QVERIFY(fetch().content == m_content);
}

void RecorderSocketTest::theSocketOfAKilledRecorderIsReplaced()
{
    m_socket.reset();
    QVERIFY(QFileInfo::exists(path()));
    RecorderSocket second([] { return QByteArray("second"); });
    QCOMPARE(second.listen(path()), QString());
    QCOMPARE(fetch().content, QByteArray("second"));
}

QTEST_GUILESS_MAIN(RecorderSocketTest)
#include "RecorderSocketTest.moc"
