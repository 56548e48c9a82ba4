// SPDX-License-Identifier: MIT
#include "device/StateHandler.h"
#include "tests/fakes/FakeStateHandler.h"

#include <QtTest>

class StateHandlerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void queryHasThisServiceAsSender();
    void validAnswersGiveTheState_data();
    void validAnswersGiveTheState();
    void invalidAnswersGiveUndefined_data();
    void invalidAnswersGiveUndefined();
    void queryEmitsNothing();
    void everyValidStateIsEmitted_data();
    void everyValidStateIsEmitted();
    void sameStateIsEmittedAgain();
    void incompleteNotificationIsRefused_data();
    void incompleteNotificationIsRefused();
    void otherNotificationsAreIgnored_data();
    void otherNotificationsAreIgnored();
    void unknownStatesAreRefused_data();
    void unknownStatesAreRefused();
    void floodOfNotificationsLosesNone();

private:
    static QVariantMap stateChange(const QVariant& state);

    std::unique_ptr<StateHandler> handler;
    QStringList states;
};

void StateHandlerTest::init()
{
    handler = std::make_unique<StateHandler>(nullptr);
    states.clear();
    connect(handler.get(), &StateHandler::stateChange, this,
            [this](const QString& state) { states.append(state); });
    FakeStateHandler::takeRequests();
}

void StateHandlerTest::cleanup()
{
    handler.reset();
}

QVariantMap StateHandlerTest::stateChange(const QVariant& state)
{
    return {{"notificationId", "StateChange"}, {"actionId", "x"}, {"senderId", "y"}, {"stateId", state}};
}

void StateHandlerTest::queryHasThisServiceAsSender()
{
    FakeStateHandler::setState("Idle");
    handler->getState();
    const QVariantMap request{{"commandId", "GetState"}, {"senderId", "KeyboardHandler"}};
    QCOMPARE(FakeStateHandler::takeRequests(), QList<QVariantMap>{request});
}

void StateHandlerTest::validAnswersGiveTheState_data()
{
    QTest::addColumn<QVariantMap>("reply");
    QTest::addColumn<QString>("state");
    QTest::newRow("success") << QVariantMap{{"resultId", "Success"},
                                            {"errorId", "Undefined"},
                                            {"stateId", "Print"}}
                             << "Print";
    QTest::newRow("failure with a state")
        << QVariantMap{{"resultId", "Failure"}, {"errorId", "ServiceError"}, {"stateId", "Error"}} << "Error";
    QTest::newRow("result and error with other values")
        << QVariantMap{{"resultId", QVariant()}, {"errorId", QVariant()}, {"stateId", "PrintOff"}}
        << "PrintOff";
}

void StateHandlerTest::validAnswersGiveTheState()
{
    QFETCH(QVariantMap, reply);
    FakeStateHandler::setReply(reply);
    QTEST(QString(handler->getState()), "state");
}

void StateHandlerTest::invalidAnswersGiveUndefined_data()
{
    QTest::addColumn<QVariantMap>("reply");
    QTest::addColumn<QString>("text");
    const QVariantMap result{{"resultId", "Success"}, {"errorId", "Undefined"}};
    const auto withState = [&result](const QVariant& state) {
        QVariantMap map = result;
        map.insert("stateId", state);
        return map;
    };
    QTest::newRow("nothing") << QVariantMap{} << "invalid result!";
    QTest::newRow("a state without an error")
        << QVariantMap{{"resultId", "Success"}, {"stateId", "Idle"}} << "invalid result!";
    QTest::newRow("no result") << QVariantMap{{"errorId", "Undefined"}, {"stateId", "Idle"}}
                               << "invalid result!";
    QTest::newRow("no state") << result << "\"stateId\" not found!";
    QTest::newRow("other case") << withState("idle") << "invalid state \"idle\"";
    QTest::newRow("blank before the state") << withState(" Idle") << "invalid state \" Idle\"";
    QTest::newRow("empty state") << withState("") << "invalid state \"\"";
    QTest::newRow("list for a state") << withState(QVariantList{1, 2}) << "invalid state \"\"";
    QTest::newRow("number for a state") << withState(2) << "invalid state \"2\"";
}

