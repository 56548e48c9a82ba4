// SPDX-License-Identifier: MIT
#include "service/BusValue.h"

#include <QVariant>

namespace {

// A message holds at most 64 nested containers. A map within a map takes three of them (variant, array,
// dictionary entry), a list two; the map that is the body of the message has taken its share already.
constexpr int maxContainers = 64;
constexpr int mapCost = 3;
constexpr int listCost = 2;

QVariant carried(const QVariant& value, int depth);

template <class Container>
QVariant carriedContainer(Container values, int depth)
{
    if (depth > maxContainers) {
        return QString();
    }
    for (QVariant& value : values) {
        value = carried(value, depth);
    }
    return values;
}

QVariant carried(const QVariant& value, int depth)
{
    switch (value.userType()) {
    case QMetaType::QVariantMap:
        return carriedContainer(value.toMap(), depth + mapCost);
    case QMetaType::QVariantList:
        return carriedContainer(value.toList(), depth + listCost);
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        return QString();
    default:
        return value;
    }
}

} // namespace

QVariantMap toBusMap(const QVariantMap& map)
{
    return carried(map, 0).toMap();
}
