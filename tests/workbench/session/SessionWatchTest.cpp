// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/workbench/session/SessionTest.h"

#include <signal.h>
#include <sys/ptrace.h>
#include <sys/wait.h>

using Status = Session::Status;

namespace {

/// Holds the main thread of a process up; all its other threads run on.
class HeldMainThread
{
public:
    explicit HeldMainThread(qint64 process)
        : m_thread(pid_t(process))
        , m_isHeld(ptrace(PTRACE_ATTACH, m_thread, nullptr, nullptr) == 0 &&
                   waitpid(m_thread, nullptr, __WALL) == m_thread)
    {}
    ~HeldMainThread() { ptrace(PTRACE_DETACH, m_thread, nullptr, nullptr); }
    Q_DISABLE_COPY(HeldMainThread)

    bool isHeld() const { return m_isHeld; }

private:
    pid_t m_thread;
    bool m_isHeld;
};

} // namespace

/// Whether the daemon still answers.
class SessionWatchTest : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void aStoppedDaemonDoesNotAnswerUntilItContinues();
    void aDaemonDoesNotAnswerWithoutItsMainThread();
    void theQuestionsLeaveTheSenderOfTheNextAnnouncement();
    void aNewDaemonIsAskedAfterOneThatDidNotAnswer();

private:
    bool isAnswering() { return session().isAnswering(); }
    bool stop() { return kill(pid_t(session().daemonProcess()), SIGSTOP) == 0; }
    bool resume() { return kill(pid_t(session().daemonProcess()), SIGCONT) == 0; }
};

void SessionWatchTest::aStoppedDaemonDoesNotAnswerUntilItContinues()
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

void SessionWatchTest::aDaemonDoesNotAnswerWithoutItsMainThread()
{
    QVERIFY(launch());
    {
        const HeldMainThread mainThread(session().daemonProcess());
        QVERIFY(mainThread.isHeld());
        QVERIFY(awaitEntry("daemon", "answering", "false"));
    }
    QVERIFY(awaitEntry("daemon", "answering", "true"));
}

void SessionWatchTest::theQuestionsLeaveTheSenderOfTheNextAnnouncement()
{
    QVERIFY(launch());
    QCOMPARE(take("command GetLastKey as WwwApi"), QString());
    WAIT_FOR_EQUAL(entries("answer").size(), 1);
    // Between these two entries a question was asked and answered.
    QVERIFY(stop());
    QVERIFY(awaitEntry("daemon", "answering", "false"));
    QVERIFY(resume());
    QVERIFY(awaitEntry("daemon", "answering", "true"));
    QCOMPARE(take("tap Menu; wait 100; tap Menu"), QString());
    WAIT_FOR_EQUAL(members("announcement", "sender"), QStringList({"WwwApi", "KeyboardHandler"}));
}

void SessionWatchTest::aNewDaemonIsAskedAfterOneThatDidNotAnswer()
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
