// SPDX-License-Identifier: MIT
#include "tests/support/ProcessFigures.h"
#include "tests/whole/faults/FaultTest.h"
#include "tests/whole/faults/StoppableService.h"
#include "tests/whole/system/BusClient.h"
#include "tests/whole/system/RawBusClient.h"

#include <ls/BusNames.h>

namespace {

const QStringList noAnswer{
    QStringLiteral("ls::DBusService::process ERROR: \"com\\.vantre\\.StateHandler\" gave no answer: "
                   "\"org\\.freedesktop\\.DBus\\.Error\\.NoReply\" \".*\""),
    QStringLiteral("StateHandler::getState ERROR: invalid result!")};

class StoppedStateHandler : public Fault
{
public:
    using Fault::Fault;

    void configure(DeviceOptions& options) override { options.stateHandler = false; }
    QString precede(FaultTest& test) override
    {
        return m_service.start(QStringLiteral("state-handler"), test.device().bus().address())
                   ? QString()
                   : QStringLiteral("the state handler does not start");
    }
    QString begin(FaultTest&) override
    {
        if (!m_service.stop()) {
            return QStringLiteral("the state handler is gone");
        }
        for (int i = dice.below(500); i >= 0; --i) {
            m_service.changeState(dice.pick({ls::StateId::Print, ls::StateId::Error, ls::StateId::Update}));
        }
        m_service.changeState(ls::StateId::Print);
        return {};
    }
    QString end(FaultTest& test) override
    {
        m_service.resume();
        if (!test.awaitReceiver(ls::ServiceId::PrintManager)) {
            return QStringLiteral("the changes of state are lost");
        }
        m_service.changeState(ls::StateId::Idle);
        return test.awaitReceiver(ls::ServiceId::UserMenu) ? QString()
                                                           : QStringLiteral("the last change is lost");
    }
    qint64 slackKiB() const override { return queueSlackKiB; }

private:
    StoppableService m_service;
};

/// The state handler is silent at the daemon's start. Keys pressed before the timeout must not be lost.
class SilentStateHandler : public Fault
{
public:
    using Fault::Fault;

    QString precede(FaultTest& test) override
    {
        test.device().stateHandler().setBehaviour(StateHandlerStandIn::Behaviour::StaysSilent);
        for (int i = 0; i < m_earlyKeys; ++i) {
            test.tap(ls::KeyId::Back, dice.below(Panel::keyboardCount));
        }
        return {};
    }
    QString begin(FaultTest& test) override
    {
        const auto early = [&] { return test.actions().filter(QStringLiteral(" Back")).size(); };
        return FaultTest::await([&] { return early() == m_earlyKeys; })
                   ? QString()
                   : QStringLiteral("%1 of %2 early keys").arg(early()).arg(m_earlyKeys);
    }
    QStringList log() const override { return noAnswer; }

private:
    const int m_earlyKeys = 1 + dice.below(100);
};

/// The request remains on the bus, while a running but silent state handler receives it.
class StateHandlerStoppedAtStart : public SilentStateHandler
{
public:
    using SilentStateHandler::SilentStateHandler;

    void configure(DeviceOptions& options) override { options.stateHandler = false; }
    QString precede(FaultTest& test) override
    {
        const QString address = test.device().bus().address();
        if (!m_service.start(QStringLiteral("state-handler"), address) || !m_service.stop()) {
            return QStringLiteral("the state handler does not start");
        }
        return SilentStateHandler::precede(test);
    }

private:
    StoppableService m_service;
};

class StoppedSpeechDaemon : public Fault
{
public:
    using Fault::Fault;

    void configure(DeviceOptions& options) override { options.speechDaemon = false; }
    QString precede(FaultTest& test) override
    {
        return m_service.start(QStringLiteral("speechd"), test.device().bus().address())
                   ? QString()
                   : QStringLiteral("the speech daemon does not start");
    }
    QString begin(FaultTest& test) override
    {
        if (!m_service.stop()) {
            return QStringLiteral("the speech daemon is gone");
        }
        m_keys = 1 + dice.below(1000);
        for (int i = 0; i < m_keys; ++i) {
            test.tap(ls::KeyId::Down, dice.below(Panel::keyboardCount));
        }
        return {};
    }
    QString end(FaultTest&) override
    {
        m_service.resume();
        int spoken = 0;
        const bool isAllSpoken = FaultTest::await([&] {
            spoken += m_service.takeSpoken().count("speak EmbosserCore 25");
            return spoken >= m_keys;
        });
        return isAllSpoken && spoken == m_keys
                   ? QString()
                   : QStringLiteral("%1 of %2 keys are spoken").arg(spoken).arg(m_keys);
    }
    qint64 slackKiB() const override { return queueSlackKiB; }

private:
    StoppableService m_service;
    int m_keys = 0;
};

class SlowSpeechDaemon : public Fault
{
public:
    using Fault::Fault;

    void configure(DeviceOptions& options) override { options.speechDaemon = false; }
    QString precede(FaultTest& test) override
    {
        m_client = std::make_unique<RawBusClient>(test.device().folder().busSocket());
        QObject::connect(&m_timer, &QTimer::timeout,
                         [this] { m_spoken += m_client->read(bytesAtOnce).count("speakFromId"); });
        m_timer.start(1 + dice.below(50));
        return m_client->enter() && m_client->own(ls::busName(QStringLiteral("SpeechDaemon")).toUtf8())
                   ? QString()
                   : QStringLiteral("the speech daemon does not start");
    }
    QString begin(FaultTest& test) override
    {
        for (int i = 500 + dice.below(500); i > 0; --i) {
            test.tap(dice.pick({ls::KeyId::Up, ls::KeyId::Down, ls::KeyId::Right}));
        }
        return {};
    }
    QString end(FaultTest&) override
    {
        return FaultTest::await([this] { return m_spoken > 0; }) ? QString()
                                                                 : QStringLiteral("nothing is spoken");
    }
    qint64 slackKiB() const override { return queueSlackKiB; }

private:
    static constexpr int bytesAtOnce = 200;

