// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// The fenced blocks of a document that have a name: those that begin with "```LANGUAGE NAME".
class FencedBlocks
{
public:
    /// Reads a document of the folder `docs/`. One that cannot be read has no blocks.
    explicit FencedBlocks(const QString& fileName);

    /// The names of the blocks in `language`, in their order; names that come twice are listed twice.
    QStringList names(const QString& language) const;
    /// The text of a block, with its last line end; null when there is none.
    QString text(const QString& language, const QString& name) const;
    /// The lines of a block; none when there is no such block.
    QStringList lines(const QString& language, const QString& name) const;

private:
    struct Block
    {
        QString language;
        QString name;
        QString text;
    };

    QVector<Block> m_blocks;
};
