// SPDX-License-Identifier: MIT
#include "app/SystemCheck.h"

#include <servicewatcher/ServiceWatcher.h>

#include <QtTest>

#include <sys/resource.h>

namespace {

QStringList g_queried;
QStringList g_notReady{"state-handler", "speechd"}; // not ready at the first query
long g_pauses = -1;                                 // of the calling thread until the first query

/// The voluntary context switches of the calling thread.
long pauses()
{
    rusage usage{};
    ::getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_nvcsw;
}

/// A check that runs on the caller's thread.
class OwnThreadCheck : public SystemCheck
{
public:
    using SystemCheck::run;
};

} // namespace

// Replaces the library's function and records queries.
bool ServiceWatcher::isReady(const QString& name)
{
    g_pauses = g_queried.isEmpty() ? pauses() : g_pauses;
    g_queried.append(name);
    return !g_notReady.removeOne(name);
}

void ServiceWatcher::setReady(const QString&, bool) {}

class DependenciesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyPassQueriesAllServicesInOrder();
    void readyServicesAreQueriedOnce();
    void servicesAreQueriedWithoutAPause();

private:
    static QStringList queriedByACheck();
};

QStringList DependenciesTest::queriedByACheck()
{
    {
        SystemCheck check;
        check.start();
    } // waits for its end
    return std::exchange(g_queried, {});
}

void DependenciesTest::everyPassQueriesAllServicesInOrder()
{
    QCOMPARE(queriedByACheck(), (QStringList{"state-handler", "speechd", "state-handler", "speechd"}));
}

/// The services are ready since the previous function.
void DependenciesTest::readyServicesAreQueriedOnce()
{
    QCOMPARE(queriedByACheck(), (QStringList{"state-handler", "speechd"}));
}

void DependenciesTest::servicesAreQueriedWithoutAPause()
{
    OwnThreadCheck check;
    check.run(); // a first run loads all code into memory
    g_queried.clear();
    const long before = pauses();
    check.run();
    QCOMPARE(g_pauses, before);
}

QTEST_GUILESS_MAIN(DependenciesTest)
#include "DependenciesTest.moc"
