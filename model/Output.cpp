// SPDX-License-Identifier: MIT
#include "model/Output.h"

#include "keys/KeyRules.h"
#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>

#include <QDebug>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <iterator>

namespace model {

namespace {

using libtranslation::Sid::EmbosserCore;
using libtranslation::Sid::EmbosserError;
using libtranslation::Sid::EmbosserMenu;

Output cancellation()
{
    return {Output::Kind::Cancel, {}, 0, {}, {}};
}

Output spoken(EmbosserCore sentence)
{
    return {Output::Kind::Speak, QStringLiteral("EmbosserCore"), static_cast<int>(sentence), {}, {}};
}

Output spoken(EmbosserError sentence)
{
    return {Output::Kind::Speak, QStringLiteral("EmbosserError"), static_cast<int>(sentence), {}, {}};
}

Output spoken(EmbosserMenu sentence)
{
    return {Output::Kind::Speak, QStringLiteral("EmbosserMenu"), static_cast<int>(sentence), {}, {}};
}

Output announcement(const QString& action, const QString& receiver, const QStringList& keys)
{
    return {Output::Kind::Announce, action, 0, receiver, keys};
}

/// A warning of the router, formatted by the same debug stream.
template <typename... Words>
Output warning(const Words&... words)
{
    QString line;
    QDebug stream(&line);
    stream.noquote() << QStringLiteral("KeyboardManager::onEvent WARN:");
    stream.quote();
    (stream << ... << words);
    return {Output::Kind::Log, line.trimmed(), 0, {}, {}};
}

/// A word of a key script: a dash if it is empty, a JSON string if it has blanks.
QString word(const QString& text)
{
    const bool isPlain = text != QLatin1String("-") && std::none_of(text.begin(), text.end(), [](QChar c) {
                             return c.isSpace() || c < ' ';
                         });
    if (text.isEmpty() || isPlain) {
        return text.isEmpty() ? QStringLiteral("-") : text;
    }
    const QByteArray json = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(json.mid(1, json.size() - 2));
}

/// Turns effects into outputs.
class Writer
{
public:
    Writer(const KeyLists& lists, State state) : m_lists(lists), m_state(Alphabet::nameOf(state)) {}

    void write(const Effect& effect);
    QVector<Output> outputs() const { return m_outputs; }

private:
    void deliver(RowId id);
    void announceSingle(const QString& key);
    void speakClosingKey(const KeyEntry& row);
    EmbosserCore nameOf(const QString& key) const;

    const KeyLists& m_lists;
    QString m_state;
    QVector<Output> m_outputs;
};

void Writer::write(const Effect& effect)
{
    const QString key = Alphabet::nameOf(effect.key);
    switch (effect.rule) {
    case Rule::StartupRefuses:
        m_outputs << cancellation() << spoken(EmbosserError::StartingUp);
        break;
    case Rule::CombinationCompletes:
        speakClosingKey(m_lists.row(effect.row));
        deliver(effect.row);
        break;
    case Rule::ShortcutCompletes:
    case Rule::LongPressCompletes:
        deliver(effect.row);
        break;
    case Rule::NameSpoken:
        m_outputs << spoken(nameOf(key));
        break;
    case Rule::TestNameSpoken:
        m_outputs << cancellation() << spoken(nameOf(key));
        break;
    case Rule::MenuSentAtOnce:
    case Rule::LoneKeySent:
    case Rule::KeySentAtOnce:
    case Rule::TestEnds:
        announceSingle(key);
        break;
    case Rule::FactoryResetCompletes:
        m_outputs << spoken(EmbosserMenu::FactoryReset)
                  << announcement(ls::KeyboardActionId::FactoryReset, ls::ServiceId::WwwApi, {key});
        break;
    default:
        break;
    }
}

void Writer::deliver(RowId id)
{
    const KeyEntry& row = m_lists.row(id);
    const QStringList keys = id.list == List::LongPresses ? QStringList(row.firstKey())
                                                          : QStringList{row.firstKey(), row.lastKey()};
    const QStringList states = m_lists.statesOf(id);
    for (const QString& state : states) {
        if (row.receiverService() == vocabulary::undefined) {
            m_outputs << warning("Invalid event, receiver service is undefined!");
        } else if (state == m_state) {
            m_outputs << announcement(row.eAction(), row.receiverService(), keys);
        } else {
            m_outputs << warning("Expected state is: ", state, ", but current", "state is: ", m_state, "!?");
        }
    }
}

void Writer::announceSingle(const QString& key)
{
    const QStringList receivers = KeyRules::singleKeyReceivers(key, m_state);
    for (const QString& receiver : receivers) {
        m_outputs << announcement(ls::KeyboardActionId::SingleKey, receiver, {key});
    }
}

/// Only a row of three or more keys cancels earlier speech. The names do not depend on the model.
void Writer::speakClosingKey(const KeyEntry& row)
{
    if (row.isSequence()) {
        m_outputs << cancellation();
    }
    m_outputs << spoken(vocabulary::keyNames().value(row.lastKey()));
}

EmbosserCore Writer::nameOf(const QString& key) const
{
    const bool hasOrvaneName = m_lists.isOrvane && key == ls::KeyId::Function;
    return hasOrvaneName ? EmbosserCore::KeyFunctionOrvane : vocabulary::keyNames().value(key);
}

} // namespace

QString Output::toText(const QString& sender) const
{
    switch (kind) {
    case Kind::Cancel:
        return QStringLiteral("cancel");
    case Kind::Speak:
        return QStringLiteral("speak %1 %2").arg(text).arg(sentence);
    case Kind::Announce: {
        QStringList words{QStringLiteral("announce"), word(text), word(receiver), word(sender)};
        std::transform(keys.begin(), keys.end(), std::back_inserter(words), word);
        return words.join(QLatin1Char(' '));
    }
    case Kind::Log:
        break;
    }
    return QStringLiteral("log ") + text;
}

QVector<Output> Outputs::of(const Effects& effects, const KeyLists& lists, State state)
{
    Writer writer(lists, state);
    for (const Effect& effect : effects) {
        writer.write(effect);
    }
    return writer.outputs();
}

} // namespace model
