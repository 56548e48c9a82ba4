// SPDX-License-Identifier: MIT
#include "service/BusValue.h"

#include <QVariant>

namespace {

// A message holds at most 64 nested containers. A map within a map takes three of them (variant, array,
// dictionary entry), a list two; the map that is the body of the message has taken its share already.
constexpr int containerLimit = 64;
constexpr int mapCost = 3;
constexpr int listCost = 2;

// The system bus drops the connection of a sender whose message is over 32 MiB.
constexpr qint64 sizeLimit = 30 * 1024 * 1024;
// More than the alignment, length, signature and end mark of a value ever take.
constexpr qint64 valueOverhead = 24;

struct Carried
{
    QVariant value;
    qint64 size; // an upper bound of the bytes in the message
};

Carried carried(const QVariant& value, int depth);

Carried carriedString(const QString& text)
{
    return {text, text.toUtf8().size() + valueOverhead};
}

Carried fitting(const QVariant& container, qint64 size)
{
    return size > sizeLimit ? carriedString(QString()) : Carried{container, size};
}

Carried carriedMap(const QVariantMap& map, int depth)
{
    QVariantMap result;
    qint64 size = valueOverhead;
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        const Carried entry = carried(it.value(), depth);
        result.insert(it.key(), entry.value);
        size += carriedString(it.key()).size + entry.size;
        if (size > sizeLimit) {
            break; // nothing is copied that will not be sent
        }
    }
    return fitting(result, size);
}

Carried carriedList(const QVariantList& list, int depth)
{
    QVariantList result;
    qint64 size = valueOverhead;
    for (const QVariant& value : list) {
        const Carried item = carried(value, depth);
        result.append(item.value);
        size += item.size;
        if (size > sizeLimit) {
            break;
        }
    }
    return fitting(result, size);
}

Carried carried(const QVariant& value, int depth)
{
    switch (value.userType()) {
    case QMetaType::QVariantMap:
        return depth + mapCost > containerLimit ? carriedString(QString())
                                                : carriedMap(value.toMap(), depth + mapCost);
    case QMetaType::QVariantList:
        return depth + listCost > containerLimit ? carriedString(QString())
                                                 : carriedList(value.toList(), depth + listCost);
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        return carriedString(QString());
    case QMetaType::QString:
        return carriedString(value.toString());
    default:
        return {value, valueOverhead};
    }
}

} // namespace

QVariantMap toBusMap(const QVariantMap& map)
{
    QVariantMap result;
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        result.insert(it.key(), carried(it.value(), mapCost).value);
    }
    return result;
}
