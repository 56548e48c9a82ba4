// SPDX-License-Identifier: MIT
// Measures the cost of one key event in the router against the number of rows in each key list. Must run in a
// private root.
#include "device/StateHandler.h"
#include "input/KeyboardManager.h"
#include "keys/KeyListFile.h"
#include "keys/LongKey.h"
#include "keys/ModifierKey.h"
#include "keys/ShortcutKey.h"
#include "service/KeyboardHandler.h"
#include "tests/fakes/FakeStateHandler.h"
#include "tests/virtual/MapReader.h"
#include "tests/virtual/VirtualDevice.h"

#include <ls/Identifiers.h>

#include <benchmark/benchmark.h>

#include <sys/stat.h>

namespace {

constexpr int minRows = 10;
constexpr int maxRows = 10'000;

/// No row starts with Up; only the last one starts with Function and ends with Up.
QList<QStringList> rowsOf(int count)
{
    const QStringList keys{ls::KeyId::Feed,  ls::KeyId::Help, ls::KeyId::Menu, ls::KeyId::Back,
                           ls::KeyId::Right, ls::KeyId::Down, ls::KeyId::Ok,   ls::KeyId::Chs};
    QList<QStringList> rows;
    for (int i = 1; i < count; ++i) {
        rows.append({keys.at(i % keys.size()), keys.at(i / keys.size() % keys.size())});
    }
    rows.append({ls::KeyId::Function, ls::KeyId::Up});
    return rows;
}

MapReader list(EnumDetail::RowKeyList section, int count)
{
    QVariantList rows;
    const QList<QStringList> keysOfRows = rowsOf(count);
    for (const QStringList& keys : keysOfRows) {
        rows.append(QVariantMap{{KeyListFields::keys, keys},
                                {KeyListFields::eAction, QStringLiteral("VolumeUp")},
                                {KeyListFields::receiverService, ls::ServiceId::UserMenu},
                                {KeyListFields::validOnState, ls::StateId::Print}});
    }
    return MapReader({{KeyListFile::sectionName(section), rows}});
}

/// The router of a printing device, with the same number of rows in each list.
class Router
{
public:
    explicit Router(int rows)
        : m_modifierList(list(EnumDetail::RowKeyList::ModifierKeys, rows))
        , m_shortcutList(list(EnumDetail::RowKeyList::ShortcutKeys, rows))
        , m_longList(list(EnumDetail::RowKeyList::LongKeys, rows))
    {}

    void press(const QString& key) { m_manager.simulateKey(key, QStringLiteral("Pressed")); }
    void release(const QString& key) { m_manager.simulateKey(key, QStringLiteral("Released")); }
    void repeat(const QString& key) { m_manager.simulateKey(key, QStringLiteral("Repeated")); }

private:
    MapReader m_modifierList;
    MapReader m_shortcutList;
    MapReader m_longList;
    KeyboardHandler m_handler{nullptr};
    ModifierKey m_modifierKey{m_modifierList, nullptr};
    ShortcutKey m_shortcutKey{m_shortcutList, nullptr};
    LongKey m_longKey{m_longList, nullptr};
    StateHandler m_stateHandler{nullptr};
    // The parent is destroyed later, so it does not delete this member.
    KeyboardManager m_manager{m_modifierKey, m_shortcutKey, m_longKey, m_stateHandler, m_handler};
};

void press(benchmark::State& state)
{
    Router router(int(state.range(0)));
    while (state.KeepRunning()) {
        router.press(ls::KeyId::Up);
    }
}

/// Each release is announced as a single key.
void release(benchmark::State& state)
{
    Router router(int(state.range(0)));
    while (state.KeepRunning()) {
        router.release(ls::KeyId::Up);
    }
}

void repeat(benchmark::State& state)
{
    Router router(int(state.range(0)));
    while (state.KeepRunning()) {
        router.repeat(ls::KeyId::Up);
    }
}

/// Presses the closing key of the last row's shortcut, which is recognised each time.
void shortcut(benchmark::State& state)
{
    Router router(int(state.range(0)));
    router.press(ls::KeyId::Function);
    while (state.KeepRunning()) {
        router.press(ls::KeyId::Up);
    }
}

BENCHMARK(press)->RangeMultiplier(10)->Range(minRows, maxRows);
BENCHMARK(release)->RangeMultiplier(10)->Range(minRows, maxRows);
BENCHMARK(repeat)->RangeMultiplier(10)->Range(minRows, maxRows);
BENCHMARK(shortcut)->RangeMultiplier(10)->Range(minRows, maxRows);

} // namespace

int main(int argc, char* argv[])
{
    VirtualDevice::clock();
    FakeStateHandler::setState(ls::StateId::Print);
    // The router ignores simulated keys unless its first device exists.
    for (const char* device : {"/dev/input/event0", "/dev/input/event1"}) {
        if (mkfifo(device, S_IRUSR | S_IWUSR) == -1) {
            std::perror(device);
            return EXIT_FAILURE;
        }
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
