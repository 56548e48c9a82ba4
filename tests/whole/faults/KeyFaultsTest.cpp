// SPDX-License-Identifier: MIT
#include "simulator/panel/Autorepeat.h"
#include "tests/whole/faults/FaultTest.h"

namespace {

constexpr qint32 released = 0;
constexpr qint32 repeated = 2;

RawRecord keyRecord(const QString& key, qint32 value)
{
    return {EV_KEY, quint16(ls::KeyId::meta.value(key)), value};
}

/// The key was pressed before the daemon's start, so the daemon does not see the press.
class HeldKey : public Fault
{
public:
    using Fault::Fault;

    QString precede(FaultTest& test) override
    {
        repeat(test, 1 + dice.below(3));
        return {};
    }
    QString begin(FaultTest& test) override
    {
        const auto presses = [&] {
            return test.actions().filter(QStringLiteral("announce EjectPaper")).size();
        };
        repeat(test, 1 + dice.below(100));
        m_announced += 1;
        const bool isAnnounced = FaultTest::await([&] { return presses() == m_announced; });
        test.device().record(m_device, keyRecord(ls::KeyId::Feed, released));
        return isAnnounced ? QString() : QStringLiteral("%1 long presses").arg(presses());
    }
    /// Logged for the other state of the key's row.
    QStringList log() const override
    {
        return {QStringLiteral("KeyboardManager::onEvent WARN: Expected state is:  \"PrintOff\" , "
                               "but current state is:  \"Idle\" !\\?")};
    }

private:
    void repeat(FaultTest& test, int times) const
    {
        for (int i = 0; i < times; ++i) {
            test.device().record(m_device, keyRecord(ls::KeyId::Feed, repeated));
        }
    }

    const int m_device = dice.below(Panel::keyboardCount);
    int m_announced = 0;
};

class ReleasedKey : public Fault
{
public:
    using Fault::Fault;

    QString begin(FaultTest& test) override
    {
        if (!test.awaitLoneKey()) {
            return QStringLiteral("the router does not become idle");
        }
        const auto spoken = [&] { return test.actions().filter(QStringLiteral("speak ")).size(); };
        const int before = spoken();
        const int keys = 1 + dice.below(500);
        for (int i = 0; i < keys; ++i) {
            // These keys open no row.
            const QString key = dice.pick({ls::KeyId::Up, ls::KeyId::Down, ls::KeyId::Right, ls::KeyId::Back,
                                           ls::KeyId::Ok, ls::KeyId::One, ls::KeyId::Ten});
            test.device().record(dice.below(Panel::keyboardCount), keyRecord(key, released));
        }
        return FaultTest::await([&] { return spoken() == before + keys; })
                   ? QString()
                   : QStringLiteral("%1 of %2 keys are spoken").arg(spoken() - before).arg(keys);
    }
    qint64 slackKiB() const override { return queueSlackKiB; }
};

/// Writes the repetitions of an hour at once.
class RepeatingKey : public Fault
{
public:
    using Fault::Fault;

    QString begin(FaultTest& test) override
    {
        // On a busy machine, the daemon may finish before the other key is written.
        return FaultTest::await([&] {
            repeatForAnHour(test);
            return !test.receiverOfMenu(m_freeDevice).isEmpty() && test.device().pendingInput() > 0;
        })
                   ? QString()
                   : QStringLiteral("keys of the other device are not handled between the repetitions");
    }
    QVector<int> freeDevices() const override { return {m_freeDevice}; }
    QString end(FaultTest& test) override
    {
        return FaultTest::await([&] { return test.device().pendingInput() == 0; })
                   ? QString()
                   : QStringLiteral("the repetitions are not read");
    }

private:
    void repeatForAnHour(FaultTest& test)
    {
        const QByteArray report = bytesOf(keyRecord(m_key, repeated)) + bytesOf({EV_SYN, SYN_REPORT, 1});
        const int reportsOfAWrite = 4096 / report.size(); // written atomically
        const std::chrono::milliseconds first(dice.below(int(Autorepeat::period.count())));
        int left = int((std::chrono::hours(1) - Autorepeat::delay - first) / Autorepeat::period);
        while (left > 0) {
            const int count = std::min(left, reportsOfAWrite);
            test.device().panel().writeRaw(m_device, report.repeated(count));
            left -= count;
        }
    }
    static QByteArray bytesOf(const RawRecord& from)
    {
        input_event record{};
        record.type = from.type;
        record.code = from.code;
        record.value = from.value;
        return {reinterpret_cast<const char*>(&record), int(sizeof record)};
    }

    const int m_device = dice.below(Panel::keyboardCount);
    const int m_freeDevice = 1 - m_device;
    const QString m_key = dice.pick({ls::KeyId::Help, ls::KeyId::Feed, ls::KeyId::Off, ls::KeyId::Up});
};

} // namespace

class KeyFaultsTest : public FaultTest
{
    Q_OBJECT

private Q_SLOTS:
    void aKeyIsHeldAtTheStart();
    void aKeyIsReleasedWithoutAPress();
    void aKeyRepeatsForAnHour();
};

void KeyFaultsTest::aKeyIsHeldAtTheStart()
{
    HeldKey fault(seed());
    QCOMPARE(damageFrom(fault), QString());
}

void KeyFaultsTest::aKeyIsReleasedWithoutAPress()
{
    ReleasedKey fault(seed());
    QCOMPARE(damageFrom(fault), QString());
}

void KeyFaultsTest::aKeyRepeatsForAnHour()
{
    RepeatingKey fault(seed());
    QCOMPARE(damageFrom(fault), QString());
}

QTEST_GUILESS_MAIN(KeyFaultsTest)
#include "KeyFaultsTest.moc"
