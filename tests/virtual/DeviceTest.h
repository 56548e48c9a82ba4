// SPDX-License-Identifier: MIT
#pragma once

#include "tests/virtual/VirtualDevice.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <QtTest>

#include <chrono>

using namespace std::chrono_literals;
using namespace ls; // short identifiers: KeyId::Menu

/// Defines a `main` that runs the test on a virtual clock.
#define VIRTUAL_TIME_TEST_MAIN(Test)                                                                         \
    int main(int argc, char* argv[])                                                                         \
    {                                                                                                        \
        VirtualDevice::clock();                                                                              \
        Test test;                                                                                           \
        return QTest::qExec(&test, argc, argv);                                                              \
    }

/// The base class of tests of all the daemon's classes together, with a new device for each test function.
class DeviceTest : public QObject
{
    Q_OBJECT

protected:
    /// Creates and starts a device with `rows` as its key lists. Discards observations of the start.
    void start(const QString& state, const QVector<KeyRow>& rows,
               const QString& model = QStringLiteral("Pellit"))
    {
        device = std::make_unique<VirtualDevice>();
        device->setModel(model);
        device->setRows(rows.isEmpty() ? QVector<KeyRow>{KeyRow{}} : rows);
        device->start(state);
        device->take();
    }
    void start(const QString& state) { start(state, {}); }

    static KeyRow longRow(const QString& key, int seconds, const QString& states, const QString& action,
                          const QString& receiver = ServiceId::UserMenu)
    {
        return {KeyRow::Kind::Long, action, receiver, states, seconds, {key}};
    }
    static KeyRow modifierRow(const QStringList& keys, const QString& state, const QString& action,
                              const QString& receiver = ServiceId::UserMenu)
    {
        return {KeyRow::Kind::Modifier, action, receiver, state, 0, keys};
    }
    static KeyRow shortcutRow(const QStringList& keys, const QString& state, const QString& action,
                              const QString& receiver = ServiceId::UserMenu)
    {
        return {KeyRow::Kind::Shortcut, action, receiver, state, 0, keys};
    }

    std::unique_ptr<VirtualDevice> device;

private Q_SLOTS:
    void cleanup() { device.reset(); }
};
