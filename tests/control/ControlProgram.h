// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/ChildProcess.h"

#include <QStringList>

/// A run of keyboard-handlerctl on a given bus, which ends with this object.
class ControlProgram
{
public:
    /// `view` are arguments of bubblewrap that change what the program sees of the file system.
    ControlProgram(const QString& busAddress, const QStringList& arguments, const QStringList& view = {});

    /// Replaces the shell command that runs the program, "$0" with the arguments "$@". Before `start`.
    void setShell(const QString& command) { m_shell = command; }
    void setVariable(const QString& name, const QString& value);
    void start();

    /// Starts the program if necessary and waits for its end; the event loop of the test runs meanwhile.
    /// Returns the exit status, or 128 plus the number of the signal that ended it.
    int status();
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    qint64 processId() const { return m_process.processId(); }

    /// What it has printed so far.
    QByteArray out();
    QByteArray err();
    QStringList lines() { return QString::fromUtf8(out()).split('\n', Qt::SkipEmptyParts); }

private:
    ChildProcess m_process;
    QProcessEnvironment m_variables = QProcessEnvironment::systemEnvironment();
    QStringList m_view;
    QStringList m_arguments;
    QString m_shell;
    bool m_isStarted = false;
    QByteArray m_out;
    QByteArray m_err;
};
