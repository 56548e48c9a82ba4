// SPDX-License-Identifier: MIT
#include "tests/support/BusPeer.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/Waiting.h"

#include <speech/Speech.h>

#include <QDBusConnectionInterface>
#include <QtTest>

#include <memory>

using libspeech::detail::Speech;

namespace {

const QString speechDaemon = QStringLiteral("com.vantre.SpeechDaemon");
const QVariantMap request{{"serviceId", 0}, {"sentenceId", 21}};

QStringList membersOf(const QList<QDBusMessage>& calls)
{
    QStringList members;
    for (const QDBusMessage& call : calls) {
        members.append(call.member());
    }
    return members;
}

} // namespace

class SpeechTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void existingDaemonIsConnected();
    void nothingIsReportedDuringConstruction();
    void laterDaemonIsConnected();
    void everyAppearanceIsReportedOnce();
    void appearanceDuringTheQueryIsReportedOnce();
    void disappearanceDuringTheQueryIsNotMissed();
    void changeOfOwnerIsADisconnectionAndAConnection();
    void absentDaemonIsNotReported();
    void sentenceIsRequestedWithoutReply();
    void cancellationIsRequestedWithoutReply();
    void requestsKeepTheirOrder();
    void refusedRequestsAreNotReported();
    void hangingDaemonDoesNotBlockTheCaller();
    void requestsToAnAbsentDaemonAreDropped();
    void daemonIsNotStartedForARequest();

private:
    void makeSpeech();

    PrivateBus m_bus{{speechDaemon}};
    std::unique_ptr<LogRecorder> m_log;
    std::unique_ptr<Speech> m_speech;
    QStringList m_events;
};

void SpeechTest::init()
{
    m_log = std::make_unique<LogRecorder>();
}

void SpeechTest::cleanup()
{
    m_speech.reset();
    m_log.reset();
    m_events.clear();
    m_bus.report();
    PrivateBus::waitForAbsence(speechDaemon);
}

void SpeechTest::makeSpeech()
{
    m_speech = std::make_unique<Speech>();
    connect(m_speech.get(), &Speech::connected, this, [this] { m_events.append("connected"); });
    connect(m_speech.get(), &Speech::disconnected, this, [this] { m_events.append("disconnected"); });
}

void SpeechTest::existingDaemonIsConnected()
{
    const BusPeer daemon(m_bus, speechDaemon);

    makeSpeech();

    WAIT_FOR_EQUAL(m_events, QStringList("connected"));
}

void SpeechTest::nothingIsReportedDuringConstruction()
{
    const BusPeer daemon(m_bus, speechDaemon);

    makeSpeech();
    QVERIFY(m_events.isEmpty());
    QDBusConnection::systemBus().interface()->isServiceRegistered(speechDaemon);
    QVERIFY(m_events.isEmpty());

    WAIT_FOR_EQUAL(m_events, QStringList("connected"));
}

void SpeechTest::laterDaemonIsConnected()
{
    makeSpeech();
    PrivateBus::settle();
    QVERIFY(m_events.isEmpty());

    const BusPeer daemon(m_bus, speechDaemon);

    WAIT_FOR_EQUAL(m_events, QStringList("connected"));
}

void SpeechTest::everyAppearanceIsReportedOnce()
{
    makeSpeech();
    QStringList expected;
    for (int i = 0; i < 10; ++i) {
        const BusPeer daemon(m_bus, speechDaemon);
        expected.append("connected");
        WAIT_FOR_EQUAL(m_events, expected);
        daemon.vanish();
        expected.append("disconnected");
        WAIT_FOR_EQUAL(m_events, expected);
    }
    PrivateBus::settle();
    QCOMPARE(m_events, expected);
}

void SpeechTest::appearanceDuringTheQueryIsReportedOnce()
{
    for (int i = 0; i < 50; ++i) {
        makeSpeech();
        const BusPeer daemon(m_bus, speechDaemon);
        WAIT_FOR_EQUAL(m_events, QStringList("connected"));
        PrivateBus::settle();
        QCOMPARE(m_events, QStringList("connected"));
        daemon.vanish();
        cleanup();
    }
}

void SpeechTest::disappearanceDuringTheQueryIsNotMissed()
{
    for (int i = 0; i < 50; ++i) {
        const BusPeer daemon(m_bus, speechDaemon);
        makeSpeech();
        daemon.vanish();
        PrivateBus::waitForAbsence(speechDaemon);
        WAIT_FOR(m_events.isEmpty() || m_events == QStringList({"connected", "disconnected"}));
        cleanup();
    }
}

