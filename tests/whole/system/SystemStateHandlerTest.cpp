// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/whole/system/SystemTest.h"

#include <ls/BusNames.h>

#include <QDBusMessage>

using namespace std::chrono_literals;

namespace {

const QString invalidResult = QStringLiteral("StateHandler::getState ERROR: invalid result!");
const QString invalidNotification =
    QStringLiteral("StateHandler::onNotification ERROR: Invalid notification!");
const QString invalidState = QStringLiteral("StateHandler::onNotification ERROR: Invalid state received!");

QVariantMap stateChange(const QVariant& state)
{
    return {{ls::notificationIdKey, "StateChange"},
            {ls::actionIdKey, "StateChange"},
            {ls::senderIdKey, "StateHandler"},
            {ls::stateIdKey, state}};
}

QVariantMap without(QVariantMap map, const QString& key)
{
    map.remove(key);
    return map;
}

} // namespace

class SystemStateHandlerTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void withoutStateHandlerTheStateIsUndefined();
    void aSlowAnswerIsAwaited();
    void aStateHandlerThatDiesDuringTheRequestIsGivenUp();
    void aSilentStateHandlerIsGivenUp();
    void afterAMalformedAnswerTheStateIsUndefined_data();
    void afterAMalformedAnswerTheStateIsUndefined();
    void aLateStateHandlerIsFollowed();
    void aRestartedStateHandlerIsFollowed();
    void anotherServiceCannotAnnounceTheState();
    void malformedNotificationsChangeNothing_data();
    void malformedNotificationsChangeNothing();
    void announcementsWithoutMapChangeNothing_data();
    void announcementsWithoutMapChangeNothing();
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

void SystemStateHandlerTest::aSilentStateHandlerIsGivenUp()
{
    QVERIFY(prepare());
    device().stateHandler().setBehaviour(StateHandlerStandIn::Behaviour::StaysSilent);
    QVERIFY(launch());
    QVERIFY(awaitLog(invalidResult));
    QVERIFY(nextKeyWorks());
}

void SystemStateHandlerTest::afterAMalformedAnswerTheStateIsUndefined_data()
{
    const QVariantMap good{
        {ls::resultIdKey, "Success"}, {ls::errorIdKey, "Undefined"}, {ls::stateIdKey, "Print"}};
    QTest::addColumn<QVariantMap>("answer");
    QTest::addColumn<QString>("line");
    QTest::newRow("nothing") << QVariantMap() << invalidResult;
    QTest::newRow("no result") << without(good, ls::resultIdKey) << invalidResult;
    QTest::newRow("no error") << without(good, ls::errorIdKey) << invalidResult;
    QTest::newRow("no state") << without(good, ls::stateIdKey)
                              << "StateHandler::getState ERROR: \"stateId\" not found!";
    QVariantMap bad = good;
    bad.insert(ls::stateIdKey, "print");
    QTest::newRow("a state in small letters")
        << bad << "StateHandler::getState ERROR: invalid state \"print\"";
    bad.insert(ls::stateIdKey, QVariantMap{{"Print", 3}});
    QTest::newRow("a map as state") << bad << "StateHandler::getState ERROR: invalid state \"\"";
}

void SystemStateHandlerTest::afterAMalformedAnswerTheStateIsUndefined()
{
    QFETCH(QVariantMap, answer);
    QFETCH(QString, line);
    QVERIFY(prepare());
    device().stateHandler().setAnswer(answer);
    QVERIFY(launch());
    QVERIFY(awaitLog(line));
    tap(ls::KeyId::Up);
    QVERIFY(awaitAction(QStringLiteral("announce SingleKey UserMenu - Up")));
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

void SystemStateHandlerTest::anotherServiceCannotAnnounceTheState()
{
    QVERIFY(launch());
    BusConnection stranger(device().bus().address());
    QDBusMessage message = QDBusMessage::createSignal(ls::busPath, ls::busName(ls::ServiceId::StateHandler),
                                                      QStringLiteral("notification"));
    message << stateChange("Print");
    QVERIFY(stranger.get().send(message));
    // After the round trip of a command on the same connection, the daemon has received the signal.
    QDBusMessage call = QDBusMessage::createMethodCall(
        ls::busName(ls::ServiceId::KeyboardHandler), ls::busPath, ls::busName(ls::ServiceId::KeyboardHandler),
        QStringLiteral("process"));
    call << QVariantMap();
    QCOMPARE(stranger.get().call(call).type(), QDBusMessage::ReplyMessage);
    QVERIFY(nextKeyWorks());
}

void SystemStateHandlerTest::malformedNotificationsChangeNothing_data()
{
    const QVariantMap good = stateChange("Print");
    QTest::addColumn<QVariantMap>("notification");
    QTest::addColumn<QString>("line");
    QTest::newRow("nothing") << QVariantMap() << invalidNotification;
    QTest::newRow("no notification") << without(good, ls::notificationIdKey) << invalidNotification;
    QTest::newRow("no action") << without(good, ls::actionIdKey) << invalidNotification;
    QTest::newRow("no sender") << without(good, ls::senderIdKey) << invalidNotification;
    QTest::newRow("no state") << without(good, ls::stateIdKey) << invalidState;
    QTest::newRow("an unknown state") << stateChange("Sleep") << invalidState;
    QTest::newRow("a number as state") << stateChange(3) << invalidState;
    QTest::newRow("a list as state") << stateChange(QStringList{"Print", "Error"}) << invalidState;
    QTest::newRow("a map as state") << stateChange(QVariantMap{{"a", QVariantMap{{"b", 1}}}}) << invalidState;
    QTest::newRow("a very long state") << stateChange(QString(1'000'000, 'x')) << invalidState;
}

void SystemStateHandlerTest::malformedNotificationsChangeNothing()
{
    QFETCH(QVariantMap, notification);
    QFETCH(QString, line);
    QVERIFY(launch());
    device().stateHandler().announce(notification);
    QVERIFY(awaitLog(line));
    QVERIFY(nextKeyWorks());
}

void SystemStateHandlerTest::announcementsWithoutMapChangeNothing_data()
{
    QTest::addColumn<QVariantList>("arguments");
    QTest::newRow("nothing") << QVariantList();
    QTest::newRow("a text") << QVariantList{"Print"};
    QTest::newRow("a list") << QVariantList{QVariantList{"Print"}};
    QTest::newRow("a text and a map") << QVariantList{"Print", stateChange("Print")};
}

void SystemStateHandlerTest::announcementsWithoutMapChangeNothing()
{
    QFETCH(QVariantList, arguments);
    QVERIFY(launch());
    device().stateHandler().announceArguments(arguments);
    QVERIFY(awaitLog(QStringLiteral("ls::DBusService::onMessage ERROR: \"com.vantre.StateHandler\" announced "
                                    "something without a map.")));
    QVERIFY(nextKeyWorks());
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
