// SPDX-License-Identifier: MIT
#include "checker/WordChecks.h"

#include "checker/Printable.h"
#include "checker/RowNames.h"
#include "checker/Suggestion.h"
#include "keys/KeyListFile.h"
#include "keys/KeyRules.h"
#include "model/Alphabet.h"
#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>

#include <QRegularExpression>

#include <algorithm>

namespace checker {

using model::List;
using model::RowId;
using model::Alphabet::keyOf;
using model::Alphabet::stateOf;

namespace {

QString quoted(const QStringList& names)
{
    return QStringLiteral("[\"%1\"]").arg(names.join(QStringLiteral("\", \"")));
}

/// The names in a text if it consists of several, all of which exist; otherwise none.
QStringList namesIn(const QString& text, const QMap<QString, int>& meta)
{
    constexpr int maxSlip = 200;
    static const QRegularExpression separators(QStringLiteral("[^A-Za-z]+"));
    const QStringList names =
        text.size() > maxSlip ? QStringList() : text.split(separators, Qt::SkipEmptyParts);
    const bool areKnown =
        std::all_of(names.begin(), names.end(), [&meta](const QString& name) { return meta.contains(name); });
    return names.size() > 1 && areKnown ? names : QStringList();
}

QStringList statesIn(const QString& text)
{
    return namesIn(text, ls::StateId::meta);
}

/// A question for the author: the name that was meant, or the list if several names are in one text.
QString suggestionForKey(const QString& key)
{
    const QStringList names = namesIn(key, ls::KeyId::meta);
    return names.isEmpty() ? Suggestion::question(key, RowNames::of(ls::KeyId::meta))
                           : QStringLiteral(": did you mean %1?").arg(quoted(names));
}

QString suggestionForState(const QString& state)
{
    const QStringList names = statesIn(state);
    return names.isEmpty() ? Suggestion::question(state, RowNames::of(ls::StateId::meta))
                           : QStringLiteral(": did you mean \"%1\"?").arg(names.join(QStringLiteral(" | ")));
}

/// Checks the names of one row.
class RowWords
{
public:
    RowWords(RowId id, const model::KeyLists& lists, const RowPlaces& places)
        : m_id(id), m_row(lists.row(id)), m_lists(lists), m_places(places)
    {}

    QVector<Finding> findings();

private:
    void checkKeys();
    void checkUnusedKeys();
    void checkStates();
    void checkReceiver();
    void checkVisible(const QString& name, const QString& text);
    bool counts(int key) const;
    Place keyPlace(int index) const;
    Finding& add(const char* id, Level level, const QString& message, const Place& place);
    static void offer(Finding& finding, const QString& word, const QStringList& names, Range range);
    void offerState(Finding& finding, const QString& state, const QStringList& names) const;

