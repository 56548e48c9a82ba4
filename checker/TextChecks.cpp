// SPDX-License-Identifier: MIT
#include "checker/TextChecks.h"

#include "checker/JsonFault.h"
#include "checker/Suggestion.h"
#include "checker/WordChecks.h"
#include "keys/KeyListFile.h"

#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>

namespace checker {

using model::KeyLists;
using model::List;
using model::RowId;

namespace {

Finding atOffset(List list, const QString& id, const QString& message, Range range)
{
    Finding finding;
    finding.id = id;
    finding.level = Level::Error;
    finding.message = message;
    finding.place = {list, range, {}};
    return finding;
}

/// Offers to replace a part of the file.
void offer(Finding& finding, Mend::Promise promise, const QString& help, const QVector<TextEdit>& edits,
           const QString& done)
{
    finding.help = help;
    finding.mend = Mend{promise, edits, {}, done};
}

/// Offers to delete `member`, with the comma before it, if it repeats the value of `first`.
void offerToDelete(Finding& finding, const JsonNode& first, const JsonNode& before, const JsonNode& member)
{
    if (member.isWrittenLike(first)) {
        offer(finding, Mend::Promise::SameRows,
              QStringLiteral("delete it: both have the same value, so no row changes"),
              {{{before.range.end, member.range.end}, {}}},
              QStringLiteral("the second \"%1\" is deleted").arg(member.name));
    }
}

QVector<Finding> duplicatesOf(List list, const JsonNode& object)
{
    const QString text =
        object.keepsLast()
            ? QStringLiteral("\"%1\" is there twice, and the last one counts")
            : QStringLiteral("\"%1\" is there twice among so many members that either may count");
    const QString related =
        object.keepsLast() ? QStringLiteral("this one is ignored") : QStringLiteral("the other one");
    QVector<Finding> findings;
    QMap<QString, const JsonNode*> seen;
    const JsonNode* before = nullptr;
    for (const JsonNode& member : object.children) {
        if (const JsonNode* first = seen.value(member.name)) {
            Finding finding =
                atOffset(list, QStringLiteral("duplicate"), text.arg(member.name), member.nameRange);
            finding.level = Level::Warning;
            finding.related.append({list, first->nameRange, related});
            offerToDelete(finding, *first, *before, member);
            findings.append(finding);
        }
        seen.insert(member.name, &member);
        before = &member;
    }
    return findings;
}

QString withoutSection(List list, const JsonNode& root)
{
    QStringList names;
    for (const JsonNode& member : root.children) {
        names.append(member.name);
    }
    const QString section = KeyLists::sectionOf(list);
    const QString similar = Suggestion::of(section, names);
    return QStringLiteral("the file has no list \"%1\", so it has no rows").arg(section) +
           (similar.isEmpty() ? QString() : QStringLiteral("; is \"%1\" misspelt?").arg(similar));
}

/// Offers to rename the only member of a file that resembles the section and is a list.
void offerToRename(Finding& finding, List list, const JsonNode& root)
{
    const QString section = KeyLists::sectionOf(list);
    const bool isOnly = root.children.size() == 1;
    const JsonNode* member = isOnly ? &root.children.front() : nullptr;
    if (member && member->kind == JsonNode::Kind::Array &&
        !Suggestion::clear(member->name, {section}).isEmpty()) {
        offer(finding, Mend::Promise::WholeList, QStringLiteral("rename it to \"%1\"").arg(section),
              {{member->nameRange, TextEdits::quoted(section)}},
              QStringLiteral("\"%1\" is now \"%2\"").arg(member->name, section));
    }
}

QVector<Finding> ofRoot(List list, const JsonNode& root)
{
    QVector<Finding> findings = duplicatesOf(list, root);
    const JsonNode* section = root.member(KeyLists::sectionOf(list));
    if (!section) {
        findings.append(atOffset(list, QStringLiteral("section"), withoutSection(list, root),
                                 {root.range.begin, root.range.begin + 1}));
        offerToRename(findings.last(), list, root);
    } else if (section->kind != JsonNode::Kind::Array) {
        findings.append(atOffset(list, QStringLiteral("section"),
                                 QStringLiteral("\"%1\" is not a list, so it has no rows").arg(section->name),
                                 section->range));
    }
    return findings;
}

/// How the loader reads a time.
QString readingOf(const JsonNode* time, int seconds)
{
    constexpr int maxShown = 20;
    if (!time) {
        return QStringLiteral("the row has no \"%1\"").arg(KeyListFields::timeout);
    }
    const QString written = time->written.isEmpty() ? QStringLiteral("the value")
                                                    : QString::fromUtf8(time->written.left(maxShown));
    return time->written.toDouble() == seconds && time->kind == JsonNode::Kind::Literal
               ? QStringLiteral("a time of %1 s").arg(written)
               : QStringLiteral("%1 is read as %2 s").arg(written, QString::number(seconds));
}

/// Whether the time is a number that is rounded to `seconds`, or has them in quotation marks.
bool isNearTo(const JsonNode& time, int seconds)
{
    constexpr double rounding = 0.5;
    const QByteArray number = QByteArray::number(seconds);
    bool isNumber = false;
    const double value = time.written.toDouble(&isNumber);
    return time.written == '"' + number + '"' || (isNumber && qAbs(value - seconds) <= rounding);
}

/// Offers to write what the loader reads.
void offerValue(Finding& finding, const JsonNode& value, const QByteArray& text)
{
    offer(finding, Mend::Promise::SameRows,
          QStringLiteral("write %1, as the daemon reads it: no row changes").arg(QString::fromUtf8(text)),
          {{value.range, text}},
          QStringLiteral("%1 is now %2").arg(QString::fromUtf8(value.written), QString::fromUtf8(text)));
}

/// Checks the members of one row.
class RowText
{
public:
    RowText(RowId id, const KeyEntry& row, const JsonNode& object) : m_id(id), m_row(row), m_object(object) {}

