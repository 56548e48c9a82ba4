// SPDX-License-Identifier: MIT
#include "service/SystemBus.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/PrivateBus.h"

#include <QtTest>

#include <cerrno>

#include <dlfcn.h>
#include <pthread.h>

namespace {

int g_refusals = 0;

} // namespace

/// Replaces the C library's function in all libraries of this program.
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*function)(void*),
                              void* argument)
{
    static const auto create =
        reinterpret_cast<decltype(&pthread_create)>(::dlsym(RTLD_NEXT, "pthread_create"));
    return g_refusals-- > 0 ? EAGAIN : create(thread, attributes, function, argument);
}

class SystemBusWithoutThreadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theBusIsOpenedWithoutAThread();

private:
    PrivateBus m_bus{{}, PrivateBus::Process::Unconnected};
};

void SystemBusWithoutThreadTest::theBusIsOpenedWithoutAThread()
{
    const LogRecorder log;
    g_refusals = 1;
    QVERIFY(openSystemBus().isConnected());
    QCOMPARE(log.lines(),
             QVector<LogLine>({{QtCriticalMsg, "default",
                                "No thread to open the system-bus on: Resource temporarily unavailable"}}));
}

QTEST_GUILESS_MAIN(SystemBusWithoutThreadTest)
#include "SystemBusWithoutThreadTest.moc"
