// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Check.h"

#include <QString>

namespace checker {

/// Findings as text for people, with excerpts of the files. Each line makes sense without colours.
class FindingText
{
public:
    FindingText(const ListSources& sources, bool hasColours) : m_sources(sources), m_hasColours(hasColours) {}

    /// One finding, with a blank line at its end.
    QString describe(const Finding& finding) const;
    /// How many findings there are, what was proved, and which rows were not searched.
    QString summary(const CheckResult& result) const;

private:
    QString heading(const Finding& finding) const;
    QString placesIn(model::List list, const Finding& finding, int margin) const;
    QString excerpt(const Place& place, QChar mark, int margin) const;
    QString unsearchedIn(const CheckResult& result) const;
    int lineOf(const Place& place) const;

    const ListSources& m_sources;
    bool m_hasColours;
};

/// "error", "warning" or "note".
QString nameOf(Level level);

} // namespace checker
