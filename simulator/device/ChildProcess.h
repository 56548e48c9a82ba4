// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>

/// A process that ends when this one ends, however that comes about.
class ChildProcess : public QProcess
{
    Q_OBJECT

public:
    explicit ChildProcess(QObject* parent = nullptr);
    ~ChildProcess() override;

    /// Hands the file descriptor `descriptor` down to the process under the same number.
    void inherit(int descriptor) { m_inherited = descriptor; }

    /// Ends the process, by force after two seconds, and waits for it.
    void end();

protected:
    void setupChildProcess() override;

private:
    qint64 m_parent;
    int m_inherited = -1;
};
