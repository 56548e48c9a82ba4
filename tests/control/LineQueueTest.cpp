// SPDX-License-Identifier: MIT
#include "control/LineQueue.h"
#include "tests/support/Waiting.h"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

using control::LineQueue;

/// Tests the lines on their way to a reader. The system test of the monitor has slow and absent readers.
class LineQueueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nonBlockingOutputsGetAllLines();
};

/// Another process that shares the output may make it non-blocking at any time.
void LineQueueTest::nonBlockingOutputsGetAllLines()
{
    std::array<int, 2> pipe{};
    QCOMPARE(::pipe2(pipe.data(), O_NONBLOCK | O_CLOEXEC), 0);
    QCOMPARE(::fcntl(pipe[1], F_SETPIPE_SZ, 4096), 4096);
    QByteArray expected;
    QByteArray got;
    {
        LineQueue queue(pipe[1], [](int) { return QByteArray("lost\n"); });
        for (int i = 0; i < 200; ++i) {
            const QByteArray line = QByteArray(100, 'x') + QByteArray::number(i) + '\n';
            queue.add(line);
            expected += line;
        }
        std::array<char, 1000> bytes{};
        WAIT_FOR(([&] {
            const ssize_t size = ::read(pipe[0], bytes.data(), bytes.size());
            got.append(bytes.data(), int(std::max<ssize_t>(size, 0)));
            return got.size() == expected.size() || !queue.isRunning();
        }()));
    }
    QVERIFY(got == expected);
    ::close(pipe[0]);
    ::close(pipe[1]);
}

QTEST_GUILESS_MAIN(LineQueueTest)
#include "LineQueueTest.moc"
