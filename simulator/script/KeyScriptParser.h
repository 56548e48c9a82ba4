// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <QHash>

/// Parses one key script. Any text results in a script or in faults.
class KeyScriptParser
{
public:
    enum class Begin { AtHeader, AtSteps };

    explicit KeyScriptParser(Begin begin);

    ParsedScript parse(const QString& text);

private:
    /// Takes the words after the keyword; returns a sentence about the fault, or an empty string.
    using Handler = QString (KeyScriptParser::*)(const QStringList& words);
    using Handlers = QHash<QString, Handler>;

    static const Handlers& headerHandlers();
    static const Handlers& stepHandlers();

    void readLine(const QString& line);
    QString readWords(const QString& keyword, const QStringList& words);

    QString readRecorded(const QStringList& words);
    QString readModel(const QStringList& words);
    QString readInitialState(const QStringList& words);
    QString readInitialService(const QStringList& words);
    QString readRow(const QStringList& words);

    QString readDevice(const QStringList& words);
    QString readPress(const QStringList& words);
    QString readRelease(const QStringList& words);
    QString readTap(const QStringList& words);
    QString readHold(const QStringList& words);
    QString readWait(const QStringList& words);
    QString readState(const QStringList& words);
    QString readService(const QStringList& words);
    QString readRecord(const QStringList& words);
    QString readCommand(const QStringList& words);
    QString readConsole(const QStringList& words);
    QString readExpect(const QStringList& words);

    QString readKey(ScriptStep::Kind kind, const QStringList& words, const QString& usage);
    void addKey(ScriptStep::Kind kind, const QString& key);
    void addStep(ScriptStep step);
    QString advance(std::chrono::milliseconds time);

    ParsedScript m_result;
    QString m_line;
    bool m_inHeader;
    bool m_hasState = false;
    int m_keyboard = 0;
    std::chrono::milliseconds m_now{0};
};
