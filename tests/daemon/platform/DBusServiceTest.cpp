// SPDX-License-Identifier: MIT
#include "tests/support/BusPeer.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/Waiting.h"

#include <ls/BusNames.h>
#include <ls/DBusService.h>
#include <ls/DBusServiceStore.h>
#include <ls/Identifiers.h>

#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QtTest>

#include <memory>

namespace {

const QString stateHandler = ls::busName(ls::ServiceId::StateHandler);
const QVariantMap command{{"commandId", "GetState"}};
const QVariantMap nested{{"a", QVariantList{1, QVariantMap{{"b", QStringList{"x"}}}}}, {"c", QVariantMap()}};

QString processError(const QString& reason)
{
    return QStringLiteral("ls::DBusService::process ERROR: \"com.vantre.StateHandler\" ") + reason;
}

BusPeer::Behaviour answerWith(const QVariantList& arguments)
{
    return [arguments](const BusPeer& self, const QDBusMessage& call) { self.reply(call, arguments); };
}

QVariant busVariant(const QVariant& value)
{
    return QVariant::fromValue(QDBusVariant(value));
}

/// Rows of argument lists whose first argument is not a map.
void addRowsWithoutMap()
{
    QTest::addColumn<QVariantList>("arguments");

    QTest::newRow("no arguments") << QVariantList();
    QTest::newRow("string") << QVariantList{"Idle"};
    QTest::newRow("integer") << QVariantList{2};
    QTest::newRow("strings") << QVariantList{QStringList{"stateId", "Idle"}};
    QTest::newRow("bytes") << QVariantList{QByteArray("x")};
    QTest::newRow("list") << QVariantList{QVariantList{command}};
    QTest::newRow("object path") << QVariantList{QVariant::fromValue(QDBusObjectPath("/"))};
    QTest::newRow("map as second argument") << QVariantList{"Idle", command};
}

} // namespace

class DBusServiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void commandReachesTheService();
    void replyMapIsUnpacked_data();
    void replyMapIsUnpacked();
    void replyWithoutMapIsReported_data() { addRowsWithoutMap(); }
    void replyWithoutMapIsReported();
    void absentServiceIsReported();
    void serviceIsNotStartedForACommand();
    void refusalIsReported();
    void hangingServiceIsReported();
    void serviceThatDisappearsDuringACallIsReported();
    void lateAnswerIsAccepted();
    void notificationIsAnnouncedUnpacked_data();
    void notificationIsAnnouncedUnpacked();
    void notificationWithoutMapIsReported_data() { addRowsWithoutMap(); }
    void notificationWithoutMapIsReported();
    void invalidNotificationDoesNotAffectTheNext();
    void notificationsKeepTheirOrder();
    void notificationDuringACommandIsNotLost();
    void serviceMayAppearLateAndReappear();
    void serviceMayChangeItsOwner();
    void notificationOfAnImpostorIsIgnored();
    void storeCreatesOneProxyPerService();

private:
    QList<QVariantMap> notifications() const;
    QStringList errors() const { return m_log->texts(QtCriticalMsg); }

    PrivateBus m_bus{{ls::busName(ls::ServiceId::UpdateManager)}};
    std::unique_ptr<LogRecorder> m_log;
    std::unique_ptr<ls::DBusService> m_service;
    std::unique_ptr<QSignalSpy> m_spy;
};

void DBusServiceTest::init()
{
    m_log = std::make_unique<LogRecorder>();
    m_service = std::make_unique<ls::DBusService>(ls::ServiceId::StateHandler);
    m_spy = std::make_unique<QSignalSpy>(m_service.get(), &ls::DBusService::notification);
}

void DBusServiceTest::cleanup()
{
    m_spy.reset();
    m_service.reset();
    m_log.reset();
    m_bus.report();
    PrivateBus::waitForAbsence(stateHandler);
}

QList<QVariantMap> DBusServiceTest::notifications() const
{
    QList<QVariantMap> maps;
    for (const QVariantList& arguments : *m_spy) {
        maps.append(arguments.constFirst().toMap());
    }
    return maps;
}

