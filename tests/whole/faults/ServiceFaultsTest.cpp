// SPDX-License-Identifier: MIT
#include "tests/support/ProcessFigures.h"
#include "tests/support/Waiting.h"
#include "tests/whole/faults/FaultTest.h"
#include "tests/whole/faults/StoppableService.h"
#include "tests/whole/system/BusClient.h"
#include "tests/whole/system/RawBusClient.h"

#include <ls/BusNames.h>

class ServiceFaultsTest : public FaultTest
{
    Q_OBJECT

private Q_SLOTS:
    void theStateHandlerIsStopped();
    void theStateHandlerIsStoppedAtTheStart();
    void theStateHandlerNeverAnswers();
    void theSpeechDaemonIsStopped();
    void theSpeechDaemonReadsSlowly();
    void receiversNeverRead();
    void aSubscriberFillsTheBus();

private:
    bool start(StoppableService& service, const QString& name)
    {
        return service.start(name, device().bus().address());
    }
    /// The fault is a state handler that does not answer after `silence`.
    void verifySilence(const std::function<void()>& silence);
};

void ServiceFaultsTest::theStateHandlerIsStopped()
{
    options.stateHandler = false;
    StoppableService service;
    Fault fault;
    fault.precede = [&] { QVERIFY(start(service, QStringLiteral("state-handler"))); };
    fault.begin = [&] {
        QVERIFY(service.stop());
        for (int i = dice.below(500); i >= 0; --i) {
            service.changeState(dice.pick({ls::StateId::Print, ls::StateId::Error, ls::StateId::Update}));
        }
        service.changeState(ls::StateId::Print);
    };
    fault.end = [&] {
        service.resume();
        QVERIFY(awaitReceiver(ls::ServiceId::PrintManager));
        service.changeState(ls::StateId::Idle);
        QVERIFY(awaitReceiver(ls::ServiceId::UserMenu));
    };
    fault.slackKiB = Fault::queueSlackKiB;
    verifyResilience(fault);
}

/// The state handler is silent at the daemon's start. Keys pressed before the timeout must not be lost.
void ServiceFaultsTest::verifySilence(const std::function<void()>& silence)
{
    const int earlyKeys = 1 + dice.below(100);
    Fault fault;
    fault.precede = [&] {
        silence();
        tapAny({ls::KeyId::Back}, earlyKeys);
    };
    fault.begin = [&] { WAIT_FOR_EQUAL(actions().filter(QStringLiteral(" Back")).size(), earlyKeys); };
    fault.log = QStringList{
        QStringLiteral("ls::DBusService::process ERROR: \"com\\.vantre\\.StateHandler\" gave no answer: "
                       "\"org\\.freedesktop\\.DBus\\.Error\\.NoReply\" \".*\""),
        QStringLiteral("StateHandler::getState ERROR: invalid result!")};
    verifyResilience(fault);
}

/// The request remains on the bus.
void ServiceFaultsTest::theStateHandlerIsStoppedAtTheStart()
{
    options.stateHandler = false;
    StoppableService service;
    verifySilence([&] { QVERIFY(start(service, QStringLiteral("state-handler")) && service.stop()); });
}

/// The state handler receives the request.
void ServiceFaultsTest::theStateHandlerNeverAnswers()
{
    verifySilence([&] { device().stateHandler().setBehaviour(StateHandlerStandIn::Behaviour::StaysSilent); });
}

void ServiceFaultsTest::theSpeechDaemonIsStopped()
{
    options.speechDaemon = false;
    StoppableService service;
    int keys = 0;
    Fault fault;
    fault.precede = [&] { QVERIFY(start(service, QStringLiteral("speechd"))); };
    fault.begin = [&] {
        QVERIFY(service.stop());
        keys = 1 + dice.below(1000);
        tapAny({ls::KeyId::Down}, keys);
    };
    fault.end = [&] {
        service.resume();
        int spoken = 0;
        WAIT_FOR((spoken += service.takeSpoken().count("speak EmbosserCore 25")) >= keys);
        QCOMPARE(spoken, keys);
    };
    fault.slackKiB = Fault::queueSlackKiB;
    verifyResilience(fault);
}

