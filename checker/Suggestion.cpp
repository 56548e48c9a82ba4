// SPDX-License-Identifier: MIT
#include "checker/Suggestion.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace checker {

namespace {

/// Longer words are not misspelt names.
constexpr int maxLength = 40;

/// How many letters must be inserted, removed, replaced or swapped with the next one, regardless of case.
int distance(const QString& word, const QString& name)
{
    const QString a = word.left(maxLength).toLower().left(maxLength); // some letters become two
    const QString b = name.left(maxLength).toLower().left(maxLength);
    // A file may have a hundred thousand unknown words: no allocation, and no calls in the inner loop.
    std::array<std::array<int, maxLength + 1>, maxLength + 1> cost;
    const QChar* const from = a.constData();
    const QChar* const to = b.constData();
    const auto rows = static_cast<size_t>(a.size());
    const auto columns = static_cast<size_t>(b.size());
    std::iota(&cost[0][0], &cost[0][0] + columns + 1, 0);
    for (size_t i = 1; i <= rows; ++i) {
        int* const line = &cost[i][0];
        const int* const above = &cost[i - 1][0];
        line[0] = static_cast<int>(i);
        for (size_t j = 1; j <= columns; ++j) {
            const int replaced = above[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
            const int moved = (above[j] < line[j - 1] ? above[j] : line[j - 1]) + 1;
            line[j] = replaced < moved ? replaced : moved;
            const bool isSwapped = i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1];
            if (isSwapped) {
                line[j] = std::min(line[j], cost[i - 2][j - 2] + 1);
            }
        }
    }
    return cost[rows][columns];
}

} // namespace

QString Suggestion::of(const QString& word, const QStringList& names)
{
    QString best;
    if (word.size() > maxLength) {
        return best;
    }
    int least = qMax(2, word.size() / 3) + 1;
    for (const QString& name : names) {
        if (name.size() > maxLength || qAbs(name.size() - word.size()) >= least) {
            continue; // each letter more or less is a change
        }
        const int changes = distance(word, name);
        // A name that has nothing in common with a short word is not a suggestion.
        if (changes < least && changes < name.size()) {
            least = changes;
            best = name;
        }
    }
    return best;
}

QString Suggestion::clear(const QString& word, const QStringList& names)
{
    constexpr int lettersOfAMistake = 4; // a word of eight letters may have two mistakes
    const int most = qMax(1, word.size() / lettersOfAMistake);
    const QString best = of(word, names);
    const int least = distance(word, best);
    const auto isAsNear = [&](const QString& name) { return distance(word, name) <= least; };
    const bool isClear =
        !best.isEmpty() && least <= most && std::count_if(names.begin(), names.end(), isAsNear) == 1;
    return isClear ? best : QString();
}

QString Suggestion::question(const QString& word, const QStringList& names)
{
    const QString name = of(word, names);
    return name.isEmpty() ? QString() : QStringLiteral(": did you mean \"%1\"?").arg(name);
}

} // namespace checker