void DBusServiceTest::commandReachesTheService()
{
    const BusPeer peer(m_bus, stateHandler, &BusPeer::echo);

    QCOMPARE(m_service->process(command), command);

    const QDBusMessage call = peer.calls().constFirst();
    QCOMPARE(call.path(), QString("/"));
    QCOMPARE(call.interface(), QString("com.vantre.StateHandler"));
    QCOMPARE(call.member(), QString("process"));
    QCOMPARE(call.signature(), QString("a{sv}"));
    QVERIFY(call.isReplyRequired());
    QVERIFY(m_log->lines().isEmpty());
}

void DBusServiceTest::replyMapIsUnpacked_data()
{
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QVariantMap>("expected");

    QTest::newRow("map") << QVariantList{command} << command;
    QTest::newRow("empty map") << QVariantList{QVariantMap()} << QVariantMap();
    QTest::newRow("nested values") << QVariantList{nested} << nested;
    QTest::newRow("map in a variant") << QVariantList{busVariant(nested)} << nested;
    QTest::newRow("further arguments") << QVariantList{command, 1, "x"} << command;
}

void DBusServiceTest::replyMapIsUnpacked()
{
    QFETCH(QVariantList, arguments);
    const BusPeer peer(m_bus, stateHandler, answerWith(arguments));

    QTEST(m_service->process(command), "expected");
    QVERIFY(m_log->lines().isEmpty());
}

void DBusServiceTest::replyWithoutMapIsReported()
{
    QFETCH(QVariantList, arguments);
    const BusPeer peer(m_bus, stateHandler, answerWith(arguments));

    QCOMPARE(m_service->process(command), QVariantMap());
    QCOMPARE(errors(), QStringList(processError("answered without a map.")));
    QCOMPARE(m_log->lines().size(), 1);
}

void DBusServiceTest::absentServiceIsReported()
{
    QCOMPARE(m_service->process(command), QVariantMap());
    QCOMPARE(errors(),
             QStringList(processError("gave no answer: \"org.freedesktop.DBus.Error.NameHasNoOwner\" "
                                      "\"Name \\\"com.vantre.StateHandler\\\" does not exist\"")));
    QCOMPARE(m_log->lines().size(), 1);
}

void DBusServiceTest::serviceIsNotStartedForACommand()
{
    ls::DBusService startable(ls::ServiceId::UpdateManager);

    QCOMPARE(startable.process(command), QVariantMap());
    QVERIFY(errors().constFirst().contains("org.freedesktop.DBus.Error.NameHasNoOwner"));
}

void DBusServiceTest::refusalIsReported()
{
    const BusPeer peer(m_bus, stateHandler, [](const BusPeer& self, const QDBusMessage& call) {
        self.refuse(call, "com.vantre.Error.Busy", "not \"now\"\nagain later");
    });

    QCOMPARE(m_service->process(command), QVariantMap());
    QCOMPARE(errors(), QStringList(processError("gave no answer: \"com.vantre.Error.Busy\" "
                                                "\"not \\\"now\\\"\\nagain later\"")));
}

void DBusServiceTest::hangingServiceIsReported()
{
    const BusPeer peer(m_bus, stateHandler, &BusPeer::hang);

    QCOMPARE(m_service->process(command), QVariantMap());
    QCOMPARE(errors().size(), 1);
    QVERIFY(errors().constFirst().startsWith(
        processError("gave no answer: \"org.freedesktop.DBus.Error.NoReply\" \"Did not receive a reply.")));
}

void DBusServiceTest::serviceThatDisappearsDuringACallIsReported()
{
    const BusPeer peer(m_bus, stateHandler, [](const BusPeer& self, const QDBusMessage&) { self.vanish(); });

    QCOMPARE(m_service->process(command), QVariantMap());
    QCOMPARE(errors(), QStringList(processError("gave no answer: \"org.freedesktop.DBus.Error.NoReply\" "
                                                "\"Message recipient disconnected from message bus without "
                                                "replying\"")));
}

void DBusServiceTest::lateAnswerIsAccepted()
{
    const BusPeer peer(m_bus, stateHandler, [](const BusPeer& self, const QDBusMessage& call) {
        QThread::sleep(3);
        self.reply(call, {nested});
    });

    QCOMPARE(m_service->process(command), nested);
    QVERIFY(m_log->lines().isEmpty());
}

void DBusServiceTest::notificationIsAnnouncedUnpacked_data()
{
    replyMapIsUnpacked_data();
}

