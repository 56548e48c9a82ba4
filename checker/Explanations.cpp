// SPDX-License-Identifier: MIT
#include "checker/Explanations.h"

#include "checker/RowNames.h"
#include "checker/Suggestion.h"
#include "keys/KeyListFile.h"
#include "keys/KeyRules.h"
#include "model/Autorepeat.h"

#include <ls/Identifiers.h>

#include <algorithm>

namespace checker {

using model::List;

namespace {

constexpr int mebibyte = 1024 * 1024;

QString listed(const QMap<QString, int>& meta)
{
    return RowNames::of(meta).join(QStringLiteral(", "));
}

Example exampleOf(List list, const char* text)
{
    Example example;
    example.files[static_cast<size_t>(list)] = QByteArray(text);
    return example;
}

Example longPresses(const char* text)
{
    return exampleOf(List::LongPresses, text);
}

Example combinations(const char* text)
{
    return exampleOf(List::Combinations, text);
}

Example shortcuts(const char* text)
{
    return exampleOf(List::Shortcuts, text);
}

Example both(Example example, const Example& other)
{
    for (size_t i = 0; i < example.files.size(); ++i) {
        example.files[i] += other.files[i];
    }
    return example;
}

Example withBlanks(Example example, int blanks)
{
    example.blanks = blanks;
    return example;
}

Example withFingers(Example example, int fingers)
{
    example.options.fingers = fingers;
    return example;
}

Example atPace(Example example, std::chrono::milliseconds pace)
{
    example.options.pace = pace;
    return example;
}

Example allowing(Example example, const QString& allowed)
{
    example.options.allowed.append(allowed);
    return example;
}

QVector<Explanation> explanationsOfText();
QVector<Explanation> explanationsOfValues();
QVector<Explanation> explanationsOfRows();
QVector<Explanation> explanationsOfGestures();

} // namespace

ListSources Example::sources() const
{
    ListSources sources;
    for (const List list : model::allLists) {
        const QByteArray& text = files[static_cast<size_t>(list)];
        const QByteArray content = text.isNull() ? text : text + QByteArray(blanks, ' ');
        sources.files[static_cast<size_t>(list)] = SourceFile(model::KeyLists::fileOf(list), content);
        if (!text.isNull()) {
            sources.found.append(list);
        }
    }
    return sources;
}

QStringList Example::arguments() const
{
    const CheckOptions defaults;
    QStringList arguments;
    if (options.fingers != defaults.fingers) {
        arguments << QStringLiteral("--hands") << QString::number(options.fingers);
    }
    if (options.pace != defaults.pace) {
        arguments << QStringLiteral("--pace") << QString::number(options.pace.count());
    }
    for (const QString& allowed : options.allowed) {
        arguments << QStringLiteral("--allow") << allowed;
    }
    return arguments;
}

const QVector<Explanation>& Explanations::all()
{
    static const QVector<Explanation> explanations =
        explanationsOfText() + explanationsOfValues() + explanationsOfRows() + explanationsOfGestures();
    return explanations;
}

const Explanation* Explanations::find(const QString& id)
{
    const auto found = std::find_if(all().begin(), all().end(),
                                    [&id](const Explanation& explanation) { return explanation.id == id; });
    return found == all().end() ? nullptr : &*found;
}

QString Explanations::checkId(const QString& id)
{
    if (find(id)) {
        return {};
    }
    QStringList ids;
    for (const Explanation& explanation : all()) {
        ids.append(explanation.id);
    }
    const QString question = Suggestion::question(id, ids);
    return QStringLiteral(
               "\"%1\" is not an id of a finding%2 keyboard-handler-keys explain --help lists all.")
        .arg(id, question.isEmpty() ? QStringLiteral(";") : question);
}

namespace {

QVector<Explanation> explanationsOfText()
{
    const QString loss = QStringLiteral("the daemon logs that and recognises no gesture of this list");
    const Example oneRow = combinations(R"({
    "ModifierKeys": [
        { "keys": ["Help", "Feed"], "eAction": "PaperStatus", "receiverService": "PrintManager",
          "validOnState": "Idle" }
    ]
}
)");
    const Example twoRows = combinations(R"({
    "ModifierKeys": [
        { "keys": ["Help", "Feed"], "eAction": "PaperStatus", "receiverService": "PrintManager",
          "validOnState": "Idle" },
        { "keys": ["Help", "Ok"], "eAction": "RepeatMessage", "receiverService": "UserMenu",
          "validOnState": "Idle" }
    ]
}
)");
    return {
        {QStringLiteral("too-large"), Level::Error,
         QStringLiteral("the file is larger than the daemon allows"),
         QStringLiteral(
             "The daemon does not read a file of more than %1 MiB (%2 bytes), because its values could "
             "exceed the memory limit: %3. A file of this size has some 8,000 rows.\n\n"
             "Blanks and line breaks count as well.")
             .arg(KeyListFile::maxSize / mebibyte)
             .arg(KeyListFile::maxSize)
             .arg(loss),
         withBlanks(oneRow, KeyListFile::maxSize), oneRow},
        {QStringLiteral("syntax"), Level::Error, QStringLiteral("the file is not JSON"),
         QStringLiteral(
             "The daemon reads nothing of a file that is not JSON: %1.\n\n"
             "The finding is where something else should be. The mistake is there or shortly before: a "
             "missing "
             "comma between two rows, a comma after the last row, a missing quotation mark or bracket, or "
             "a comment, which JSON does not have. An empty file is not JSON either.")
             .arg(loss),
         combinations(R"({
    "ModifierKeys": [
        { "keys": ["Help", "Feed"], "eAction": "PaperStatus", "receiverService": "PrintManager",
          "validOnState": "Idle" }
        { "keys": ["Help", "Ok"], "eAction": "RepeatMessage", "receiverService": "UserMenu",
          "validOnState": "Idle" }
    ]
}
)"),
         twoRows},
        {QStringLiteral("section"), Level::Error, QStringLiteral("the file has no list of rows"),
         QStringLiteral(
             "A file is an object with one section, a list of rows: LongKeys in longKeyList.json, "
             "ModifierKeys in modifierKeyList.json, ShortcutKeys in shortcutKeyList.json. Upper and lower "
             "case matter. Without this list, the file has no rows: %1.\n\n"
             "--fix renames the only member of a file, if it resembles the section and is a list.")
             .arg(loss),
         combinations(R"({
    "modifierKeys": [
        { "keys": ["Help", "Feed"], "eAction": "PaperStatus", "receiverService": "PrintManager",
          "validOnState": "Idle" }
    ]
}
)"),
         oneRow},
        {QStringLiteral("element"), Level::Error, QStringLiteral("an element of the list is not a row"),
         QStringLiteral(
             "A row is an object, in braces. The daemon skips any other element of the list, such as a "
             "text or another list, without a log line."),
         combinations(R"({
    "ModifierKeys": [
        { "keys": ["Help", "Feed"], "eAction": "PaperStatus", "receiverService": "PrintManager",
          "validOnState": "Idle" },
        "Help, then Ok"
    ]
}
)"),
         oneRow},
        {QStringLiteral("member"), Level::Error, QStringLiteral("a member of a row is missing or unknown"),
         QStringLiteral(
             "A row has the members keys, eAction, receiverService, validOnState and, in long presses, "
             "timeout. Upper and lower case matter. The daemon ignores other members without a log line, "
             "and a missing member counts as empty.\n\n"
             "The finding is an error if the row lacks a member, otherwise a warning: services that ask for "
             "the combinations or shortcuts receive additional members as well. A missing timeout is the "
             "finding \"time\".\n\n"
             "--fix renames a member that resembles one missing name. The row then does what it says."),
         combinations(R"({
    "ModifierKeys": [
        { "keys": ["Help", "Feed"], "eAction": "PaperStatus", "recieverService": "PrintManager",
          "validOnState": "Idle" }
    ]
}
)"),
         oneRow},
        {QStringLiteral("duplicate"), Level::Warning, QStringLiteral("a member is there twice"),
         QStringLiteral(
             "Of several members with the same name in one object, the daemon reads the last one and does "
             "not log the others. In an object of more than 16 members, it may read any of them. Delete "
             "those "
             "that do not apply.\n\n"
             "Of a long press that names a state twice, the action is announced twice in that state.\n\n"
             "--fix deletes a member that repeats the value of the one before. No row changes."),
         combinations(R"({
    "ModifierKeys": [
        { "keys": ["Help", "Feed"], "eAction": "PrintSelfTest", "eAction": "PaperStatus",
          "receiverService": "PrintManager", "validOnState": "Idle" }
    ]
}
)"),
         oneRow},
    };
}