    std::unique_ptr<RawBusClient> m_client;
    QTimer m_timer;
    int m_spoken = 0;
};

class BlockedReceivers : public Fault
{
public:
    using Fault::Fault;

    QString begin(FaultTest& test) override
    {
        for (int i = 1 + dice.below(20); i > 0; --i) {
            m_receivers.push_back(std::make_unique<RawBusClient>(test.device().folder().busSocket()));
            if (!m_receivers.back()->enter() ||
                !m_receivers.back()->listen("type='signal',member='notification'")) {
                return QStringLiteral("the receivers cannot join the bus");
            }
        }
        test.device().setState(ls::StateId::Error);
        if (!test.awaitReceiver(ls::ServiceId::ErrorHandler)) {
            return QStringLiteral("the state does not change");
        }
        QSignalSpy announced(&test.device(), &SimulatedDevice::announced);
        const int keys = 1000 + dice.below(1000);
        for (int i = 0; i < keys; ++i) {
            test.tap(dice.pick({ls::KeyId::Up, ls::KeyId::Ok, ls::KeyId::Back}));
        }
        return FaultTest::await([&] { return announced.size() == keys; })
                   ? QString()
                   : QStringLiteral("%1 of %2 keys").arg(announced.size()).arg(keys);
    }
    QString end(FaultTest& test) override
    {
        for (const auto& receiver : m_receivers) {
            if (!receiver->read(64 * 1024).contains("KeyboardChange")) {
                return QStringLiteral("a receiver has no unread announcements");
            }
        }
        m_receivers.clear();
        test.device().setState(ls::StateId::Idle);
        return test.awaitReceiver(ls::ServiceId::UserMenu) ? QString()
                                                           : QStringLiteral("the state does not change");
    }
    qint64 slackKiB() const override { return queueSlackKiB; }

private:
    std::vector<std::unique_ptr<RawBusClient>> m_receivers;
};

/// A subscriber that does not read other clients' broadcasts until its queue on the bus is full.
class FilledBus : public Fault
{
public:
    using Fault::Fault;

    QString begin(FaultTest& test) override
    {
        m_subscriber = std::make_unique<RawBusClient>(test.device().folder().busSocket());
        if (!m_subscriber->enter() || !m_subscriber->listen("type='signal'")) {
            return QStringLiteral("the subscriber cannot join the bus");
        }
        QDBusMessage message = QDBusMessage::createSignal(
            QStringLiteral("/"), QStringLiteral("com.vantre.Stranger"), QStringLiteral("notification"));
        const int size = maxMessageSize / (1 + dice.below(4));
        message << QByteArray(size, 'x');
        for (int sent = 0; sent <= maxQueueSize + size; sent += size) {
            // A new sender each time, because the bus stops reading from one with so many queued messages.
            BusClient sender(test.device().bus().address());
            sender.connection().send(message);
            sender.connection().call(QDBusMessage::createMethodCall(
                QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
                QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId")));
        }
        const int held =
            ProcessFigures::memoryKib(test.device().bus().processId(), QStringLiteral("Anonymous"));
        return held >= maxQueueSize / 1024 ? QString() : QStringLiteral("the bus is not full");
    }
    QString end(FaultTest&) override
    {
        m_subscriber.reset();
        return {};
    }

private:
    static constexpr int maxMessageSize = 31 * 1024 * 1024;
    static constexpr int maxQueueSize = 127 * 1024 * 1024; // the limit of a client's queue on the bus

    std::unique_ptr<RawBusClient> m_subscriber;
};

} // namespace

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
};

void ServiceFaultsTest::theStateHandlerIsStopped()
{
    StoppedStateHandler fault(seed());
    QCOMPARE(damageFrom(fault), QString());
}

void ServiceFaultsTest::theStateHandlerIsStoppedAtTheStart()
{
    StateHandlerStoppedAtStart fault(seed());
    QCOMPARE(damageFrom(fault), QString());
}

void ServiceFaultsTest::theStateHandlerNeverAnswers()
{
    SilentStateHandler fault(seed());
    QCOMPARE(damageFrom(fault), QString());
}

void ServiceFaultsTest::theSpeechDaemonIsStopped()
{
    StoppedSpeechDaemon fault(seed());
    QCOMPARE(damageFrom(fault), QString());
}

void ServiceFaultsTest::theSpeechDaemonReadsSlowly()
{
    SlowSpeechDaemon fault(seed());
    QCOMPARE(damageFrom(fault), QString());
}

void ServiceFaultsTest::receiversNeverRead()
{
    BlockedReceivers fault(seed());
    QCOMPARE(damageFrom(fault), QString());
}

void ServiceFaultsTest::aSubscriberFillsTheBus()
{
    FilledBus fault(seed());
    QCOMPARE(damageFrom(fault), QString());
}

QTEST_GUILESS_MAIN(ServiceFaultsTest)
#include "ServiceFaultsTest.moc"
