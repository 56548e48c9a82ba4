// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

/// Parses the text of a script file.
ParsedScript parseKeyScript(const QString& text);
/// Parses steps and expectations, without the header of a script.
ParsedScript parseKeyScriptSteps(const QString& text);
/// Parses the content of a script file; too much content is a fault.
ParsedScript parseScriptFile(const QByteArray& content);
/// Reads and parses a script file.
ParsedScript loadKeyScript(const QString& path);
/// The line of a step, without its time and its keyboard.
QString writeStep(const ScriptStep& step);
/// `script` as text, which parses to an equal script.
QString writeKeyScript(const KeyScript& script);