QVector<Explanation> explanationsOfValues()
{
    const Example longPress = longPresses(R"({
    "LongKeys": [
        { "keys": ["Help"], "eAction": "KeyDescription", "receiverService": "UserMenu", "timeout": 2,
          "validOnState": "Idle" }
    ]
}
)");
    const Example combination = combinations(R"({
    "ModifierKeys": [
        { "keys": ["Help", "Feed"], "eAction": "PaperStatus", "receiverService": "PrintManager",
          "validOnState": "Idle" }
    ]
}
)");
    return {
        {QStringLiteral("value"), Level::Warning, QStringLiteral("the daemon reads a value as another one"),
         QStringLiteral(
             "The daemon converts values without a log line. A timeout is rounded to whole seconds and "
             "limited to %1 s: 1.5 counts as 2, \"3\" as 3, true as 1. A single text counts as a list of one "
             "key. A number counts as its digits where a text is expected. A value that cannot be converted "
             "counts "
             "as empty, and such a timeout as 0. Of the keys of a long press, only the first one counts; "
             "of those of a shortcut, the first and the last one.\n\n"
             "Write what the daemon reads, so that the file shows what happens. --fix does so where the "
             "meaning "
             "is clear: for rounded times and times in quotation marks, for a single key that is not in a "
             "list, and for numbers where a text is expected. No row changes.")
             .arg(KeyListFile::maxSeconds),
         longPresses(R"({
    "LongKeys": [
        { "keys": ["Help"], "eAction": "KeyDescription", "receiverService": "UserMenu", "timeout": 1.5,
          "validOnState": "Idle" }
    ]
}
)"),
         longPress},
        {QStringLiteral("time"), Level::Error, QStringLiteral("the time of a long press is 0"),
         QStringLiteral(
             "A long press needs a timeout of at least one second. Without one, with a negative one, and "
             "with one that is rounded to 0, such as 0.4, the action is announced with the first "
             "repetition of the key, %1 ms after the press, and again with each further one, every %2 ms, "
             "as long as the key is held.")
             .arg(Autorepeat::delay.count())
             .arg(Autorepeat::period.count()),
         longPresses(R"({
    "LongKeys": [
        { "keys": ["Help"], "eAction": "KeyDescription", "receiverService": "UserMenu",
          "validOnState": "Idle" }
    ]
}
)"),
         longPress},
        {QStringLiteral("long-hold"), Level::Warning, QStringLiteral("a key must be held for more than 30 s"),
         QStringLiteral(
             "The timeout of a long press is in seconds, not in milliseconds. Releasing the key earlier, "
             "and pressing or releasing any other key, ends the long press, so a person seldom completes "
             "one of this length."),
         longPresses(R"({
    "LongKeys": [
        { "keys": ["Help"], "eAction": "KeyDescription", "receiverService": "UserMenu", "timeout": 2000,
          "validOnState": "Idle" }
    ]
}
)"),
         longPress},
        {QStringLiteral("unknown-key"), Level::Error, QStringLiteral("a key does not exist"),
         QStringLiteral(
             "No key of the panel has this name, so it is never pressed. The daemon does not check names, "
             "and upper and lower case matter. The keys are: %1.\n\n"
             "Of a long press only the first key counts, of a shortcut the first and the last one.\n\n"
             "--fix writes the name of the only key that the word resembles.")
             .arg(listed(ls::KeyId::meta)),
         combinations(R"({
    "ModifierKeys": [
        { "keys": ["Help", "Fed"], "eAction": "PaperStatus", "receiverService": "PrintManager",
          "validOnState": "Idle" }
    ]
}
)"),
         combination},
        {QStringLiteral("unknown-state"), Level::Error, QStringLiteral("a state does not exist"),
         QStringLiteral(
             "The device never has this state, so the row announces nothing in it. The daemon does not "
             "check names, and upper and lower case matter. The states are: %1.\n\n"
             "Blanks around a name count, too: they are ignored only in long presses, and only where "
             "several states are joined with a vertical bar.\n\n"
             "--fix writes the name of the only state that the word resembles.")
             .arg(listed(ls::StateId::meta)),
         combinations(R"({
    "ModifierKeys": [
        { "keys": ["Help", "Feed"], "eAction": "PaperStatus", "receiverService": "PrintManager",
          "validOnState": "idle" }
    ]
}
)"),
         combination},
        {QStringLiteral("unknown-service"), Level::Error, QStringLiteral("a service does not exist"),
         QStringLiteral(
             "The daemon announces the action to the receiver that the row names, whatever it is. No "
             "service has this name, so no service acts on it. Upper and lower case matter. The services "
             "are: %1.\n\n"
             "--fix writes the name of the only service that the word resembles.")
             .arg(listed(ls::ServiceId::meta)),
         combinations(R"({
    "ModifierKeys": [
        { "keys": ["Help", "Feed"], "eAction": "PaperStatus", "receiverService": "PrintManger",
          "validOnState": "Idle" }
    ]
}
)"),
         combination},
        {QStringLiteral("undefined-receiver"), Level::Warning,
         QStringLiteral("an action for \"Undefined\" is dropped"),
         QStringLiteral(
             "The daemon logs an action for the receiver \"Undefined\" and announces nothing. Its keys "
             "count as single keys. Name a service, or delete the row."),
         combinations(R"({
    "ModifierKeys": [
        { "keys": ["Help", "Feed"], "eAction": "PaperStatus", "receiverService": "Undefined",
          "validOnState": "Idle" }
    ]
}
)"),
         combination},
        {QStringLiteral("no-keys"), Level::Error, QStringLiteral("a row has no keys"),
         QStringLiteral("A row without keys has no effect. The daemon does not log it."), combinations(R"({
    "ModifierKeys": [
        { "keys": [], "eAction": "PaperStatus", "receiverService": "PrintManager",
          "validOnState": "Idle" }
    ]
}
)"),
         combination},
        {QStringLiteral("joined-states"), Level::Error,
         QStringLiteral("states are joined where they cannot be"),
         QStringLiteral(
             "Only long presses may join states, with a vertical bar. In combinations and shortcuts, the "
             "whole text would have to be the name of the current state, so the row is never valid. Choose "
             "one state: for a combination Idle, because the other states announce each release at once, "
             "so that no combination can begin there.\n\n"
             "Two rows with the same keys do not add a state. Of several shortcuts with the same first and "
             "last "
             "key, the first one counts in every state, and the others never. Of several combinations with "
             "the "
             "same keys, only those for Idle are announced. For a second state, write a row with other keys, "
             "or "
             "a long press, which can join states."),
         combinations(R"({
    "ModifierKeys": [
        { "keys": ["Help", "Feed"], "eAction": "PaperStatus", "receiverService": "PrintManager",
          "validOnState": "Idle | Error" }
    ]
}
)"),
         combination},
        {QStringLiteral("invisible"), Level::Warning, QStringLiteral("a name has invisible characters"),
         QStringLiteral(
             "The name has control characters, which cannot be seen where it is shown. The daemon announces "
             "an action with them and compares other names character by character."),
         combinations(R"({
    "ModifierKeys": [
        { "keys": ["Help", "Feed"], "eAction": "PaperStatus\u0007", "receiverService": "PrintManager",
          "validOnState": "Idle" }
    ]
}
)"),
         combination},
    };
}

