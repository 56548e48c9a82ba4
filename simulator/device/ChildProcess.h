// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>

/// A process that ends with this one, whatever ends this one.
class ChildProcess : public QProcess
{
    Q_OBJECT

public:
    explicit ChildProcess(QObject* parent = nullptr);
    ~ChildProcess() override;

    /// Passes the file descriptor `descriptor` to the process under the same number.
    void inherit(int descriptor) { m_inherited = descriptor; }

    /// Terminates the process, kills it after two seconds, and waits for its end.
    void end();

protected:
    void setupChildProcess() override;

private:
    qint64 m_parent;
    int m_inherited = -1;
};
