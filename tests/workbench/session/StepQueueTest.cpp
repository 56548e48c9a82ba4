// SPDX-License-Identifier: MIT
#include "workbench/session/StepQueue.h"

#include "simulator/script/KeyScriptText.h"
#include "simulator/script/ScriptTarget.h"
#include "tests/virtual/DeviceTest.h"

namespace {

constexpr int anna = 1;
constexpr int ben = 2;

/// Records pressed and released keys.
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

    void stepsWithoutDelayAreExecutedImmediately();
    void otherStepsAreExecutedAtTheirTimes();
    void severalClientsPlaySimultaneously();
    void pendingStepsAreCounted();
    void aDepartingClientReleasesItsKeys();
    void theLastClientToPressAKeyHoldsIt();
    void aReleasedKeyIsNotHeld();
    void aDepartingClientCancelsItsSteps();
    void theEndOfAScriptIsReported();
    void removingTheDeviceClearsTheQueue();
    void aStepMayRemoveTheDevice();

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

void StepQueueTest::stepsWithoutDelayAreExecutedImmediately()
{
    m_queue->execute(steps("press Up; device 1; press Ok"), anna);
    QCOMPARE(m_target->lines, QStringList({"+Up", "1+Ok"}));
    QCOMPARE(m_queue->pending(), 0);
}

void StepQueueTest::otherStepsAreExecutedAtTheirTimes()
{
    m_queue->execute(steps("hold Up 100; press Ok"), anna);
    advance(99ms);
    QCOMPARE(m_target->lines, QStringList("+Up"));
    advance(1ms);
    QCOMPARE(m_target->lines, QStringList({"+Up", "-Up", "+Ok"}));
}

void StepQueueTest::severalClientsPlaySimultaneously()
{
    m_queue->execute(steps("hold Up 100"), anna);
    advance(50ms);
    m_queue->execute(steps("tap Ok"), ben);
    m_queue->execute(steps("state Print"), anna);
    advance(100ms);
    QCOMPARE(m_target->lines, QStringList({"+Up", "+Ok", "Print", "-Up", "-Ok"}));
}

void StepQueueTest::pendingStepsAreCounted()
{
    m_queue->execute(steps("tap Up Ok"), anna);
    QCOMPARE(m_queue->pending(), 3 + 1);
    m_queue->execute(steps("wait 100000"), ben);
    QCOMPARE(m_queue->pending(), 3 + 1);
    advance(50ms);
    QCOMPARE(m_queue->pending(), 2 + 1);
    advance(1s);
    QCOMPARE(m_queue->pending(), 0);
}

void StepQueueTest::aDepartingClientReleasesItsKeys()
{
    m_queue->execute(steps("press Up; device 1; press Ok"), anna);
    m_queue->execute(steps("press Down"), ben);
    m_target->lines.clear();
    m_queue->cancel(anna);
    QCOMPARE(m_target->lines, QStringList({"-Up", "1-Ok"}));
    m_queue->cancel(anna);
    QCOMPARE(m_target->lines.size(), 2);
}

void StepQueueTest::theLastClientToPressAKeyHoldsIt()
{
    m_queue->execute(steps("press Up"), anna);
    m_queue->execute(steps("press Up"), ben);
    m_queue->cancel(anna);
    QCOMPARE(m_target->lines, QStringList({"+Up", "+Up"}));
    m_queue->cancel(ben);
    QCOMPARE(m_target->lines.last(), QStringLiteral("-Up"));
}

void StepQueueTest::aReleasedKeyIsNotHeld()
{
    m_queue->execute(steps("press Up"), anna);
    m_queue->execute(steps("release Up"), ben);
    m_queue->cancel(anna);
    m_queue->cancel(ben);
    QCOMPARE(m_target->lines, QStringList({"+Up", "-Up"}));
}

void StepQueueTest::aDepartingClientCancelsItsSteps()
{
    m_queue->execute(steps("press Up; wait 100; press Down"), anna);
    m_queue->execute(steps("wait 100; press Ok"), ben);
    m_queue->cancel(anna);
    advance(1s);
    QCOMPARE(m_target->lines, QStringList({"+Up", "-Up", "+Ok"}));
    QCOMPARE(m_queue->pending(), 0);
}

void StepQueueTest::theEndOfAScriptIsReported()
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

void StepQueueTest::removingTheDeviceClearsTheQueue()
{
    m_queue->execute(steps("press Up; wait 100; press Down"), anna);
    m_queue->setTarget(nullptr);
    m_queue->execute(steps("press Ok; wait 100; press Ok"), anna);
    KeyTarget next;
    m_queue->setTarget(&next);
    m_queue->cancel(anna);
    advance(1s);
    QCOMPARE(m_target->lines, QStringList("+Up"));
    QCOMPARE(next.lines, QStringList());
    m_queue->setTarget(nullptr);
}

void StepQueueTest::aStepMayRemoveTheDevice()
{
    connect(m_queue.get(), &StepQueue::aboutToPlay, m_queue.get(), [this](const ScriptStep& step) {
        if (step.kind == ScriptStep::Kind::State) {
            m_queue->setTarget(nullptr);
            m_target.reset();
        }
    });
    m_queue->execute(steps("press Up; state Print; press Ok; wait 100; press Ok"), anna);
    advance(1s);
    m_target = std::make_unique<KeyTarget>();
    m_queue->setTarget(m_target.get());
    m_queue->execute(steps("wait 10; state Print; press Ok; wait 100; press Ok"), anna);
    advance(1s);
    QVERIFY(!m_target);
    QCOMPARE(m_queue->pending(), 0);
}

VIRTUAL_TIME_TEST_MAIN(StepQueueTest)
#include "StepQueueTest.moc"