void SpeechTest::changeOfOwnerIsADisconnectionAndAConnection()
{
    const BusPeer first(m_bus, speechDaemon);
    makeSpeech();
    WAIT_FOR_EQUAL(m_events, QStringList("connected"));

    const BusPeer second(m_bus, speechDaemon);

    WAIT_FOR_EQUAL(m_events, QStringList({"connected", "disconnected", "connected"}));
}

void SpeechTest::absentDaemonIsNotReported()
{
    makeSpeech();

    PrivateBus::settle();
    PrivateBus::settle();

    QVERIFY(m_events.isEmpty());
    QVERIFY(m_log->lines().isEmpty());
}

void SpeechTest::sentenceIsRequestedWithoutReply()
{
    const BusPeer daemon(m_bus, speechDaemon);
    makeSpeech();

    m_speech->speakFromId({{"serviceId", 1}, {"sentenceId", 69}, {"arguments", QStringList{"x"}}});

    WAIT_FOR_EQUAL(daemon.calls().size(), 1);
    const QDBusMessage call = daemon.calls().constFirst();
    QCOMPARE(call.path(), QString("/"));
    QCOMPARE(call.interface(), speechDaemon);
    QCOMPARE(call.member(), QString("speakFromId"));
    QCOMPARE(call.signature(), QString("a{sv}"));
    QCOMPARE(qdbus_cast<QVariantMap>(call.arguments().constFirst()),
             QVariantMap({{"serviceId", 1}, {"sentenceId", 69}, {"arguments", QStringList{"x"}}}));
    QVERIFY(!call.isReplyRequired());
}

void SpeechTest::cancellationIsRequestedWithoutReply()
{
    const BusPeer daemon(m_bus, speechDaemon);
    makeSpeech();

    m_speech->cancelAll();

    WAIT_FOR_EQUAL(daemon.calls().size(), 1);
    const QDBusMessage call = daemon.calls().constFirst();
    QCOMPARE(call.path(), QString("/"));
    QCOMPARE(call.interface(), speechDaemon);
    QCOMPARE(call.member(), QString("cancelAll"));
    QCOMPARE(call.signature(), QString());
    QVERIFY(!call.isReplyRequired());
}

void SpeechTest::requestsKeepTheirOrder()
{
    const BusPeer daemon(m_bus, speechDaemon);
    makeSpeech();

    m_speech->speakFromId(request);
    m_speech->cancelAll();
    m_speech->speakFromId(request);

    WAIT_FOR_EQUAL(membersOf(daemon.calls()), QStringList({"speakFromId", "cancelAll", "speakFromId"}));
}

void SpeechTest::refusedRequestsAreNotReported()
{
    const BusPeer daemon(m_bus, speechDaemon, [](const BusPeer& self, const QDBusMessage& call) {
        self.refuse(call, "com.vantre.Error.Busy", "busy");
    });
    makeSpeech();

    m_speech->speakFromId(request);
    m_speech->cancelAll();

    WAIT_FOR_EQUAL(daemon.calls().size(), 2);
    daemon.synchronise();
    PrivateBus::settle();
    QVERIFY(m_log->lines().isEmpty());
}

void SpeechTest::hangingDaemonDoesNotBlockTheCaller()
{
    const BusPeer daemon(m_bus, speechDaemon, &BusPeer::hang);
    makeSpeech();

    for (int i = 0; i < 1000; ++i) {
        m_speech->speakFromId(request);
    }

    WAIT_FOR_EQUAL(daemon.calls().size(), 1000);
    QVERIFY(m_log->lines().isEmpty());
}

void SpeechTest::requestsToAnAbsentDaemonAreDropped()
{
    makeSpeech();
    for (int i = 0; i < 1000; ++i) {
        m_speech->speakFromId(request);
    }
    PrivateBus::settle();

    const BusPeer daemon(m_bus, speechDaemon);
    WAIT_FOR_EQUAL(m_events, QStringList("connected"));
    m_speech->cancelAll();

    WAIT_FOR_EQUAL(membersOf(daemon.calls()), QStringList("cancelAll"));
    QVERIFY(m_log->lines().isEmpty());
}

void SpeechTest::daemonIsNotStartedForARequest()
{
    const QByteArray startLine = "Activating service name='com.vantre.SpeechDaemon'";
    makeSpeech();

    m_speech->speakFromId(request);
    m_speech->cancelAll();
    PrivateBus::settle();
    QVERIFY(!m_bus.output().contains(startLine));

    QDBusConnection::systemBus().interface()->startService(speechDaemon);
    WAIT_FOR(m_bus.output().contains(startLine));
}

QTEST_GUILESS_MAIN(SpeechTest)
#include "SpeechTest.moc"
