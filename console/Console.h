// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantMap>

class KeyboardHandler;

/// The technician's console on standard input: runs a few commands by number, lists the numbers, and prints
/// every notification. All output goes through the log. Keeps no state between lines.
class Console : public QObject
{
    Q_OBJECT

public:
    /// `handler`, which is also the parent, executes the commands.
    explicit Console(KeyboardHandler* handler);

private Q_SLOTS:
    void onTextReceived(const QString& line);

private:
    bool runCommand(const QString& line);
    void execute(const QVariantMap& command);

    KeyboardHandler* m_handler;
};
