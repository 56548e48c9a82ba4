// SPDX-License-Identifier: MIT
#include "tests/support/Attempts.h"

#include <QProcess>
#include <QtTest>

#include <csignal>

namespace {

constexpr int maxUndisturbed = 3;

/// Stops this process for a while, as if it were not scheduled.
void stall()
{
    const QString process = QString::number(QCoreApplication::applicationPid());
    const QString wake =
        QStringLiteral("until grep -q 'State:.T' /proc/%1/status; do :; done; sleep 0.1; kill -CONT %1");
    QProcess::startDetached(QStringLiteral("sh"), {QStringLiteral("-c"), wake.arg(process)});
    std::raise(SIGSTOP);
}

} // namespace

class AttemptsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSuccessfulAttemptIsTheLast();
    void undisturbedFailuresCount();
    void disturbedFailuresDoNotCount();
};

void AttemptsTest::aSuccessfulAttemptIsTheLast()
{
    int count = 0;
    const auto attempt = [&count] { return ++count == 2 ? QString() : QStringLiteral("wrong"); };
    QCOMPARE(Attempts::outcome(attempt, maxUndisturbed), QString());
    QCOMPARE(count, 2);
}

void AttemptsTest::undisturbedFailuresCount()
{
    int count = 0;
    const auto attempt = [&count] { return QString::number(++count); };
    QVERIFY(Attempts::outcome(attempt, maxUndisturbed).toInt() >= maxUndisturbed);
}

void AttemptsTest::disturbedFailuresDoNotCount()
{
    int count = 0;
    const auto attempt = [&count] {
        stall();
        return ++count > 2 * maxUndisturbed ? QString() : QStringLiteral("late");
    };
    QCOMPARE(Attempts::outcome(attempt, maxUndisturbed), QString());
}

QTEST_GUILESS_MAIN(AttemptsTest)
#include "AttemptsTest.moc"
