// SPDX-License-Identifier: MIT
#include "tests/whole/fuzz/Log.h"

#include <QMutex>
#include <QMutexLocker>
#include <QQueue>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int maxKept = 300;

// Qt's bus thread also logs.
QMutex g_mutex;
QQueue<QString> g_lines;

void keep(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(text));
        return; // Qt aborts
    }
    const QMutexLocker locker(&g_mutex);
    if (g_lines.size() == maxKept) {
        g_lines.dequeue();
    }
    g_lines.enqueue(text);
}

} // namespace

void Log::capture()
{
    qInstallMessageHandler(keep);
}

void Log::clear()
{
    const QMutexLocker locker(&g_mutex);
    g_lines.clear();
}

int Log::count(const QString& text)
{
    const QMutexLocker locker(&g_mutex);
    return g_lines.count(text);
}

void Log::require(bool holds, const char* what)
{
    if (holds) {
        return;
    }
    for (const QString& line : qAsConst(g_lines)) {
        std::fprintf(stderr, "log: %s\n", qPrintable(line));
    }
    std::fprintf(stderr, "== BROKEN RULE: %s\n", what);
    std::abort();
}
