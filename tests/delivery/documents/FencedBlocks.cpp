// SPDX-License-Identifier: MIT
#include "tests/delivery/documents/FencedBlocks.h"

#include <QFile>

namespace {

const QString fence = QStringLiteral("```");

} // namespace

FencedBlocks::FencedBlocks(const QString& fileName)
{
    QFile file(QStringLiteral(PROJECT_FOLDER "/docs/") + fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        return;
    }
    bool inside = false;
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
    for (const QString& line : lines) {
        if (!line.startsWith(fence)) {
            if (inside) {
                m_blocks.last().text += line + '\n';
            }
            continue;
        }
        inside = !inside;
        if (inside) {
            const QStringList words = line.mid(fence.size()).split(' ');
            m_blocks.append({words.first(), words.value(1), QStringLiteral("")});
        }
    }
}

QStringList FencedBlocks::names(const QString& language) const
{
    QStringList names;
    for (const Block& block : m_blocks) {
        if (block.language == language && !block.name.isEmpty()) {
            names.append(block.name);
        }
    }
    return names;
}

QString FencedBlocks::text(const QString& language, const QString& name) const
{
    for (const Block& block : m_blocks) {
        if (block.language == language && block.name == name) {
            return block.text;
        }
    }
    return {};
}

QStringList FencedBlocks::lines(const QString& language, const QString& name) const
{
    QStringList lines = text(language, name).split('\n');
    lines.removeLast();
    return lines;
}
