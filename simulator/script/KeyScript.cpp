// SPDX-License-Identifier: MIT
#include "simulator/script/KeyScript.h"

#include "simulator/script/KeyListJson.h"
#include "simulator/script/KeyScriptParser.h"

#include <QFile>

#include <algorithm>

namespace {

constexpr qint64 largestFile = 1024 * 1024;

ParsedScript refused(const QString& fault)
{
    return {{}, {{0, fault}}};
}

} // namespace

const QString ServiceChange::stateHandler = QStringLiteral("state-handler");
const QString ServiceChange::speechDaemon = QStringLiteral("speechd");

std::chrono::milliseconds KeyScript::duration() const
{
    std::chrono::milliseconds last = steps.isEmpty() ? end : std::max(end, steps.last().at);
    for (const Observation& expectation : expectations) {
        last = std::max(last, expectation.at);
    }
    return last;
}

QMap<QString, QByteArray> KeyScript::keyLists() const
{
    return rows.isEmpty() ? QMap<QString, QByteArray>() : KeyListJson::filesOf(rows);
}

ParsedScript parseKeyScript(const QString& text)
{
    return KeyScriptParser(KeyScriptParser::Begin::AtHeader).parse(text);
}

ParsedScript parseKeyScriptSteps(const QString& text)
{
    return KeyScriptParser(KeyScriptParser::Begin::AtSteps).parse(text);
}

ParsedScript parseScriptFile(const QByteArray& content)
{
    if (content.size() > largestFile) {
        return refused(QStringLiteral("The script is longer than %1 bytes.").arg(largestFile));
    }
    // With its size: a NUL byte would end the text unseen.
    return parseKeyScript(QString::fromUtf8(content.constData(), content.size()));
}

ParsedScript loadKeyScript(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return refused(QStringLiteral("%1 cannot be read: %2").arg(path, file.errorString()));
    }
    const QByteArray content = file.read(largestFile + 1);
    if (content.size() > largestFile) {
        return refused(QStringLiteral("%1 is longer than %2 bytes.").arg(path).arg(largestFile));
    }
    return parseScriptFile(content);
}
