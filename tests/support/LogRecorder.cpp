// SPDX-License-Identifier: MIT
#include "tests/support/LogRecorder.h"

#include <QMutexLocker>

#include <utility>

bool operator==(const LogLine& left, const LogLine& right)
{
    return left.type == right.type && left.category == right.category && left.text == right.text &&
           left.hasSource == right.hasSource;
}

LogRecorder::LogRecorder()
{
    Q_ASSERT(!s_current);
    s_current = this;
    m_previous = qInstallMessageHandler(&LogRecorder::record);
}

LogRecorder::~LogRecorder()
{
    qInstallMessageHandler(m_previous);
    s_current = nullptr;
}

QVector<LogLine> LogRecorder::lines() const
{
    const QMutexLocker locker(&m_mutex);
    return m_lines;
}

QVector<LogLine> LogRecorder::take()
{
    const QMutexLocker locker(&m_mutex);
    return std::exchange(m_lines, {});
}

QStringList LogRecorder::texts(QtMsgType type) const
{
    QStringList texts;
    for (const LogLine& line : lines()) {
        if (line.type == type) {
            texts.append(line.text);
        }
    }
    return texts;
}

void LogRecorder::record(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    const QMutexLocker locker(&s_current->m_mutex);
    const bool hasSource = context.file != nullptr || context.line != 0 || context.function != nullptr;
    s_current->m_lines.append({type, QString::fromLatin1(context.category), text, hasSource});
}
