// SPDX-License-Identifier: MIT
#include "card/CardSentences.h"

#include "keys/KeyRules.h"
#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>

#include <algorithm>

namespace {

constexpr int maxActionLength = 40;
const QString comma = QStringLiteral(", ");

QString orEmpty(const QString& text)
{
    return text.trimmed().isEmpty() ? QStringLiteral("(empty)") : text;
}

/// "Up", "Up and Down", "Up, Down and Ok".
QString enumeration(const QStringList& words, const QString& conjunction)
{
    if (words.size() < 2) {
        return words.join(QString());
    }
    return words.mid(0, words.size() - 1).join(comma) + conjunction + words.last();
}

QString seconds(int milliseconds)
{
    return QString::number(milliseconds / 1000.0, 'f', milliseconds % 1000 == 0 ? 0 : 2);
}

/// `text` with the waiting time of a released key in place of %1.
QString withWait(const QString& text)
{
    return text.arg(QStringLiteral("%1 ms").arg(KeyRules::singleKeyInterval.count()));
}

QString combination(const QStringList& keys)
{
    QString text = QStringLiteral("Press and release ") + keys.value(0);
    for (int i = 1; i < keys.size(); ++i) {
        text += QStringLiteral(", then ") + keys.at(i);
        text += keys.at(i) == keys.at(i - 1) ? QStringLiteral(" again") : QString();
    }
    return text + QLatin1Char('.');
}

QString shortcut(const QStringList& keys)
{
    const QString opening = keys.value(0);
    const QString closing = keys.value(1);
    return opening == closing
               ? QStringLiteral("Hold %1 on one input device and press %1 on the other.").arg(opening)
               : QStringLiteral("Hold %1 and press %2.").arg(opening, closing);
}

QString single(const QStringList& keys)
{
    const QString text = keys.size() > 1 ? QStringLiteral("Press and release one of %1.")
                                         : QStringLiteral("Press and release %1.");
    return text.arg(enumeration(keys, QStringLiteral(" or ")));
}

QString sentenceOf(KeyCardConsequence consequence)
{
    switch (consequence) {
    case KeyCardConsequence::NotSpokenAnnouncedAtRelease:
        return QStringLiteral("Announced at the release, not spoken.");
    case KeyCardConsequence::MenuNotSpokenAnnouncedAtRelease:
        return withWait(
            QStringLiteral("Announced at the release, not spoken; within %1 after Help it is spoken and "
                           "waits like other keys."));
    case KeyCardConsequence::NotSpokenAnnouncedAfterWait:
        return withWait(QStringLiteral("Announced %1 after the release, not spoken."));
    case KeyCardConsequence::SpokenAnnouncedAfterWait:
        return withWait(QStringLiteral("Spoken at the release, announced %1 later."));
    case KeyCardConsequence::SpokenAsZeroAnnouncedAfterWait:
        return withWait(QStringLiteral("Spoken as sentence 0 at the release, announced %1 later."));
    case KeyCardConsequence::EachRelease:
        return QStringLiteral("Each release is also announced as a single key.");
    case KeyCardConsequence::Menu:
        return QStringLiteral("Menu is also announced as a single key.");
    case KeyCardConsequence::MenuUnlessAfterHelp:
        return QStringLiteral("Menu is also announced as a single key when it is released, unless Help "
                              "was released just before.");
    case KeyCardConsequence::MenuUnlessAfterHelpAndNextKey:
        return QStringLiteral("Menu is also announced as a single key when it is released, unless Help "
                              "was released just before; a key released after it is announced as a single "
                              "key, too.");
    case KeyCardConsequence::FactoryReset:
        return QStringLiteral("The factory reset is also announced, after %1 seconds.")
            .arg(seconds(int(KeyRules::factoryResetHold.count())));
    case KeyCardConsequence::LastKey:
        return QStringLiteral("The key released last is also announced as a single key, because this action "
                              "does not silence its keys.");
    }
    return {};
}

bool haveSameOutcome(const KeyCardEntry& one, const KeyCardEntry& other)
{
    return one.kind == other.kind && one.receivers == other.receivers &&
           one.consequences == other.consequences;
}

} // namespace

