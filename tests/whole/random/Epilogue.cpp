// SPDX-License-Identifier: MIT
#include "tests/whole/random/Epilogue.h"

using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

/// Longer than the factory-reset hold, because a record may have pressed that key permanently.
constexpr auto settleTime = 6s;
constexpr milliseconds tapTime = 50ms;
/// Slightly longer than the window after a release.
constexpr milliseconds windowTime = 1501ms;
constexpr auto quietTime = 10s;
constexpr auto lastTime = 2s;

void add(KeyScript& script, ScriptStep::Kind kind, const QString& text, int device = 0)
{
    script.steps.append({script.end, kind, device, text, {}, {}});
}

void tap(KeyScript& script, const QString& key)
{
    add(script, ScriptStep::Kind::Press, key);
    script.end += tapTime;
    add(script, ScriptStep::Kind::Release, key);
}

void releaseHeldKeys(KeyScript& script)
{
    QVector<QPair<int, QString>> held;
    for (const ScriptStep& step : qAsConst(script.steps)) {
        const QPair<int, QString> key{step.keyboard, step.text};
        if (step.kind == ScriptStep::Kind::Press && !held.contains(key)) {
            held.append(key);
        } else if (step.kind == ScriptStep::Kind::Release) {
            held.removeAll(key);
        }
    }
    for (const auto& key : qAsConst(held)) {
        add(script, ScriptStep::Kind::Release, key.second, key.first);
    }
}

} // namespace

KeyScript Epilogue::appendedTo(const KeyScript& script)
{
    KeyScript longer = script;
    add(longer, ScriptStep::Kind::State, ls::StateId::Idle);
    releaseHeldKeys(longer);
    longer.end += settleTime;
    tap(longer, ls::KeyId::Back);
    longer.end += windowTime + quietTime;
    tap(longer, ls::KeyId::Up);
    longer.end += lastTime;
    return longer;
}

milliseconds Epilogue::quietBegin(const KeyScript& script)
{
    return lastPress(script) - quietTime;
}

milliseconds Epilogue::lastPress(const KeyScript& script)
{
    return lastRelease(script) - tapTime;
}

milliseconds Epilogue::lastRelease(const KeyScript& script)
{
    return script.end - lastTime;
}
