// SPDX-License-Identifier: MIT
#include "checker/Suggestion.h"

#include <QVector>

#include <algorithm>
#include <numeric>

namespace checker {

namespace {

/// Longer words are not misspelt names.
constexpr int maxLength = 40;

/// How many letters must be inserted, removed, replaced or swapped with the next one.
int distance(const QString& a, const QString& b)
{
    QVector<QVector<int>> cost(a.size() + 1, QVector<int>(b.size() + 1));
    std::iota(cost[0].begin(), cost[0].end(), 0);
    for (int i = 1; i <= a.size(); ++i) {
        cost[i][0] = i;
        for (int j = 1; j <= b.size(); ++j) {
            const int replaced = cost[i - 1][j - 1] + (a.at(i - 1) == b.at(j - 1) ? 0 : 1);
            cost[i][j] = std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1, replaced});
            if (i > 1 && j > 1 && a.at(i - 1) == b.at(j - 2) && a.at(i - 2) == b.at(j - 1)) {
                cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
            }
        }
    }
    return cost[a.size()][b.size()];
}

} // namespace

QString Suggestion::of(const QString& word, const QStringList& names)
{
    QString best;
    int least = word.size() > maxLength ? 0 : qMax(2, word.size() / 3) + 1;
    for (const QString& name : names) {
        const int changes = distance(word.left(maxLength).toLower(), name.toLower());
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
    const auto changesTo = [&](const QString& name) {
        return distance(word.left(maxLength).toLower(), name.toLower());
    };
    const int least = changesTo(best);
    const auto isAsNear = [&](const QString& name) { return changesTo(name) <= least; };
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
