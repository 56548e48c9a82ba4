// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/workbench/session/SessionTest.h"

#include <signal.h>
#include <sys/ptrace.h>
#include <sys/wait.h>

using Status = Session::Status;

namespace {

/// Stops the main thread of a process, but not its other threads.
class BlockedMainThread
{
public:
    explicit BlockedMainThread(qint64 process)
        : m_thread(pid_t(process))
        , m_isStopped(ptrace(PTRACE_ATTACH, m_thread, nullptr, nullptr) == 0 &&
                      waitpid(m_thread, nullptr, __WALL) == m_thread)
    {}
    ~BlockedMainThread() { ptrace(PTRACE_DETACH, m_thread, nullptr, nullptr); }
    Q_DISABLE_COPY(BlockedMainThread)

    bool isStopped() const { return m_isStopped; }

private:
    pid_t m_thread;
    bool m_isStopped;
};

} // namespace

class SessionWatchTest : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void aStoppedDaemonIsUnresponsiveUntilItContinues();
    void aBlockedMainThreadIsDetected();
    void checksDoNotChangeTheSenderOfTheNextAnnouncement();
    void aNewDaemonIsCheckedAfterAnUnresponsiveOne();

private:
    bool isAnswering() { return session().isAnswering(); }
    bool stop() { return kill(pid_t(session().daemonProcess()), SIGSTOP) == 0; }
    bool resume() { return kill(pid_t(session().daemonProcess()), SIGCONT) == 0; }
};

void SessionWatchTest::aStoppedDaemonIsUnresponsiveUntilItContinues()
{
    QVERIFY(launch());
    QVERIFY(isAnswering());
    QVERIFY(stop());
    QVERIFY(awaitEntry("daemon", "answering", "false"));
    QVERIFY(!isAnswering());
    QCOMPARE(session().status(), Status::Ready);
    QVERIFY(resume());
    QVERIFY(awaitEntry("daemon", "answering", "true"));
    QVERIFY(isAnswering());
    QCOMPARE(entries("daemon").size(), 2);
}

void SessionWatchTest::aBlockedMainThreadIsDetected()
{
    QVERIFY(launch());
    {
        const BlockedMainThread mainThread(session().daemonProcess());
        QVERIFY(mainThread.isStopped());
        QVERIFY(awaitEntry("daemon", "answering", "false"));
    }
    QVERIFY(awaitEntry("daemon", "answering", "true"));
}

void SessionWatchTest::checksDoNotChangeTheSenderOfTheNextAnnouncement()
{
    QVERIFY(launch());
    QCOMPARE(execute("command GetLastKey as WwwApi"), QString());
    WAIT_FOR_EQUAL(entries("answer").size(), 1);
    // A check was answered between these two entries.
    QVERIFY(stop());
    QVERIFY(awaitEntry("daemon", "answering", "false"));
    QVERIFY(resume());
    QVERIFY(awaitEntry("daemon", "answering", "true"));
    QCOMPARE(execute("tap Menu; wait 100; tap Menu"), QString());
    WAIT_FOR_EQUAL(members("announcement", "sender"), QStringList({"WwwApi", "KeyboardHandler"}));
}

void SessionWatchTest::aNewDaemonIsCheckedAfterAnUnresponsiveOne()
{
    QVERIFY(launch());
    QVERIFY(stop());
    QVERIFY(awaitEntry("daemon", "answering", "false"));
    QCOMPARE(session().restart({}), QString());
    QVERIFY(isAnswering());
    QVERIFY(awaitStatus(Status::Ready));
    forgetEntries();
    QVERIFY(stop());
    QVERIFY(awaitEntry("daemon", "answering", "false"));
    QVERIFY(resume());
}

QTEST_GUILESS_MAIN(SessionWatchTest)
#include "SessionWatchTest.moc"
