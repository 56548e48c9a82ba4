// SPDX-License-Identifier: MIT
#include "workbench/session/StepQueue.h"

#include "simulator/script/KeyScriptText.h"
#include "simulator/script/ScriptTarget.h"
#include "tests/virtual/DeviceTest.h"

namespace {

constexpr int anna = 1;
constexpr int ben = 2;

/// Writes down the keys that are moved.
class KeyTarget : public ScriptTarget
{
public:
    void press(int device, const QString& key) override { add(device, '+' + key); }
    void release(int device, const QString& key) override { add(device, '-' + key); }
    void record(int, const RawRecord&) override {}
    void setState(const QString& state) override { lines << state; }
    void setService(const ServiceChange&) override {}
    void sendCommand(const QVariantMap&) override {}
    void typeLine(const QString&) override {}

    QStringList lines;

private:
    void add(int device, const QString& text)
    {
        lines << (device == 0 ? QString() : QString::number(device)) + text;
    }
};

KeyScript steps(const QString& text)
{
    return parseKeyScriptSteps(QString(text).replace(';', '\n')).script;
}

} // namespace

class StepQueueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void whatIsDueIsTakenAtOnce();
    void theRestComesAtItsTime();
    void severalClientsPlayAtOnce();
    void whatIsPendingIsCounted();
    void aClientThatGoesReleasesItsKeys();
    void theLastOneToPressAKeyHoldsIt();
    void aKeyThatWasReleasedIsHeldByNobody();
    void aClientThatGoesGivesUpItsPlans();
    void aScriptTellsWhenItIsOver();
    void withoutADeviceAllIsForgotten();
    void aStepMayTakeTheDeviceAway();

private:
    void advance(std::chrono::milliseconds time) { VirtualDevice::clock().advance(time); }

    std::unique_ptr<KeyTarget> m_target;
    std::unique_ptr<StepQueue> m_queue;
};

void StepQueueTest::init()
{
    m_target = std::make_unique<KeyTarget>();
    m_queue = std::make_unique<StepQueue>();
    m_queue->setTarget(m_target.get());
}

void StepQueueTest::cleanup()
{
    m_queue.reset();
    m_target.reset();
}

void StepQueueTest::whatIsDueIsTakenAtOnce()
{
    m_queue->take(steps("press Up; device 1; press Ok"), anna);
    QCOMPARE(m_target->lines, QStringList({"+Up", "1+Ok"}));
    QCOMPARE(m_queue->pending(), 0);
}

void StepQueueTest::theRestComesAtItsTime()
{
    m_queue->take(steps("hold Up 100; press Ok"), anna);
    advance(99ms);
    QCOMPARE(m_target->lines, QStringList("+Up"));
    advance(1ms);
    QCOMPARE(m_target->lines, QStringList({"+Up", "-Up", "+Ok"}));
}

void StepQueueTest::severalClientsPlayAtOnce()
{
    m_queue->take(steps("hold Up 100"), anna);
    advance(50ms);
    m_queue->take(steps("tap Ok"), ben);
    m_queue->take(steps("state Print"), anna);
    advance(100ms);
    QCOMPARE(m_target->lines, QStringList({"+Up", "+Ok", "Print", "-Up", "-Ok"}));
}

void StepQueueTest::whatIsPendingIsCounted()
{
    m_queue->take(steps("tap Up Ok"), anna);
    QCOMPARE(m_queue->pending(), 3 + 1);
    m_queue->take(steps("wait 100000"), ben);
    QCOMPARE(m_queue->pending(), 3 + 1);
    advance(50ms);
    QCOMPARE(m_queue->pending(), 2 + 1);
    advance(1s);
    QCOMPARE(m_queue->pending(), 0);
}

void StepQueueTest::aClientThatGoesReleasesItsKeys()
{
    m_queue->take(steps("press Up; device 1; press Ok"), anna);
    m_queue->take(steps("press Down"), ben);
    m_target->lines.clear();
    m_queue->drop(anna);
    QCOMPARE(m_target->lines, QStringList({"-Up", "1-Ok"}));
    m_queue->drop(anna);
    QCOMPARE(m_target->lines.size(), 2);
}

void StepQueueTest::theLastOneToPressAKeyHoldsIt()
{
    m_queue->take(steps("press Up"), anna);
    m_queue->take(steps("press Up"), ben);
    m_queue->drop(anna);
    QCOMPARE(m_target->lines, QStringList({"+Up", "+Up"}));
    m_queue->drop(ben);
    QCOMPARE(m_target->lines.last(), QStringLiteral("-Up"));
}

void StepQueueTest::aKeyThatWasReleasedIsHeldByNobody()
{
    m_queue->take(steps("press Up"), anna);
    m_queue->take(steps("release Up"), ben);
    m_queue->drop(anna);
    m_queue->drop(ben);
    QCOMPARE(m_target->lines, QStringList({"+Up", "-Up"}));
}

void StepQueueTest::aClientThatGoesGivesUpItsPlans()
{
    m_queue->take(steps("press Up; wait 100; press Down"), anna);
    m_queue->take(steps("wait 100; press Ok"), ben);
    m_queue->drop(anna);
    advance(1s);
    QCOMPARE(m_target->lines, QStringList({"+Up", "-Up", "+Ok"}));
    QCOMPARE(m_queue->pending(), 0);
}

void StepQueueTest::aScriptTellsWhenItIsOver()
{
    const QSignalSpy finished(m_queue.get(), &StepQueue::finished);
    m_queue->play(steps("tap Up"), ben);
    advance(549ms);
    QCOMPARE(finished.size(), 0);
    advance(1ms);
    QCOMPARE(finished.size(), 1);
    QCOMPARE(finished.first().first().toInt(), ben);
    QCOMPARE(m_target->lines, QStringList({"+Up", "-Up"}));
}

void StepQueueTest::withoutADeviceAllIsForgotten()
{
    m_queue->take(steps("press Up; wait 100; press Down"), anna);
    m_queue->setTarget(nullptr);
    m_queue->take(steps("press Ok; wait 100; press Ok"), anna);
    KeyTarget next;
    m_queue->setTarget(&next);
    m_queue->drop(anna);
    advance(1s);
    QCOMPARE(m_target->lines, QStringList("+Up"));
    QCOMPARE(next.lines, QStringList());
    m_queue->setTarget(nullptr);
}

void StepQueueTest::aStepMayTakeTheDeviceAway()
{
    connect(m_queue.get(), &StepQueue::stepping, m_queue.get(), [this](const ScriptStep& step) {
        if (step.kind == ScriptStep::Kind::State) {
            m_queue->setTarget(nullptr);
            m_target.reset();
        }
    });
    m_queue->take(steps("press Up; state Print; press Ok; wait 100; press Ok"), anna);
    advance(1s);
    m_target = std::make_unique<KeyTarget>();
    m_queue->setTarget(m_target.get());
    m_queue->take(steps("wait 10; state Print; press Ok; wait 100; press Ok"), anna);
    advance(1s);
    QVERIFY(!m_target);
    QCOMPARE(m_queue->pending(), 0);
}

VIRTUAL_TIME_TEST_MAIN(StepQueueTest)
#include "StepQueueTest.moc"
