// SPDX-License-Identifier: MIT
#include "service/BusValue.h"

#include <QVariant>

namespace {

// A message nests at most 64 containers. A map takes three of them (variant, array, dictionary entry), a list
// two.
constexpr int maxContainers = 64;
constexpr int mapCost = 3;
constexpr int listCost = 2;

QVariant busValue(const QVariant& value, int depth);

template <class Container>
QVariant busContainer(Container values, int depth)
{
    if (depth > maxContainers) {
        return QString();
    }
    for (QVariant& value : values) {
        value = busValue(value, depth);
    }
    return values;
}

QVariant busValue(const QVariant& value, int depth)
{
    switch (value.userType()) {
    case QMetaType::QVariantMap:
        return busContainer(value.toMap(), depth + mapCost);
    case QMetaType::QVariantList:
        return busContainer(value.toList(), depth + listCost);
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
    return busValue(map, 0).toMap();
}