    RowId m_id;
    const KeyEntry& m_row;
    const model::KeyLists& m_lists;
    const RowPlaces& m_places;
    QVector<Finding> m_findings;
};

QVector<Finding> RowWords::findings()
{
    checkKeys();
    checkUnusedKeys();
    checkStates();
    checkReceiver();
    checkVisible(KeyListFields::eAction, m_row.eAction());
    checkVisible(KeyListFields::receiverService, m_row.receiverService());
    checkVisible(KeyListFields::validOnState, m_row.validOnState());
    return m_findings;
}

Finding& RowWords::add(const char* id, Level level, const QString& message, const Place& place)
{
    Finding finding;
    finding.id = QString::fromLatin1(id);
    finding.level = level;
    finding.message = message;
    finding.row = m_id;
    finding.place = place;
    m_findings.append(finding);
    return m_findings.last();
}

/// Offers to replace a word by the only name that it can mean.
void RowWords::offer(Finding& finding, const QString& word, const QStringList& names, Range range)
{
    const QString name = Suggestion::clear(word, names);
    if (!name.isEmpty()) {
        finding.help = QStringLiteral("write \"%1\"").arg(name);
        finding.mend = Mend{Mend::Promise::OneRow,
                            {{range, TextEdits::quoted(name)}},
                            {},
                            QStringLiteral("\"%1\" is now \"%2\"").arg(word, name)};
    }
}

Place RowWords::keyPlace(int index) const
{
    const JsonNode* keys = m_places.row(m_id).member(KeyListFields::keys);
    const bool isListed = keys && index < static_cast<int>(keys->children.size());
    return isListed ? Place{m_id.list, keys->children[static_cast<size_t>(index)].range, {}}
                    : m_places.member(m_id, KeyListFields::keys);
}

void RowWords::checkKeys()
{
    const JsonNode* keys = m_places.row(m_id).member(KeyListFields::keys);
    const bool isList = !keys || keys->kind == JsonNode::Kind::Array;
    if (m_row.keys().isEmpty() && keys) {
        add("no-keys", Level::Error,
            isList ? QStringLiteral("the row has no keys") : WordChecks::readingOfKeys(m_row),
            m_places.member(m_id, KeyListFields::keys));
    }
    for (int i = 0; i < m_row.keys().size(); ++i) {
        const QString& key = m_row.keys().at(i);
        if (counts(i) && !keyOf(key)) {
            const QStringList names = RowNames::of(ls::KeyId::meta);
            const Place place = keyPlace(i);
            const QString cause =
                isList ? QString() : WordChecks::readingOfKeys(m_row) + QStringLiteral(", and ");
            offer(add("unknown-key", Level::Error,
                      cause + QStringLiteral("\"%1\" is not a key").arg(key) + suggestionForKey(key), place),
                  key, names, place.range);
        }
    }
}

/// Some recognisers do not look at all keys of a row.
bool RowWords::counts(int key) const
{
    const bool isFirst = key == 0;
    const bool isLast = key + 1 == m_row.keyCount();
    return isFirst || m_id.list == List::Combinations || (m_id.list == List::Shortcuts && isLast);
}

void RowWords::checkUnusedKeys()
{
    const int count = m_row.keyCount();
    if (m_id.list == List::LongPresses && count > 1) {
        add("value", Level::Warning,
            QStringLiteral("a long press has one key: only \"%1\" counts").arg(m_row.firstKey()),
            keyPlace(1));
    } else if (m_id.list == List::Shortcuts && count > 2) {
        add("value", Level::Warning,
            QStringLiteral("a shortcut has two keys: only \"%1\" and \"%2\" count")
                .arg(m_row.firstKey(), m_row.lastKey()),
            keyPlace(1));
    }
}

void RowWords::checkStates()
{
    const Place place = m_places.member(m_id, KeyListFields::validOnState);
    const QString& text = m_row.validOnState();
    const bool isJoined = text.contains(KeyRules::stateSeparator) || !statesIn(text).isEmpty();
    if (m_id.list != List::LongPresses && isJoined) {
        add("joined-states", Level::Error,
            QStringLiteral("\"%1\" is not a state: a combination or shortcut has one state, and only long "
                           "presses can join several")
                .arg(text),
            place)
            .help =
            QStringLiteral("name one state; for another state, write a row with other keys, or a long press");
        return;
    }
    if (!m_places.row(m_id).member(KeyListFields::validOnState)) {
        return; // reported as a missing member
    }
    QStringList states = m_lists.statesOf(m_id);
    if (states.removeDuplicates() > 0) {
        add("duplicate", Level::Warning,
            QStringLiteral("\"%1\" names a state twice, and the action is announced twice there")
                .arg(m_row.validOnState()),
            place);
    }
    const QStringList names = RowNames::of(ls::StateId::meta);
    const bool isOffered = states.size() <= names.size(); // a mebibyte of states is not a slip
    for (const QString& state : qAsConst(states)) {
        if (!stateOf(state)) {
            Finding& finding =
                add("unknown-state", Level::Error,
                    QStringLiteral("\"%1\" is not a state").arg(state) + suggestionForState(state), place);
            if (isOffered) {
                offerState(finding, state, names);
            }
        }
    }
}

/// Offers to replace one of joined states where the file has it only once, as it is read.
void RowWords::offerState(Finding& finding, const QString& state, const QStringList& names) const
{
    const JsonNode* member = m_places.row(m_id).member(KeyListFields::validOnState);
    const QByteArray written = state.toUtf8();
    const bool isAlone = member->written == '"' + written + '"';
    const int at = member->written.indexOf(written);
    const bool isOnce = !written.isEmpty() && at != -1 && member->written.indexOf(written, at + 1) == -1;
    if (isAlone || (isOnce && !member->written.contains('\\'))) {
        const int begin = member->range.begin + at;
        offer(finding, state, names, {begin, begin + written.size()});
    }
    if (finding.mend) {
        QByteArray& text = finding.mend->edits.first().text;
        text = text.mid(1, text.size() - 2); // the quotation marks are around all states
    }
}

void RowWords::checkReceiver()
{
    const QString& receiver = m_row.receiverService();
    const Place place = m_places.member(m_id, KeyListFields::receiverService);
    if (receiver == vocabulary::undefined) {
        add("undefined-receiver", Level::Warning,
            QStringLiteral("the action is dropped, because its receiver is \"%1\"").arg(receiver), place);
    } else if (!ls::ServiceId::meta.contains(receiver) &&
               m_places.row(m_id).member(KeyListFields::receiverService)) {
        const QStringList names = RowNames::of(ls::ServiceId::meta);
        offer(add("unknown-service", Level::Error,
                  QStringLiteral("\"%1\" is not a service, and none reacts to the action").arg(receiver) +
                      Suggestion::question(receiver, names),
                  place),
              receiver, names, place.range);
    }
}

void RowWords::checkVisible(const QString& name, const QString& text)
{
    if (printable(text) != text) {
        add("invisible", Level::Warning, QStringLiteral("\"%1\" has invisible characters").arg(name),
            m_places.member(m_id, name));
    }
}

} // namespace

bool WordChecks::areKnownKeys(const KeyEntry& row)
{
    const QStringList& keys = row.keys();
    return !keys.isEmpty() &&
           std::all_of(keys.begin(), keys.end(), [](const QString& key) { return keyOf(key); });
}

QString WordChecks::readingOfKeys(const KeyEntry& row)
{
    const QString read =
        row.keys().isEmpty() ? QStringLiteral("no keys") : QStringLiteral("the list ") + quoted(row.keys());
    return QStringLiteral("the keys are not a list of names: they are read as ") + read;
}

QVector<Finding> WordChecks::of(const model::KeyLists& lists, const RowPlaces& places, List list)
{
    QVector<Finding> findings;
    for (int i = 0; i < lists.rows(list).size(); ++i) {
        findings += RowWords({list, i}, lists, places).findings();
    }
    return findings;
}

} // namespace checker
