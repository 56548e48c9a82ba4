// SPDX-License-Identifier: MIT
#include <vantre/Singleton.h>

#include <QtTest>

#include <atomic>
#include <thread>
#include <vector>

namespace {

class Counted : public QObject
{
public:
    explicit Counted(QObject* parent) : QObject(parent)
    {
        ++s_made;
        // Long enough for the other threads to request the object during its construction.
        QThread::msleep(10);
        m_complete = true;
    }
    ~Counted() override { ++s_destroyed; }

    bool isComplete() const { return m_complete; }

    static inline std::atomic<int> s_made{0};
    static inline std::atomic<int> s_destroyed{0};

private:
    bool m_complete = false;
};

class Other : public QObject
{
public:
    using QObject::QObject;
};

} // namespace

class SingletonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void allThreadsGetTheSameCompleteObject();
    void hasNoParent();
    void everyTypeHasASeparateInstance();
    void isNotDestroyed();
};

void SingletonTest::allThreadsGetTheSameCompleteObject()
{
    std::atomic<int> complete{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back(
            [&] { complete += libvantre::Singleton<Counted>::instance()->isComplete() ? 1 : 0; });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    QCOMPARE(complete.load(), 8);
    QCOMPARE(Counted::s_made.load(), 1);
}

void SingletonTest::hasNoParent()
{
    QVERIFY(!libvantre::Singleton<Counted>::instance()->parent());
}

void SingletonTest::everyTypeHasASeparateInstance()
{
    QObject* const counted = libvantre::Singleton<Counted>::instance();
    QObject* const other = libvantre::Singleton<Other>::instance();

    QVERIFY(counted != other);
    QCOMPARE(libvantre::Singleton<Other>::instance(), other);
}

void SingletonTest::isNotDestroyed()
{
    libvantre::Singleton<Counted>::instance();

    QCOMPARE(Counted::s_destroyed.load(), 0);
}

QTEST_GUILESS_MAIN(SingletonTest)
#include "SingletonTest.moc"