QVector<Explanation> explanationsOfRows()
{
    return {
        {QStringLiteral("never"), Level::Error, QStringLiteral("no keys announce the row"),
         QStringLiteral(
             "The action of this row cannot be announced by keys. This is proved: a search tried every "
             "press, release and repetition in every situation that these can lead to, at any time. "
             "Services that simulate keys are not part of it.\n\n"
             "A frequent cause is the state Startup, in which the daemon refuses all keys: combinations "
             "and shortcuts can be neither begun nor completed in it. If a single row is the cause, the "
             "finding names it."),
         combinations(R"({
    "ModifierKeys": [
        { "keys": ["Help", "Feed"], "eAction": "PaperStatus", "receiverService": "PrintManager",
          "validOnState": "Startup" }
    ]
}
)"),
         combinations(R"({
    "ModifierKeys": [
        { "keys": ["Help", "Feed"], "eAction": "PaperStatus", "receiverService": "PrintManager",
          "validOnState": "Idle" }
    ]
}
)")},
        {QStringLiteral("never-in-state"),
         Level::Warning,
         QStringLiteral("no keys announce the row in one of its states"),
         QStringLiteral(
             "The row names several states. Keys announce it in another one, but not in this one. This is "
             "proved in the same way as for the finding \"never\"."),
         {},
         {}},
        {QStringLiteral("state-change"), Level::Error,
         QStringLiteral("no keys announce the row while the state stays as it is"),
         QStringLiteral(
             "Keys announce this row only if the state of the device changes between them, or while the "
             "keyboard "
             "test runs: for example, a combination for Print begins in Idle and ends in Print. In all "
             "states but Idle, a released key "
             "is announced at once and forgotten, so that no combination can begin there. Use a shortcut or "
             "a long press for such a state. The finding is a warning if the row also names a state in which "
             "it works."),
         combinations(R"({
  "ModifierKeys": [
    { "keys": ["Help", "Feed"], "eAction": "PaperStatus", "receiverService": "PrintManager", "validOnState": "Print" }
  ]
}
)"),
         combinations(R"({
  "ModifierKeys": [
    { "keys": ["Help", "Feed"], "eAction": "PaperStatus", "receiverService": "PrintManager", "validOnState": "Idle" }
  ]
}
)")},
        {QStringLiteral("not-proved"),
         Level::Warning,
         QStringLiteral("a search ended at its limit"),
         QStringLiteral(
             "The search for keys that announce this row became too large. Whether there are such keys is "
             "not known. Check the list with fewer rows, or without --pace."),
         {},
         {}},
        {QStringLiteral("hidden"), Level::Error, QStringLiteral("another row hides this one"),
         QStringLiteral(
             "The daemon never reaches this row because of another row of its list:\n\n"
             "Long presses: if several rows have the same first key, the last one decides, in every state. "
             "Write one row with all its states, joined with a vertical bar.\n\n"
             "Combinations: a row of three or more keys hides the rows after it whenever a key is released "
             "that does not complete it. Write pairs before it. Only the first row of three or more keys "
             "can match, and none does if a pair before it consists of its first key and another of its "
             "keys.\n\n"
             "Shortcuts: if several rows have the same first and last key, the first one counts, in every "
             "state.\n\n"
             "--fix moves a row to the end of its list if it is proved that the hidden row then works and "
             "that "
             "all rows that work now still do."),
         combinations(R"({
    "ModifierKeys": [
        { "keys": ["Function", "Help", "One"], "eAction": "PrintSelfTest",
          "receiverService": "PrintManager", "validOnState": "Idle" },
        { "keys": ["Chs", "Up"], "eAction": "NextCharacterSet", "receiverService": "UserMenu",
          "validOnState": "Idle" }
    ]
}
)"),
         combinations(R"({
    "ModifierKeys": [
        { "keys": ["Chs", "Up"], "eAction": "NextCharacterSet", "receiverService": "UserMenu",
          "validOnState": "Idle" },
        { "keys": ["Function", "Help", "One"], "eAction": "PrintSelfTest",
          "receiverService": "PrintManager", "validOnState": "Idle" }
    ]
}
)")},
        {QStringLiteral("same-keys"), Level::Warning, QStringLiteral("two rows have the same keys"),
         QStringLiteral(
             "If several combinations have the same two keys, each is announced in its state, and the "
             "closing key is spoken once for each. Delete one of the rows, or choose other keys."),
         combinations(R"({
    "ModifierKeys": [
        { "keys": ["Help", "Feed"], "eAction": "PaperStatus", "receiverService": "PrintManager",
          "validOnState": "Idle" },
        { "keys": ["Help", "Feed"], "eAction": "RepeatMessage", "receiverService": "UserMenu",
          "validOnState": "Idle" }
    ]
}
)"),
         combinations(R"({
    "ModifierKeys": [
        { "keys": ["Help", "Feed"], "eAction": "PaperStatus", "receiverService": "PrintManager",
          "validOnState": "Idle" },
        { "keys": ["Help", "Ok"], "eAction": "RepeatMessage", "receiverService": "UserMenu",
          "validOnState": "Idle" }
    ]
}
)")},
    };
}

