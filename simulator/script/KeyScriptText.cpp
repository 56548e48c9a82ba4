// SPDX-License-Identifier: MIT
#include "simulator/script/KeyScriptText.h"

#include "simulator/script/KeyScriptParser.h"

#include <QFile>

namespace {

constexpr qint64 maxFileSize = 1024 * 1024;

ParsedScript refused(const QString& fault)
{
    return {{}, {{0, fault}}};
}

} // namespace

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
    if (content.size() > maxFileSize) {
        return refused(QStringLiteral("The script is longer than %1 bytes.").arg(maxFileSize));
    }
    // With its size, because a NUL byte would otherwise end the text unnoticed.
    return parseKeyScript(QString::fromUtf8(content.constData(), content.size()));
}

ParsedScript loadKeyScript(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return refused(QStringLiteral("%1 cannot be read: %2").arg(path, file.errorString()));
    }
    const QByteArray content = file.read(maxFileSize + 1);
    if (content.size() > maxFileSize) {
        return refused(QStringLiteral("%1 is longer than %2 bytes.").arg(path).arg(maxFileSize));
    }
    return parseScriptFile(content);
}
