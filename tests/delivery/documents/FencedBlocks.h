// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// The named fenced blocks of a document, which start with "```LANGUAGE NAME".
class FencedBlocks
{
public:
    /// Reads a document of the folder `docs/`. An unreadable document has no blocks.
    explicit FencedBlocks(const QString& fileName);

    /// The names of the blocks in `language`, in their order, including duplicates.
    QStringList names(const QString& language) const;
    /// The text of a block, with its last line end; null if the block does not exist.
    QString text(const QString& language, const QString& name) const;
    /// The lines of a block; empty if the block does not exist.
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
