// SPDX-License-Identifier: MIT
#include "model/Autorepeat.h"
#include "tests/support/Waiting.h"
#include "tests/whole/faults/FaultTest.h"

namespace {

constexpr qint32 released = 0;
constexpr qint32 repeated = 2;

RawRecord keyRecord(const QString& key, qint32 value)
{
    return {EV_KEY, quint16(ls::KeyId::meta.value(key)), value};
}

QByteArray bytesOf(const RawRecord& from)
{
    input_event record{};
    record.type = from.type;
    record.code = from.code;
    record.value = from.value;
    return {reinterpret_cast<const char*>(&record), int(sizeof record)};
}

} // namespace

class KeyFaultsTest : public FaultTest
{
    Q_OBJECT

private Q_SLOTS:
    void aKeyIsHeldAtTheStart();
    void aKeyIsReleasedWithoutAPress();
    void aKeyRepeatsForAnHour();

private:
    void repeatFeed(int keyboard, int times);
    void repeatForAnHour(int keyboard, const QString& key);
};

void KeyFaultsTest::repeatFeed(int keyboard, int times)
{
    for (int i = 0; i < times; ++i) {
        device().record(keyboard, keyRecord(ls::KeyId::Feed, repeated));
    }
}

/// The key was pressed before the daemon's start, so the daemon does not see the press.
void KeyFaultsTest::aKeyIsHeldAtTheStart()
{
    const int keyboard = dice.below(Panel::keyboardCount);
    int presses = 0;
    Fault fault;
    fault.precede = [&] { repeatFeed(keyboard, 1 + dice.below(3)); };
    fault.begin = [&] {
        repeatFeed(keyboard, 1 + dice.below(100));
        ++presses;
        WAIT_FOR_EQUAL(actions().filter(QStringLiteral("announce EjectPaper")).size(), presses);
        device().record(keyboard, keyRecord(ls::KeyId::Feed, released));
    };
    // Logged for the other state of the key's row.
    fault.log =
        QStringList{QStringLiteral("KeyboardManager::onEvent WARN: Expected state is:  \"PrintOff\" , "
                                   "but current state is:  \"Idle\" !\\?")};
    verifyResilience(fault);
}

void KeyFaultsTest::aKeyIsReleasedWithoutAPress()
{
    Fault fault;
    fault.begin = [&] {
        QVERIFY(awaitLoneKey());
        const auto spoken = [&] { return actions().filter(QStringLiteral("speak ")).size(); };
        const int before = spoken();
        const int keys = 1 + dice.below(500);
        for (int i = 0; i < keys; ++i) {
            // These keys open no row.
            const QString key = dice.pick({ls::KeyId::Up, ls::KeyId::Down, ls::KeyId::Right, ls::KeyId::Back,
                                           ls::KeyId::Ok, ls::KeyId::One, ls::KeyId::Ten});
            device().record(dice.below(Panel::keyboardCount), keyRecord(key, released));
        }
        WAIT_FOR_EQUAL(spoken(), before + keys);
    };
    fault.slackKiB = Fault::queueSlackKiB;
    verifyResilience(fault);
}

void KeyFaultsTest::repeatForAnHour(int keyboard, const QString& key)
{
    const QByteArray report = bytesOf(keyRecord(key, repeated)) + bytesOf({EV_SYN, SYN_REPORT, 1});
    const int reportsOfAWrite = 4096 / report.size(); // written atomically
    const std::chrono::milliseconds first(dice.below(int(Autorepeat::period.count())));
    int left = int((std::chrono::hours(1) - Autorepeat::delay - first) / Autorepeat::period);
    while (left > 0) {
        const int count = std::min(left, reportsOfAWrite);
        device().panel().writeRaw(keyboard, report.repeated(count));
        left -= count;
    }
}

/// The repetitions of an hour are written at once.
void KeyFaultsTest::aKeyRepeatsForAnHour()
{
    const int keyboard = dice.below(Panel::keyboardCount);
    const int freeKeyboard = 1 - keyboard;
    const QString key = dice.pick({ls::KeyId::Help, ls::KeyId::Feed, ls::KeyId::Off, ls::KeyId::Up});
    const auto isKeyHandledBetween = [&] {
        repeatForAnHour(keyboard, key);
        return !receiverOfMenu(freeKeyboard).isEmpty() && device().pendingInput() > 0;
    };
    Fault fault;
    // On a busy machine, the daemon may finish before the other key is written.
    fault.begin = [&] { WAIT_FOR(isKeyHandledBetween()); };
    fault.end = [&] { WAIT_FOR_EQUAL(device().pendingInput(), 0); };
    fault.freeKeyboards = {freeKeyboard};
    verifyResilience(fault);
}

QTEST_GUILESS_MAIN(KeyFaultsTest)
#include "KeyFaultsTest.moc"
