// SPDX-License-Identifier: MIT
#include "app/SystemCheck.h"

#include <servicewatcher/ServiceWatcher.h>

#include <QtTest>

#include <sys/resource.h>

namespace {

QStringList g_asked;
QStringList g_answersNo{"state-handler", "speechd"}; // each of them says no once
long g_pauses = -1;                                  // of the calling thread until the first question

/// How often the calling thread has given up the processor by itself.
long pauses()
{
    rusage usage{};
    ::getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_nvcsw;
}

/// A check that runs on the thread of its caller.
class OwnThreadCheck : public SystemCheck
{
public:
    using SystemCheck::run;
};

} // namespace

// In the place of the library's: says who was asked.
bool ServiceWatcher::isReady(const QString& name)
{
    g_pauses = g_asked.isEmpty() ? pauses() : g_pauses;
    g_asked.append(name);
    return !g_answersNo.removeOne(name);
}

void ServiceWatcher::setReady(const QString&, bool) {}

class DependenciesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyPassAsksForAllInTheirOrder();
    void servicesThatAreReadyAreAskedForOnce();
    void servicesAreAskedForWithoutAPause();

private:
    static QStringList askedByACheck();
};

QStringList DependenciesTest::askedByACheck()
{
    {
        SystemCheck check;
        check.start();
    } // waits for its end
    return std::exchange(g_asked, {});
}

void DependenciesTest::everyPassAsksForAllInTheirOrder()
{
    QCOMPARE(askedByACheck(), (QStringList{"state-handler", "speechd", "state-handler", "speechd"}));
}

/// As they are since the function before.
void DependenciesTest::servicesThatAreReadyAreAskedForOnce()
{
    QCOMPARE(askedByACheck(), (QStringList{"state-handler", "speechd"}));
}

void DependenciesTest::servicesAreAskedForWithoutAPause()
{
    OwnThreadCheck check;
    check.run(); // once before, so that all of it is in memory
    g_asked.clear();
    const long before = pauses();
    check.run();
    QCOMPARE(g_pauses, before);
}

QTEST_GUILESS_MAIN(DependenciesTest)
#include "DependenciesTest.moc"
