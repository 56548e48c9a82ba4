// SPDX-License-Identifier: MIT
#include "service/KeyboardHandler.h"
#include "tests/support/LogRecorder.h"
#include "tests/virtual/DeviceTest.h"

class ServiceObjectTest : public DeviceTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { start(StateId::Idle); }
    void refusedCommandsNameTheirError_data();
    void refusedCommandsNameTheirError();
    void refusedCommandsSetNoSender_data() { refusedCommandsNameTheirError_data(); }
    void refusedCommandsSetNoSender();
    void everyKnownServiceMaySendAnyCommand();
    void senderIsResetEvenIfAParameterReplacedIt();
    void commandIsTracedInItsCategory();
    void refusedCommandsAreNotTraced_data();
    void refusedCommandsAreNotTraced();
    void everyFieldOfTheNotificationMayBeReplaced_data();
    void everyFieldOfTheNotificationMayBeReplaced();
    void senderIsResetBeforeTheNotificationIsEmitted();
    void metaCastKnowsTheSharedInterface();

private:
    QVariantMap emitted(const QVariantMap& parameters);
};

void ServiceObjectTest::refusedCommandsNameTheirError_data()
{
    const QString prefix = "log KeyboardHandler::process ERROR: ";
    QTest::addColumn<QVariantMap>("command");
    QTest::addColumn<QString>("error");
    QTest::addColumn<QString>("line");
    QTest::newRow("empty map") << QVariantMap{} << "InvalidCmd" << prefix + "Invalid command!";
    QTest::newRow("no command and no service")
        << QVariantMap{{"senderId", "Nobody"}} << "InvalidCmd" << prefix + "Invalid command!";
    QTest::newRow("command in another case")
        << QVariantMap{{"commandId", "getlastkey"}, {"senderId", "UserMenu"}} << "InvalidCmd"
        << prefix + "Invalid command!";
    QTest::newRow("command that is not a string")
        << QVariantMap{{"commandId", QVariantList{1}}, {"senderId", "UserMenu"}} << "InvalidCmd"
        << prefix + "Invalid command!";
    QTest::newRow("no sender") << QVariantMap{{"commandId", "GetLastKey"}} << "InvalidSender"
                               << prefix + "Invalid sender!";
    QTest::newRow("unknown sender") << QVariantMap{{"commandId", "GetLastKey"}, {"senderId", "Nobody"}}
                                    << "InvalidSender" << prefix + "Invalid sender!";
    QTest::newRow("sender with a trailing blank")
        << QVariantMap{{"commandId", "GetLastKey"}, {"senderId", "UserMenu "}} << "InvalidSender"
        << prefix + "Invalid sender!";
    QTest::newRow("not served, from an unknown sender")
        << QVariantMap{{"commandId", "GetKeyList"}, {"senderId", "Nobody"}} << "InvalidSender"
        << prefix + "Invalid sender!";
    QTest::newRow("known but not served")
        << QVariantMap{{"commandId", "GetKeyList"}, {"senderId", "UserMenu"}} << "CmdNotFound"
        << prefix + "\"GetKeyList\" command n/a!";
}

void ServiceObjectTest::refusedCommandsNameTheirError()
{
    QFETCH(QVariantMap, command);
    QFETCH(QString, error);
    QFETCH(QString, line);
    const QVariantMap expected{{"resultId", "Failure"}, {"errorId", error}};
    QCOMPARE(device->handler().process(command), expected);
    QCOMPARE(device->take(), QStringList{line});
}

void ServiceObjectTest::refusedCommandsSetNoSender()
{
    QFETCH(QVariantMap, command);
    device->handler().process(command);
    QCOMPARE(emitted({}).value(senderIdKey).toString(), QString());
}

void ServiceObjectTest::everyKnownServiceMaySendAnyCommand()
{
    const QVariantMap success{{"resultId", "Success"}, {"errorId", "Undefined"}};
    for (auto service = ServiceId::meta.cbegin(); service != ServiceId::meta.cend(); ++service) {
        QCOMPARE(device->handler().process({{commandIdKey, "StartTestMode"}, {senderIdKey, service.key()}}),
                 success);
    }
}

void ServiceObjectTest::senderIsResetEvenIfAParameterReplacedIt()
{
    device->process({{commandIdKey, "GetLastKey"}, {senderIdKey, "WwwApi"}});
    emitted({{senderIdKey, "PrintManager"}});
    QCOMPARE(emitted({}).value(senderIdKey).toString(), QString("KeyboardHandler"));
}

void ServiceObjectTest::commandIsTracedInItsCategory()
{
    LogRecorder log;
    QLoggingCategory::setFilterRules("KeyboardHandler.debug=true");
    device->handler().process({{commandIdKey, "StartTestMode"}, {senderIdKey, "WwwApi"}});
    QLoggingCategory::setFilterRules({});
    const QVector<LogLine> expected{
        {QtDebugMsg, "KeyboardHandler", R"(process command - "StartTestMode" from sender - "WwwApi")"}};
    QCOMPARE(log.take(), expected);
    device->handler().process({{commandIdKey, "StartTestMode"}, {senderIdKey, "WwwApi"}});
    QCOMPARE(log.take(), {});
}

void ServiceObjectTest::refusedCommandsAreNotTraced_data()
{
    refusedCommandsNameTheirError_data();
}

void ServiceObjectTest::refusedCommandsAreNotTraced()
{
    QFETCH(QVariantMap, command);
    QFETCH(QString, line);
    const LogRecorder log;
    QLoggingCategory::setFilterRules("KeyboardHandler.debug=true");
    device->handler().process(command);
    QLoggingCategory::setFilterRules({});
    const QVector<LogLine> expected{{QtCriticalMsg, "default", line.mid(int(qstrlen("log ")))}};
    QCOMPARE(log.lines(), expected);
}

void ServiceObjectTest::metaCastKnowsTheSharedInterface()
{
    QVERIFY(device->handler().qt_metacast("ls::IDBusAdaptor"));
    QVERIFY(device->handler().qt_metacast("com.vantre.IDBusAdaptor"));
}

QVariantMap ServiceObjectTest::emitted(const QVariantMap& parameters)
{
    QSignalSpy spy(&device->handler(), &KeyboardHandler::notification);
    device->handler().sendKeyboardChange("Act", "UserMenu", parameters);
    return spy.value(0).value(0).toMap();
}

void ServiceObjectTest::everyFieldOfTheNotificationMayBeReplaced_data()
{
    QTest::addColumn<QString>("field");
    for (const QString& field : {notificationIdKey, actionIdKey, senderIdKey, receiverIdKey}) {
        QTest::newRow(qPrintable(field)) << field;
    }
}

void ServiceObjectTest::everyFieldOfTheNotificationMayBeReplaced()
{
    QFETCH(QString, field);
    const QVariantMap map = emitted({{field, "Other"}});
    QCOMPARE(map.value(field).toString(), QString("Other"));
    QCOMPARE(map.size(), 4);
}

void ServiceObjectTest::senderIsResetBeforeTheNotificationIsEmitted()
{
    const auto connection =
        connect(&device->handler(), &KeyboardHandler::notification, this, [this](const QVariantMap&) {
            device->handler().process({{commandIdKey, "GetLastKey"}, {senderIdKey, "WwwApi"}});
        });
    device->tap(KeyId::Menu);
    disconnect(connection);
    device->take();
    device->tap(KeyId::Menu);
    QCOMPARE(device->take(), QStringList{"announce SingleKey UserMenu WwwApi Menu"});
}

VIRTUAL_TIME_TEST_MAIN(ServiceObjectTest)
#include "ServiceObjectTest.moc"
