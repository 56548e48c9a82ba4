// SPDX-License-Identifier: MIT
#include "app/SystemCheck.h"

#include <servicewatcher/ServiceWatcher.h>

#include <QtTest>

namespace {

QStringList g_asked;
QStringList g_answersNo{"state-handler", "speechd"}; // each of them says no once

} // namespace

// In the place of the library's: says who was asked.
bool ServiceWatcher::isReady(const QString& name)
{
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

private:
    static QStringList askedByACheck();
};

QStringList DependenciesTest::askedByACheck()
{
    SystemCheck check;
    check.start();
    check.wait();
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

QTEST_GUILESS_MAIN(DependenciesTest)
#include "DependenciesTest.moc"
