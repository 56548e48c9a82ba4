// SPDX-License-Identifier: MIT
// Input records from the two devices' FIFOs to the router, with times, states and commands in between.
#include "tests/whole/fuzz/FuzzedDaemon.h"
#include "tests/whole/fuzz/Log.h"
#include "tests/whole/fuzz/Resources.h"
#include "tests/whole/fuzz/Target.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

using namespace std::chrono_literals;

namespace {

constexpr int kindsOfSteps = 16;
constexpr int maxKeysPerCommand = 6;
constexpr int keyValues = 3;
constexpr int maxTimers = 3;                        // lone key, long press, factory reset
constexpr long long maxRememberedBytes = 16 * 1024; // independent of the number of keys
// Around the router's limits and those of the key lists.
constexpr std::array<std::chrono::milliseconds, 8> times{1ms,    250ms,  999ms,  1000ms,
                                                         1499ms, 1500ms, 2000ms, 5000ms};

class InputRecords : public Target
{
public:
    InputRecords();
    void run(Bytes& bytes) override;

private:
    void step(Bytes& bytes);
    void anyRecord(Bytes& bytes);
    void anyBytes(Bytes& bytes);
    void key(int device, Bytes& bytes);
    void burst(Bytes& bytes);
    void command(Bytes& bytes);

    FuzzedDaemon m_daemon;
    const QList<int> m_codes = ls::KeyId::meta.values() + QList<int>{KEY_RESERVED, KEY_A, KEY_MAX};
    const QStringList m_keys = ls::KeyId::meta.keys();
    const QStringList m_states = ls::StateId::meta.keys();
};

InputRecords::InputRecords()
{
    m_daemon.setRichKeyLists();
    m_daemon.start();
}

void InputRecords::run(Bytes& bytes)
{
    const long long before = Resources::heldBytes();
    while (!bytes.isEmpty()) {
        step(bytes);
        Log::require(m_daemon.clock().timerCount() <= maxTimers, "there are three timers");
    }
    m_daemon.takeAnnouncements();
    Log::clear();
    Log::require(Resources::heldBytes() - before < maxRememberedBytes, "keys use little memory");
    m_daemon.requireThatItWorks();
}

void InputRecords::step(Bytes& bytes)
{
    const int kind = bytes.below(kindsOfSteps);
    switch (kind) {
    case 0:
        anyRecord(bytes);
        break;
    case 1:
        anyBytes(bytes);
        break;
    case 2:
        burst(bytes);
        break;
    case 3:
        m_daemon.setState(bytes.pick(m_states));
        break;
    case 4:
        command(bytes);
        break;
    case 5:
        m_daemon.wait(std::chrono::milliseconds(bytes.number<quint16>()));
        break;
    case 6:
    case 7:
    case 8:
        m_daemon.wait(bytes.pick(times));
        break;
    default:
        key(kind % 2, bytes);
    }
}

void InputRecords::anyRecord(Bytes& bytes)
{
    const int device = bytes.below(2);
    const auto type = bytes.number<quint16>();
    const auto code = bytes.number<quint16>();
    m_daemon.record(device, type, code, bytes.number<qint32>());
}

/// Need not be whole records.
void InputRecords::anyBytes(Bytes& bytes)
{
    const int device = bytes.below(2);
    m_daemon.write(device, bytes.take(bytes.next()));
}

void InputRecords::key(int device, Bytes& bytes)
{
    const auto code = static_cast<quint16>(bytes.pick(m_codes));
    m_daemon.record(device, EV_KEY, code, bytes.below(keyValues));
}

/// Writes several records at once; the daemon reads up to 32 at a time.
void InputRecords::burst(Bytes& bytes)
{
    const int device = bytes.below(2);
    const auto code = static_cast<quint16>(bytes.pick(m_codes));
    const int value = bytes.below(keyValues);
    m_daemon.write(device, FuzzedDaemon::recordOf(EV_KEY, code, value).repeated(bytes.next()));
}

void InputRecords::command(Bytes& bytes)
{
    QStringList keys;
    for (int i = bytes.below(maxKeysPerCommand); i > 0; --i) {
        keys.append(bytes.pick(m_keys));
    }
    m_daemon.process({{ls::commandIdKey, bytes.pick(ls::KeyboardHandlerCmdId::meta.keys())},
                      {ls::senderIdKey, bytes.pick(ls::ServiceId::meta.keys())},
                      {ls::actionIdKey, bytes.pick(ls::KeyActionId::meta.keys())},
                      {ls::keyKey, bytes.pick(m_keys)},
                      {ls::keysListKey, keys}});
}

} // namespace

std::unique_ptr<Target> Target::make()
{
    return std::make_unique<InputRecords>();
}
