// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Check.h"

#include <QJsonObject>

/// What the checks of `keyboard-handler-keys` find in the key lists of a device. Takes up to seconds for
/// lists of thousands of rows.
class ListFindings
{
public:
    static constexpr int maxAlike = 100;

    /// Without the findings that the installed lists have as well: each of those is intended.
    static ListFindings of(const QMap<QString, QByteArray>& keyLists, const QString& model);

    /// The findings for a terminal, at most 20; empty if there are none.
    QString toText() const;
    /// The document of `check --format json`, with at most `maxAlike` findings with each id and as many rows
    /// that were not searched; `leftOut` counts the other findings.
    QJsonObject toJson() const;

private:
    checker::ListSources m_sources;
    checker::CheckResult m_result;
};
