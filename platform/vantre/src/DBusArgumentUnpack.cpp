// SPDX-License-Identifier: MIT
#include <vantre/DBusArgumentUnpack.h>

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusSignature>
#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>
#include <QStringList>

namespace libvantre {

namespace {

// QVariant would convert a byte to the character with that code.
QString keyText(const QVariant& key)
{
    if (key.userType() == QMetaType::UChar) {
        return QString::number(key.value<uchar>());
    }
    return dbusArgumentUnpack(key).toString();
}

// asVariant() returns nested containers as separate bus arguments. An element that it cannot read is not
// skipped, so the loop must end there.
QVariantList readElements(const QDBusArgument& argument)
{
    QVariantList elements;
    while (!argument.atEnd()) {
        const QVariant element = argument.asVariant();
        if (!element.isValid()) {
            break;
        }
        elements.append(dbusArgumentUnpack(element));
    }
    return elements;
}

QVariant readArray(const QDBusArgument& argument)
{
    const QString signature = argument.currentSignature();
    if (signature == QLatin1String("as") || signature == QLatin1String("ay")) {
        return argument.asVariant();
    }
    argument.beginArray();
    const QVariantList elements = readElements(argument);
    argument.endArray();
    return elements;
}

QVariant readStructure(const QDBusArgument& argument)
{
    argument.beginStructure();
    const QVariantList elements = readElements(argument);
    argument.endStructure();
    return elements;
}

QVariant readMap(const QDBusArgument& argument)
{
    QVariantMap map;
    argument.beginMap();
    while (!argument.atEnd()) {
        argument.beginMapEntry();
        const QVariant key = argument.asVariant();
        const QVariant value = argument.asVariant();
        argument.endMapEntry();
        if (!key.isValid()) {
            break;
        }
        map.insert(keyText(key), dbusArgumentUnpack(value));
    }
    argument.endMap();
    return map;
}

QVariant readArgument(const QDBusArgument& argument)
{
    switch (argument.currentType()) {
    case QDBusArgument::BasicType:
    case QDBusArgument::VariantType:
        return dbusArgumentUnpack(argument.asVariant());
    case QDBusArgument::ArrayType:
        return readArray(argument);
    case QDBusArgument::StructureType:
        return readStructure(argument);
    case QDBusArgument::MapType:
        return readMap(argument);
    case QDBusArgument::MapEntryType:
    case QDBusArgument::UnknownType:
        break;
    }
    return {};
}

QVariant unpackList(QVariantList list)
{
    for (QVariant& element : list) {
        element = dbusArgumentUnpack(element);
    }
    return list;
}

QVariant unpackMap(QVariantMap map)
{
    for (QVariant& value : map) {
        value = dbusArgumentUnpack(value);
    }
    return map;
}

} // namespace

QVariant dbusArgumentUnpack(const QVariant& value)
{
    const int type = value.userType();
    // Reading moves the position of the copy only, so that the value can be unpacked again.
    if (type == qMetaTypeId<QDBusArgument>()) {
        return readArgument(value.value<QDBusArgument>());
    }
    if (type == qMetaTypeId<QDBusVariant>()) {
        return dbusArgumentUnpack(value.value<QDBusVariant>().variant());
    }
    if (type == qMetaTypeId<QDBusObjectPath>()) {
        return value.value<QDBusObjectPath>().path();
    }
    if (type == qMetaTypeId<QDBusSignature>()) {
        return value.value<QDBusSignature>().signature();
    }
    // If the bus cannot pass descriptors, Qt returns a meaningless pointer instead.
    if (type == qMetaTypeId<QDBusUnixFileDescriptor>() || type == QMetaType::VoidStar) {
        return {};
    }
    if (type == QMetaType::QVariantList) {
        return unpackList(value.toList());
    }
    if (type == QMetaType::QVariantMap) {
        return unpackMap(value.toMap());
    }
    return value;
}

} // namespace libvantre