QVector<KeyCardEntry> CardSentences::withSingleKeysJoined(const QVector<KeyCardEntry>& entries)
{
    QVector<KeyCardEntry> joined;
    for (const KeyCardEntry& entry : entries) {
        const auto same =
            entry.kind == KeyCardKind::Single
                ? std::find_if(joined.begin(), joined.end(),
                               [&entry](const KeyCardEntry& other) { return haveSameOutcome(entry, other); })
                : joined.end();
        if (same == joined.end()) {
            joined.append(entry);
        } else {
            same->keys += entry.keys;
        }
    }
    return joined;
}

QString CardSentences::nameOf(KeyCardKind kind)
{
    static const QStringList names{"single", "long", "combination", "shortcut", "hold"};
    return names.at(int(kind));
}

QString CardSentences::how(const KeyCardEntry& entry)
{
    switch (entry.kind) {
    case KeyCardKind::Single:
        return single(entry.keys);
    case KeyCardKind::Combination:
        return combination(entry.keys);
    case KeyCardKind::Shortcut:
        return shortcut(entry.keys);
    case KeyCardKind::Long:
    case KeyCardKind::Hold:
        return QStringLiteral("Hold %1 for %2 seconds.").arg(entry.keys.value(0), seconds(entry.holdMs));
    }
    return {};
}

QString CardSentences::outcome(const QString& action, const QStringList& receivers)
{
    QStringList names;
    for (const QString& receiver : receivers) {
        names.append(orEmpty(receiver));
    }
    return QStringLiteral("%1 to %2.").arg(orEmpty(action), enumeration(names, QStringLiteral(" and ")));
}

QString CardSentences::describe(const KeyCardDeadRow& row)
{
    return QStringLiteral("Row %1 (%2, %3), valid in %4: %5")
        .arg(QString::number(row.row), nameOf(row.kind), orEmpty(row.keys.join(comma)),
             orEmpty(row.validOnState), outcome(row.action, {row.receiver}));
}

QString CardSentences::alsoAnnounced(const QStringList& actions, int others, const QString& releasedFirst)
{
    QStringList names;
    for (const QString& action : actions) {
        names.append(orEmpty(action.left(maxActionLength)));
    }
    if (others > 0) {
        names.append(QStringLiteral("%1 more").arg(others));
    }
    const QString condition =
        releasedFirst.isEmpty() ? QString() : QStringLiteral(" if %1 is released first").arg(releasedFirst);
    return enumeration(names, QStringLiteral(" and ")) +
           (names.size() == 1 ? QStringLiteral(" is") : QStringLiteral(" are")) +
           QStringLiteral(" also announced") + condition + QLatin1Char('.');
}

QString CardSentences::proof(const QString& environment)
{
    return QStringLiteral("Proved for %1.").arg(environment);
}

QString CardSentences::notProved(model::List list, int count, int first)
{
    const QString& file = model::KeyLists::fileOf(list);
    const QString rows = count == 1 ? QStringLiteral("row %1 of %2 works").arg(QString::number(first), file)
                                    : QStringLiteral("%1 rows of %2 work, such as row %3,")
                                          .arg(QString::number(count), file, QString::number(first));
    return QStringLiteral("Whether %1 is not proved, because the search reached its limit.").arg(rows);
}

QStringList CardSentences::notesOf(const KeyCardEntry& entry)
{
    QStringList notes = entry.rowNotes;
    if (entry.timesAnnounced > 1) {
        notes.append(QStringLiteral("Announced %1 times.").arg(entry.timesAnnounced));
    }
    for (const KeyCardConsequence consequence : entry.consequences) {
        notes.append(sentenceOf(consequence));
    }
    return notes;
}

QStringList CardSentences::notesOf(const KeyCardState& state)
{
    if (state.state == ls::StateId::Startup) {
        return {
            QStringLiteral("Keys are ignored: each press only makes the device say that it is starting up.")};
    }
    if (state.state == vocabulary::undefined) {
        return {QStringLiteral("The state is unknown because the state handler did not answer.")};
    }
    if (state.state != ls::StateId::Idle) {
        return {};
    }
    QStringList notes{
        withWait(QStringLiteral("A single key is announced only if no other key is released while it waits. "
                                "Within %1 after the last release of another action, single keys other than "
                                "Menu are lost."))};
    const auto isCombination = [](const KeyCardEntry& entry) {
        return entry.kind == KeyCardKind::Combination;
    };
    if (std::any_of(state.entries.cbegin(), state.entries.cend(), isCombination)) {
        notes.append(withWait(
            QStringLiteral("In a combination, each key is released within %1 after the one before.")));
    }
    return notes;
}