void StateHandlerTest::invalidAnswersGiveUndefined()
{
    QFETCH(QVariantMap, reply);
    QFETCH(QString, text);
    FakeStateHandler::setReply(reply);
    QTest::ignoreMessage(QtCriticalMsg, qPrintable("StateHandler::getState ERROR: " + text));
    QCOMPARE(QString(handler->getState()), QString("Undefined"));
}

void StateHandlerTest::queryEmitsNothing()
{
    FakeStateHandler::setState("Idle");
    handler->getState();
    QCOMPARE(states, QStringList{});
}

void StateHandlerTest::everyValidStateIsEmitted_data()
{
    QTest::addColumn<QString>("state");
    for (const char* state : {"Startup", "Idle", "Print", "PrintOff", "Update", "Error"}) {
        QTest::newRow(state) << state;
    }
}

void StateHandlerTest::everyValidStateIsEmitted()
{
    QFETCH(QString, state);
    FakeStateHandler::notify(stateChange(state));
    QCOMPARE(states, QStringList{state});
}

void StateHandlerTest::sameStateIsEmittedAgain()
{
    FakeStateHandler::notify(stateChange("Idle"));
    FakeStateHandler::notify(stateChange("Idle"));
    QCOMPARE(states, (QStringList{"Idle", "Idle"}));
}

void StateHandlerTest::incompleteNotificationIsRefused_data()
{
    QTest::addColumn<QString>("missing");
    for (const char* key : {"notificationId", "actionId", "senderId"}) {
        QTest::newRow(key) << key;
    }
}

void StateHandlerTest::incompleteNotificationIsRefused()
{
    QFETCH(QString, missing);
    QVariantMap notification = stateChange("Idle");
    notification.remove(missing);
    QTest::ignoreMessage(QtCriticalMsg, "StateHandler::onNotification ERROR: Invalid notification!");
    FakeStateHandler::notify(notification);
    QCOMPARE(states, QStringList{});
}

void StateHandlerTest::otherNotificationsAreIgnored_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::newRow("another") << "PaperOut";
    QTest::newRow("other case") << "statechange";
    QTest::newRow("empty") << "";
}

void StateHandlerTest::otherNotificationsAreIgnored()
{
    QFETCH(QString, identifier);
    QVariantMap notification = stateChange("Idle");
    notification.insert("notificationId", identifier);
    QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
            qFatal("logged: %s", qPrintable(text));
        });
    FakeStateHandler::notify(notification);
    qInstallMessageHandler(previous);
    QCOMPARE(states, QStringList{});
}

void StateHandlerTest::unknownStatesAreRefused_data()
{
    QTest::addColumn<QVariant>("state");
    QTest::newRow("unknown") << QVariant("Sleeping");
    QTest::newRow("other case") << QVariant("IDLE");
    QTest::newRow("missing value") << QVariant();
    QTest::newRow("number") << QVariant(2);
    QTest::newRow("list") << QVariant(QStringList{"Idle", "Print"});
    QTest::newRow("map") << QVariant(QVariantMap{{"stateId", "Idle"}});
}

void StateHandlerTest::unknownStatesAreRefused()
{
    QFETCH(QVariant, state);
    QTest::ignoreMessage(QtCriticalMsg, "StateHandler::onNotification ERROR: Invalid state received!");
    FakeStateHandler::notify(stateChange(state));
    QCOMPARE(states, QStringList{});
}

void StateHandlerTest::floodOfNotificationsLosesNone()
{
    for (int i = 0; i < 10000; ++i) {
        FakeStateHandler::notify(stateChange(i % 2 == 0 ? "Idle" : "Print"));
    }
    QCOMPARE(states.size(), 10000);
    QCOMPARE(states.last(), QString("Print"));
}

QTEST_GUILESS_MAIN(StateHandlerTest)
#include "StateHandlerTest.moc"