QVector<Explanation> explanationsOfGestures()
{
    using namespace std::chrono_literals;
    const Example shortcut = shortcuts(R"({
    "ShortcutKeys": [
        { "keys": ["Feed", "Ok"], "eAction": "LoadPaper", "receiverService": "PrintManager",
          "validOnState": "Idle" }
    ]
}
)");
    const Example silent = shortcuts(R"({
    "ShortcutKeys": [
        { "keys": ["Feed", "Ok"], "eAction": "LoadPaper", "receiverService": "PrintManager",
          "validOnState": "PrintOff" }
    ]
}
)");
    const Example combination = combinations(R"({
    "ModifierKeys": [
        { "keys": ["Feed", "Ok"], "eAction": "LoadPaper", "receiverService": "PrintManager",
          "validOnState": "Idle" }
    ]
}
)");
    const Example crossed = combinations(R"({
    "ModifierKeys": [
        { "keys": ["Ok", "Feed"], "eAction": "PaperStatus", "receiverService": "PrintManager",
          "validOnState": "Idle" }
    ]
}
)");
    return {
        {QStringLiteral("silent"), Level::Warning, QStringLiteral("a gesture has no effect in a state"),
         QStringLiteral(
             "In this state, the keys of the row cause neither speech nor an action, as if they were "
             "broken. The daemon recognises the gesture and refuses its action, because the row is not valid "
             "in "
             "the state.\n\n"
             "This is so in Idle only. There, keys are sent as single keys and spoken only if no gesture has "
             "used them up, and a refused gesture uses them up as well. In Startup, each key is refused with "
             "speech. In the other states, each released key is sent at once as a single key, whether a "
             "gesture "
             "was refused or not.\n\n"
             "A row that is right for its states needs no change: accept the silence by name, with --allow "
             "silent:ACTION. If the keys are expected to do something else in Idle, choose other keys for "
             "the "
             "row."),
         silent, allowing(silent, QStringLiteral("silent:LoadPaper"))},
        {QStringLiteral("two-hands"), Level::Warning, QStringLiteral("the keys need more fingers"),
         QStringLiteral(
             "Each key that is held down takes one finger. --hands gives the number of keys that a person "
             "can hold at once, 2 by default. A shortcut needs two fingers. A combination, whose keys are "
             "released one after the other, needs one."),
         withFingers(shortcut, 1), withFingers(combination, 1)},
        {QStringLiteral("pace"), Level::Warning, QStringLiteral("the keys are too fast for the given pace"),
         QStringLiteral(
             "--pace gives the minimum time between two movements of a person's fingers. At this pace the "
             "keys do not announce the row. A combination is forgotten when no key is released for %1 ms. "
             "The keys of a shortcut and the key of a long press can be held for as long as necessary.")
             .arg(KeyRules::singleKeyInterval.count()),
         atPace(combination, 2s), atPace(shortcut, 2s)},
        {QStringLiteral("also"), Level::Note, QStringLiteral("the keys announce another action as well"),
         QStringLiteral(
             "The three kinds of gestures do not exclude each other. Keys that are pressed one while the "
             "other is held are a shortcut, and their releases can be a combination; the key of a long "
             "press can open a combination when it is released. Both actions are announced. If this is not "
             "intended, choose other keys for one of them."),
         both(crossed, shortcut),
         both(combinations(R"({
    "ModifierKeys": [
        { "keys": ["Help", "Feed"], "eAction": "PaperStatus", "receiverService": "PrintManager",
          "validOnState": "Idle" }
    ]
}
)"),
              shortcut)},
    };
}

} // namespace

} // namespace checker
