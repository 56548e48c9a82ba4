// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

/// Reads the lines that are typed at the terminal.
class Prompt : public QObject
{
    Q_OBJECT

public:
    explicit Prompt(QObject* parent = nullptr);

    /// Whether standard input is a terminal.
    static bool isAtTerminal();

    /// Prints the prompt.
    void show();

Q_SIGNALS:
    void typed(const QString& line);
    void ended();

private:
    void read();

    QSocketNotifier m_notifier;
    QByteArray m_pending;
};
