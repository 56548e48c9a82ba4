// SPDX-License-Identifier: MIT
#pragma once

#include "checker/PlaceOf.h"
#include "model/ListComparison.h"

#include <QByteArray>

#include <limits>

namespace checker {

/// A difference between two lists, in words. Names come from the key lists and may have control characters.
struct DifferenceWords
{
    QString state;
    /// What the person does.
    QString keys;
    /// What is noticed with the old and with the new list; empty if that is nothing.
    QStringList was;
    QStringList now;
    /// What only one of the lists does with the keys until the difference: "Chs up opens combinations with
    /// Chs".
    QStringList oldRules;
    QStringList newRules;
    /// The last of them that is about a row; empty if none is.
    QString oldCause;
    QString newCause;
};

/// Two lists with their names.
struct ComparedLists
{
    QString oldPath;
    QString newPath;
    model::KeyLists oldLists;
    model::KeyLists newLists;
    PlaceOf oldPlaceOf;
    PlaceOf newPlaceOf;
    /// Whether only announcements are compared.
    bool forServices = false;
};

/// The differences of two lists, by states and with the shortest keys first.
class DifferenceReport
{
public:
    /// Increases with each change that a program which reads the JSON must know. New members do not count.
    static constexpr int version = 1;

    /// How much is searched and reported.
    struct Extent
    {
        /// Searching two lists at once takes longer than one.
        model::Limits limits{2'000'000, 200'000'000};
        int maxDifferences = std::numeric_limits<int>::max();
        /// The characters of all differences. The last one may exceed it.
        int maxText = std::numeric_limits<int>::max();
    };

    /// Compares what one person with two fingers can do with the keys of the panel, while the state changes
    /// at most once.
    explicit DifferenceReport(const ComparedLists& compared) : DifferenceReport(compared, Extent()) {}
    DifferenceReport(const ComparedLists& compared, const Extent& extent);

    bool hasDifferences() const { return !m_words.isEmpty(); }
    /// Whether there are no other differences.
    bool isProved() const { return m_proof.isComplete; }

    /// Lines without control characters other than line ends.
    QString text() const;
    /// A document in UTF-8.
    QByteArray json() const;
    /// A whole page with a table for each state.
    QString html() const;

private:
    DifferenceWords wordsOf(const model::Difference& difference) const;
    static QStringList linesOf(const DifferenceWords& words);
    QString conclusion() const;

    ComparedLists m_compared;
    model::Proof m_proof;
    QVector<DifferenceWords> m_words;
    int m_leftOut = 0;
};

} // namespace checker
