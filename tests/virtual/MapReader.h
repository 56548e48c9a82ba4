// SPDX-License-Identifier: MIT
#pragma once

#include <ls/IReader.h>

#include <QStringList>

/// Returns one map for every file, or fails, and records the paths that were read.
class MapReader : public ls::IReader
{
public:
    MapReader() = default;
    explicit MapReader(const QVariantMap& content) : m_content(content), m_succeeds(true) {}

    /// A reader of a file with rows of these keys in `section`. The actions are "A0", "A1", ...
    static MapReader ofKeys(const QString& section, const QList<QStringList>& rows)
    {
        QVariantList list;
        for (const QStringList& keys : rows) {
            list.append(QVariantMap{{QStringLiteral("keys"), keys},
                                    {QStringLiteral("eAction"), QStringLiteral("A%1").arg(list.size())},
                                    {QStringLiteral("receiverService"), QStringLiteral("UserMenu")},
                                    {QStringLiteral("validOnState"), QStringLiteral("Idle")}});
        }
        return MapReader({{section, list}});
    }

    bool read(const QString& path, QVariantMap& content) override
    {
        paths.append(path);
        if (m_succeeds) {
            content = m_content;
        }
        return m_succeeds;
    }

    QStringList paths;

private:
    QVariantMap m_content;
    bool m_succeeds = false;
};
