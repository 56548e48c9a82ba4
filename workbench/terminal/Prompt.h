// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

/// The lines that a person types at the terminal.
class Prompt : public QObject
{
    Q_OBJECT

public:
    explicit Prompt(QObject* parent = nullptr);

    /// Whether a person sits at standard input.
    static bool isAtTerminal();

    /// Shows that a line may be typed.
    void show();

Q_SIGNALS:
    void typed(const QString& line);
    void ended();

private:
    void read();

    QSocketNotifier m_notifier;
    QByteArray m_pending;
};
