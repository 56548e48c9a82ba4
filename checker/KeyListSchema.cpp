// SPDX-License-Identifier: MIT
#include "checker/KeyListSchema.h"

#include "checker/RowNames.h"
#include "keys/KeyListFile.h"
#include "keys/KeyRules.h"
#include "model/KeyLists.h"

#include <ls/Identifiers.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace checker {

using model::KeyLists;
using model::List;

namespace {

struct ListDescription
{
    List list;
    QString text;
    /// 0 for any number.
    int maxKeys;
};

const QVector<ListDescription>& descriptions()
{
    static const QVector<ListDescription> all{
        {List::LongPresses,
         QStringLiteral("Long presses: a key is held. Of several rows for a key, the last one counts."), 1},
        {List::Combinations,
         QStringLiteral(
             "Combinations: keys are released one after the other. Rows of one and two keys must precede the "
             "first row of three or more keys."),
         0},
        {List::Shortcuts,
         QStringLiteral(
             "Shortcuts: a key is pressed while another is held. Of several rows for two keys, the first one "
             "counts."),
         2},
    };
    return all;
}

QJsonObject described(QJsonObject schema, const QString& description)
{
    schema.insert(QStringLiteral("description"), description);
    return schema;
}

QJsonObject typed(const char* type)
{
    return {{QStringLiteral("type"), QLatin1String(type)}};
}

QJsonObject oneOf(const QStringList& names)
{
    return {{QStringLiteral("enum"), QJsonArray::fromStringList(names)}};
}

QJsonObject keysOf(const ListDescription& list)
{
    QJsonObject schema = typed("array");
    schema.insert(QStringLiteral("items"), oneOf(RowNames::of(ls::KeyId::meta)));
    schema.insert(QStringLiteral("minItems"), 1);
    if (list.maxKeys > 0) {
        schema.insert(QStringLiteral("maxItems"), list.maxKeys);
    }
    return described(schema, QStringLiteral("The keys, from the first one to the last one"));
}

/// One state, or several that are joined, with blanks only around the latter.
QJsonObject joinedStates()
{
    const QString state = QStringLiteral("(%1)").arg(RowNames::of(ls::StateId::meta).join(QLatin1Char('|')));
    const QString joined =
        QStringLiteral("\\s*%1\\s*(\\%2\\s*%1\\s*)+").arg(state).arg(KeyRules::stateSeparator);
    QJsonObject schema = typed("string");
    schema.insert(QStringLiteral("pattern"), QStringLiteral("^(%1|%2)$").arg(state, joined));
    return described(
        schema, QStringLiteral("The states in which the action is announced, joined with a vertical bar: %1")
                    .arg(RowNames::of(ls::StateId::meta).join(QStringLiteral(", "))));
}

QJsonObject timeout()
{
    QJsonObject schema = typed("integer");
    schema.insert(QStringLiteral("minimum"), 1);
    schema.insert(QStringLiteral("maximum"), KeyListFile::maxSeconds);
    return described(schema,
                     QStringLiteral("Whole seconds from the first repetition of the key to the action"));
}

QJsonObject rowOf(const ListDescription& list)
{
    const bool isTimed = list.list == List::LongPresses;
    QJsonObject members{
        {KeyListFields::keys, keysOf(list)},
        {KeyListFields::eAction, described(typed("string"), QStringLiteral("The action to announce"))},
        {KeyListFields::receiverService,
         described(oneOf(RowNames::of(ls::ServiceId::meta)), QStringLiteral("The service that is to act"))},
        {KeyListFields::validOnState,
         isTimed ? joinedStates()
                 : described(oneOf(RowNames::of(ls::StateId::meta)),
                             QStringLiteral("The state in which the action is announced"))},
    };
    if (isTimed) {
        members.insert(KeyListFields::timeout, timeout());
    }
    QJsonObject row = typed("object");
    row.insert(QStringLiteral("properties"), members);
    row.insert(QStringLiteral("required"), QJsonArray::fromStringList(members.keys()));
    row.insert(QStringLiteral("additionalProperties"), false);
    return row;
}

QJsonObject sectionOf(const ListDescription& list)
{
    QJsonObject section = typed("array");
    section.insert(QStringLiteral("items"), rowOf(list));
    return described(section, list.text);
}

} // namespace

QByteArray KeyListSchema::text()
{
    QJsonObject sections;
    QJsonArray alternatives;
    for (const ListDescription& list : descriptions()) {
        const QString name = KeyLists::sectionOf(list.list);
        sections.insert(name, sectionOf(list));
        alternatives.append(QJsonObject{{QStringLiteral("required"), QJsonArray{name}}});
    }
    QJsonObject schema = typed("object");
    schema.insert(QStringLiteral("$schema"), QStringLiteral("http://json-schema.org/draft-07/schema#"));
    schema.insert(QStringLiteral("title"),
                  QStringLiteral("Key list of the front panel of a braille embosser"));
    schema.insert(QStringLiteral("properties"), sections);
    schema.insert(QStringLiteral("oneOf"), alternatives);
    schema.insert(QStringLiteral("additionalProperties"), false);
    return QJsonDocument(schema).toJson();
}

} // namespace checker