void ServiceFaultsTest::theSpeechDaemonReadsSlowly()
{
    constexpr int bytesAtOnce = 200;
    options.speechDaemon = false;
    std::unique_ptr<RawBusClient> client;
    QTimer timer;
    int spoken = 0;
    connect(&timer, &QTimer::timeout, this,
            [&] { spoken += client->read(bytesAtOnce).count("speakFromId"); });
    Fault fault;
    fault.precede = [&] {
        client = std::make_unique<RawBusClient>(device().folder().busSocket());
        QVERIFY(client->enter() && client->own(ls::busName(QStringLiteral("SpeechDaemon")).toUtf8()));
        timer.start(1 + dice.below(50));
    };
    fault.begin = [&] { tapAny({ls::KeyId::Up, ls::KeyId::Down, ls::KeyId::Right}, 500 + dice.below(500)); };
    fault.end = [&] { WAIT_FOR(spoken > 0); };
    fault.slackKiB = Fault::queueSlackKiB;
    verifyResilience(fault);
}

void ServiceFaultsTest::receiversNeverRead()
{
    std::vector<std::unique_ptr<RawBusClient>> receivers;
    Fault fault;
    fault.begin = [&] {
        for (int i = 1 + dice.below(20); i > 0; --i) {
            receivers.push_back(std::make_unique<RawBusClient>(device().folder().busSocket()));
            QVERIFY(receivers.back()->enter() &&
                    receivers.back()->listen("type='signal',member='notification'"));
        }
        device().setState(ls::StateId::Error);
        QVERIFY(awaitReceiver(ls::ServiceId::ErrorHandler));
        QSignalSpy announced(&device(), &SimulatedDevice::announced);
        const int keys = 1000 + dice.below(1000);
        tapAny({ls::KeyId::Up, ls::KeyId::Ok, ls::KeyId::Back}, keys);
        WAIT_FOR_EQUAL(announced.size(), keys);
    };
    fault.end = [&] {
        for (const auto& receiver : receivers) {
            QVERIFY2(receiver->read(64 * 1024).contains("KeyboardChange"),
                     "a receiver has no unread announcements");
        }
        receivers.clear();
        device().setState(ls::StateId::Idle);
        QVERIFY(awaitReceiver(ls::ServiceId::UserMenu));
    };
    fault.slackKiB = Fault::queueSlackKiB;
    verifyResilience(fault);
}

/// The subscriber does not read other clients' broadcasts until its queue on the bus is full.
void ServiceFaultsTest::aSubscriberFillsTheBus()
{
    constexpr int maxMessageSize = 31 * 1024 * 1024;
    constexpr int maxQueueSize = 127 * 1024 * 1024; // the limit of a client's queue on the bus
    std::unique_ptr<RawBusClient> subscriber;
    Fault fault;
    fault.begin = [&] {
        subscriber = std::make_unique<RawBusClient>(device().folder().busSocket());
        QVERIFY(subscriber->enter() && subscriber->listen("type='signal'"));
        QDBusMessage message = QDBusMessage::createSignal(
            QStringLiteral("/"), QStringLiteral("com.vantre.Stranger"), QStringLiteral("notification"));
        const int size = maxMessageSize / (1 + dice.below(4));
        message << QByteArray(size, 'x');
        for (int sent = 0; sent <= maxQueueSize + size; sent += size) {
            // A new sender each time, because the bus stops reading from one with so many queued messages.
            BusClient sender(device().bus().address());
            sender.connection().send(message);
            sender.connection().call(QDBusMessage::createMethodCall(
                QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
                QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId")));
        }
        QVERIFY(ProcessFigures::memoryKib(device().bus().processId(), QStringLiteral("Anonymous")) >=
                maxQueueSize / 1024);
    };
    fault.end = [&] { subscriber.reset(); };
    verifyResilience(fault);
}

QTEST_GUILESS_MAIN(ServiceFaultsTest)
#include "ServiceFaultsTest.moc"
