// SPDX-License-Identifier: MIT
#pragma once

#include <QtTest>

#include <chrono>
#include <functional>
#include <memory>

/// Waits without a timeout: on a busy machine, a test becomes slow but does not fail.
namespace Waiting {

/// The source text of a condition and its location.
struct Place
{
    const char* condition;
    const char* file;
    int line;
};

/// Runs the event loop until `holds` returns true. Prints the condition and its `state` every `reminderTime`,
/// so that a hanging test shows where it hangs.
void until(const std::function<bool()>& holds, const std::function<QByteArray()>& state, const Place& place,
           std::chrono::milliseconds reminderTime = std::chrono::seconds(10));

/// A value as printed by QtTest.
template <typename Value>
QByteArray text(const Value& value)
{
    const std::unique_ptr<char[]> printed(QTest::toString(value));
    return printed ? printed.get() : "(not printable)";
}

template <typename Actual, typename Expected>
void untilEqual(const Actual& actual, const Expected& expected, const Place& place)
{
    until([&] { return actual() == expected(); },
          [&] { return text(actual()) + " instead of " + text(expected()); }, place);
}

} // namespace Waiting

/// Waits until the condition holds.
#define WAIT_FOR(condition)                                                                                  \
    Waiting::until([&] { return bool(condition); }, [] { return QByteArray("not yet"); },                    \
                   {#condition, __FILE__, __LINE__})

/// Waits until the two are equal.
#define WAIT_FOR_EQUAL(actual, expected)                                                                     \
    Waiting::untilEqual([&] { return actual; }, [&] { return expected; },                                    \
                        {#actual " == " #expected, __FILE__, __LINE__})