    QVector<Finding> findings();

private:
    void checkName(const JsonNode& member);
    void checkMissing();
    void checkKeys();
    void checkText(const QString& name, const QString& value);
    void checkTime();
    void offerName(Finding& finding, const JsonNode& member) const;
    Finding& add(const char* id, Level level, const QString& message, Range range);
    QStringList knownNames() const;
    bool isTimed() const { return m_id.list == List::LongPresses; }

    RowId m_id;
    const KeyEntry& m_row;
    const JsonNode& m_object;
    QStringList m_missing;        // known names that are not there
    QStringList m_misspelt;       // those of them for which a similar one is there
    QHash<QString, int> m_claims; // how many members resemble each of them
    QVector<Finding> m_findings;
};

QVector<Finding> RowText::findings()
{
    m_findings = duplicatesOf(m_id.list, m_object);
    m_missing = knownNames();
    for (const JsonNode& member : m_object.children) {
        m_missing.removeAll(member.name);
    }
    for (const JsonNode& member : m_object.children) {
        ++m_claims[Suggestion::of(member.name, m_missing)];
    }
    for (const JsonNode& member : m_object.children) {
        checkName(member);
    }
    checkMissing();
    checkKeys();
    checkText(KeyListFields::eAction, m_row.eAction());
    checkText(KeyListFields::receiverService, m_row.receiverService());
    checkText(KeyListFields::validOnState, m_row.validOnState());
    if (isTimed()) {
        checkTime();
    }
    for (Finding& finding : m_findings) {
        finding.row = m_id;
    }
    return m_findings;
}

QStringList RowText::knownNames() const
{
    QStringList names{KeyListFields::keys, KeyListFields::eAction, KeyListFields::receiverService,
                      KeyListFields::validOnState};
    return isTimed() ? names << KeyListFields::timeout : names;
}

Finding& RowText::add(const char* id, Level level, const QString& message, Range range)
{
    m_findings.append(atOffset(m_id.list, QString::fromLatin1(id), message, range));
    m_findings.last().level = level;
    return m_findings.last();
}

void RowText::checkName(const JsonNode& member)
{
    const QStringList names = knownNames();
    if (names.contains(member.name)) {
        return;
    }
    const QString similar = Suggestion::of(member.name, m_missing);
    if (!similar.isEmpty()) {
        m_misspelt.append(similar);
        offerName(add("member", Level::Error,
                      QStringLiteral("\"%1\" is ignored: did you mean \"%2\"?").arg(member.name, similar),
                      member.nameRange),
                  member);
    } else if (member.name == KeyListFields::timeout) {
        add("member", Level::Warning,
            QStringLiteral("\"%1\" is ignored: only long presses have a time").arg(member.name),
            member.nameRange);
    } else {
        add("member", Level::Warning, QStringLiteral("\"%1\" is ignored").arg(member.name), member.nameRange);
    }
}

void RowText::offerName(Finding& finding, const JsonNode& member) const
{
    const QString name = Suggestion::clear(member.name, m_missing);
    if (!name.isEmpty() && m_claims.value(name) == 1) {
        finding.row = m_id;
        offer(finding, Mend::Promise::OneRow, QStringLiteral("rename it to \"%1\"").arg(name),
              {{member.nameRange, TextEdits::quoted(name)}},
              QStringLiteral("\"%1\" is now \"%2\"").arg(member.name, name));
    }
}

/// A row without a time is reported with what follows from it, a misspelt name with the name that is there.
void RowText::checkMissing()
{
    for (const QString& name : qAsConst(m_missing)) {
        const bool isReported = m_misspelt.contains(name) || name == KeyListFields::timeout;
        if (!isReported) {
            add("member", Level::Error, QStringLiteral("the row has no \"%1\"").arg(name), m_object.range);
        }
    }
}

void RowText::checkKeys()
{
    const JsonNode* keys = m_object.member(KeyListFields::keys);
    if (!keys) {
        return;
    }
    const bool isList =
        keys->kind == JsonNode::Kind::Array && m_row.keys().size() == static_cast<int>(keys->children.size());
    if (!isList && WordChecks::areKnownKeys(m_row)) {
        Finding& finding = add("value", Level::Warning, WordChecks::readingOfKeys(m_row), keys->range);
        if (keys->kind == JsonNode::Kind::Text && m_row.keys().size() == 1) {
            offerValue(finding, *keys, '[' + keys->written + ']');
        }
    }
}

void RowText::checkText(const QString& name, const QString& value)
{
    const JsonNode* member = m_object.member(name);
    if (member && member->kind != JsonNode::Kind::Text) {
        Finding& finding =
            add("value", Level::Warning,
                QStringLiteral("\"%1\" is not a text: it is read as \"%2\"").arg(name, value), member->range);
        if (!value.isEmpty()) {
            offerValue(finding, *member, TextEdits::quoted(value));
        }
    }
}

void RowText::checkTime()
{
    constexpr int millisecondsPerSecond = 1000;
    constexpr int longHold = 30; // seconds
    const int seconds = m_row.timeout() / millisecondsPerSecond;
    const JsonNode* time = m_object.member(KeyListFields::timeout);
    const Range range = time ? time->range : m_object.range;
    if (!time && m_misspelt.contains(KeyListFields::timeout)) {
        return;
    }
    if (seconds <= 0) {
        add("time", Level::Error,
            readingOf(time, seconds) +
                QStringLiteral(": the action repeats 30 times a second while the key is held"),
            range);
    } else if (time && time->written.toDouble() != seconds) {
        Finding& finding = add("value", Level::Warning, readingOf(time, seconds), range);
        if (isNearTo(*time, seconds)) {
            offerValue(finding, *time, QByteArray::number(seconds));
        }
    }
    if (seconds > longHold) {
        add("long-hold", Level::Warning, QStringLiteral("the key must be held for %1 s").arg(seconds), range);
    }
}

} // namespace

QVector<Finding> TextChecks::ofFile(const ListSources& sources, List list)
{
    const QByteArray& text = sources.file(list).text();
    if (text.size() > KeyListFile::maxSize) {
        return {
            atOffset(list, QStringLiteral("too-large"),
                     QStringLiteral("the file is over the limit of %1 bytes, and the daemon reads none of it")
                         .arg(KeyListFile::maxSize),
                     {0, 0})};
    }
    if (text.trimmed().isEmpty()) {
        return {atOffset(list, QStringLiteral("syntax"), QStringLiteral("the file is empty"), {0, 0})};
    }
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) {
        const JsonFault fault = JsonFault::of(text, error);
        return {atOffset(list, QStringLiteral("syntax"),
                         QStringLiteral("the file is not JSON: ") + fault.text,
                         {fault.offset, fault.offset})};
    }
    const JsonNode root = JsonText::scan(text);
    if (!document.isObject()) {
        return {atOffset(
            list, QStringLiteral("section"),
            QStringLiteral("the file is not an object with the list \"%1\"").arg(KeyLists::sectionOf(list)),
            root.range)};
    }
    return ofRoot(list, root);
}

QVector<Finding> TextChecks::ofRows(const KeyLists& lists, const RowPlaces& places, List list)
{
    QVector<Finding> findings;
    for (const Range range : places.skipped(list)) {
        findings.append(atOffset(list, QStringLiteral("element"),
                                 QStringLiteral("the element is not a row, and the daemon skips it"), range));
    }
    for (int i = 0; i < lists.rows(list).size(); ++i) {
        const RowId id{list, i};
        findings += RowText(id, lists.row(id), places.row(id)).findings();
    }
    return findings;
}

} // namespace checker
