// SPDX-License-Identifier: MIT
#include "tests/support/Attempts.h"

#include <QProcess>
#include <QtTest>

#include <csignal>

namespace {

constexpr int maxUndisturbed = 3;

/// Stands still for a while, as a process does that gets no processor.
void stall()
{
    const QString process = QString::number(QCoreApplication::applicationPid());
    const QString wake =
        QStringLiteral("until grep -q 'State:.T' /proc/%1/status; do :; done; sleep 0.1; kill -CONT %1");
    QProcess::startDetached(QStringLiteral("sh"), {QStringLiteral("-c"), wake.arg(process)});
    std::raise(SIGSTOP);
}

} // namespace

/// Repeated attempts.
class AttemptsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anAttemptThatSucceedsIsTheLast();
    void failuresCountWhileNothingDisturbs();
    void failuresOfADisturbedMachineDoNotCount();
};

void AttemptsTest::anAttemptThatSucceedsIsTheLast()
{
    int count = 0;
    const auto attempt = [&count] { return ++count == 2 ? QString() : QStringLiteral("wrong"); };
    QCOMPARE(Attempts::outcome(attempt, maxUndisturbed), QString());
    QCOMPARE(count, 2);
}

void AttemptsTest::failuresCountWhileNothingDisturbs()
{
    int count = 0;
    const auto attempt = [&count] { return QString::number(++count); };
    QVERIFY(Attempts::outcome(attempt, maxUndisturbed).toInt() >= maxUndisturbed);
}

void AttemptsTest::failuresOfADisturbedMachineDoNotCount()
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
