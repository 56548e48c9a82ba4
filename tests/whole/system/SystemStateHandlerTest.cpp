// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/whole/system/SystemTest.h"

using namespace std::chrono_literals;

namespace {

const QString invalidResult = QStringLiteral("StateHandler::getState ERROR: invalid result!");
const QString invalidNotification =
    QStringLiteral("StateHandler::onNotification ERROR: Invalid notification!");

} // namespace

class SystemStateHandlerTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void withoutStateHandlerTheStateIsUndefined();
    void aSlowAnswerIsAwaited();
    void aStateHandlerThatDiesDuringTheRequestIsGivenUp();
    void aLateStateHandlerIsFollowed();
    void aRestartedStateHandlerIsFollowed();
    void afterAFloodOfNotificationsTheLastStateApplies();
};

void SystemStateHandlerTest::withoutStateHandlerTheStateIsUndefined()
{
    options.stateHandler = false;
    QVERIFY(launch());
    QVERIFY(awaitLog(invalidResult));
    tap(ls::KeyId::Up);
    QVERIFY(awaitAction(QStringLiteral("announce SingleKey UserMenu - Up")));
    QCOMPARE(actions().size(), 1);
}

void SystemStateHandlerTest::aSlowAnswerIsAwaited()
{
    options.state = ls::StateId::Print;
    QVERIFY(prepare());
    device().stateHandler().setDelay(3s);
    QVERIFY(launch());
    tap(ls::KeyId::Up);
    QVERIFY(awaitAction(QStringLiteral("announce SingleKey PrintManager - Up")));
    QVERIFY(!completeLog().contains(invalidResult));
}

void SystemStateHandlerTest::aStateHandlerThatDiesDuringTheRequestIsGivenUp()
{
    QVERIFY(prepare());
    device().stateHandler().setBehaviour(StateHandlerStandIn::Behaviour::Vanishes);
    QVERIFY(launch());
    QVERIFY(awaitLog(invalidResult));
    QVERIFY(nextKeyWorks());
}

void SystemStateHandlerTest::aLateStateHandlerIsFollowed()
{
    options.stateHandler = false;
    QVERIFY(launch());
    QVERIFY(device().stateHandler().appear(device().bus().address()));
    device().setState(ls::StateId::Print);
    WAIT_FOR((tap(ls::KeyId::Up),
              actions().contains(QStringLiteral("announce SingleKey PrintManager KeyboardHandler Up"))));
}

void SystemStateHandlerTest::aRestartedStateHandlerIsFollowed()
{
    QVERIFY(launch());
    device().stateHandler().disappear();
    QVERIFY(nextKeyWorks());
    QVERIFY(device().stateHandler().appear(device().bus().address()));
    device().setState(ls::StateId::Error);
    WAIT_FOR((tap(ls::KeyId::Ok),
              actions().contains(QStringLiteral("announce SingleKey ErrorHandler KeyboardHandler Ok"))));
}

void SystemStateHandlerTest::afterAFloodOfNotificationsTheLastStateApplies()
{
    QVERIFY(launch());
    for (int i = 0; i < 5000; ++i) {
        device().setState(i % 2 == 0 ? ls::StateId::Print : ls::StateId::Error);
        device().stateHandler().announce({{"odd", i}});
    }
    device().setState(ls::StateId::Update);
    WAIT_FOR_EQUAL(log().count(invalidNotification), 5000);
    WAIT_FOR((tap(ls::KeyId::Ok),
              actions().contains(QStringLiteral("announce SingleKey UpdateManager KeyboardHandler Ok"))));
}

QTEST_GUILESS_MAIN(SystemStateHandlerTest)
#include "SystemStateHandlerTest.moc"