void DBusServiceTest::notificationIsAnnouncedUnpacked()
{
    QFETCH(QVariantList, arguments);
    QFETCH(QVariantMap, expected);
    const BusPeer peer(m_bus, stateHandler);

    peer.announce(arguments);

    WAIT_FOR_EQUAL(notifications(), QList<QVariantMap>{expected});
    QVERIFY(m_log->lines().isEmpty());
}

void DBusServiceTest::notificationWithoutMapIsReported()
{
    QFETCH(QVariantList, arguments);
    const BusPeer peer(m_bus, stateHandler);

    peer.announce(arguments);

    WAIT_FOR_EQUAL(errors(), QStringList("ls::DBusService::onMessage ERROR: \"com.vantre.StateHandler\" "
                                         "announced something without a map."));
    QVERIFY(m_spy->isEmpty());
}

void DBusServiceTest::invalidNotificationDoesNotAffectTheNext()
{
    const BusPeer peer(m_bus, stateHandler);

    peer.announce({"no map"});
    peer.announce({nested});

    WAIT_FOR_EQUAL(notifications(), QList<QVariantMap>{nested});
    QCOMPARE(errors().size(), 1);
}

void DBusServiceTest::notificationsKeepTheirOrder()
{
    const BusPeer peer(m_bus, stateHandler);
    QList<QVariantMap> announced;

    for (int i = 0; i < 500; ++i) {
        announced.append({{"number", i}});
        peer.announce({announced.constLast()});
    }

    WAIT_FOR_EQUAL(notifications(), announced);
}

void DBusServiceTest::notificationDuringACommandIsNotLost()
{
    const BusPeer peer(m_bus, stateHandler, [](const BusPeer& self, const QDBusMessage& call) {
        self.announce({nested});
        self.reply(call, {command});
    });

    QCOMPARE(m_service->process(command), command);

    WAIT_FOR_EQUAL(notifications(), QList<QVariantMap>{nested});
}

void DBusServiceTest::serviceMayAppearLateAndReappear()
{
    for (int appearance = 1; appearance <= 20; ++appearance) {
        const BusPeer peer(m_bus, stateHandler, &BusPeer::echo);
        peer.announce({command});
        WAIT_FOR_EQUAL(m_spy->size(), appearance);
        QCOMPARE(m_service->process(nested), nested);
    }

    QVERIFY(m_log->lines().isEmpty());
}

void DBusServiceTest::serviceMayChangeItsOwner()
{
    const BusPeer first(m_bus, stateHandler, answerWith({QVariantMap{{"peer", 1}}}));
    QCOMPARE(m_service->process(command).value("peer"), QVariant(1));

    const BusPeer second(m_bus, stateHandler, answerWith({QVariantMap{{"peer", 2}}}));
    second.announce({nested});

    QCOMPARE(m_service->process(command).value("peer"), QVariant(2));
    WAIT_FOR_EQUAL(notifications(), QList<QVariantMap>{nested});
}

void DBusServiceTest::notificationOfAnImpostorIsIgnored()
{
    const BusPeer previous(m_bus, stateHandler);
    const BusPeer owner(m_bus, stateHandler);

    previous.announce({QVariantMap{{"stateId", "Error"}}});
    previous.synchronise();
    owner.announce({nested});

    WAIT_FOR_EQUAL(notifications(), QList<QVariantMap>{nested});
}

void DBusServiceTest::storeCreatesOneProxyPerService()
{
    ls::DBusServiceStore* const store = ls::DBusServiceStore::instance();
    QCOMPARE(ls::DBusServiceStore::instance(), store);
    QVERIFY(!store->getService(ls::ServiceId::StateHandler));

    store->registerService(ls::ServiceId::StateHandler);
    store->registerService(ls::ServiceId::PrintManager);
    ls::DBusService* const service = store->getService(ls::ServiceId::StateHandler);
    store->registerService(ls::ServiceId::StateHandler);

    QVERIFY(service);
    QCOMPARE(store->getService(ls::ServiceId::StateHandler), service);
    QVERIFY(store->getService(ls::ServiceId::PrintManager) != service);
    QVERIFY(!store->getService(ls::ServiceId::UserMenu));
}

QTEST_GUILESS_MAIN(DBusServiceTest)
#include "DBusServiceTest.moc"
