// SPDX-License-Identifier: MIT
#include "tests/whole/fuzz/BusValues.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusSignature>
#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>

#include <array>
#include <cstring>

#include <unistd.h>

/// Structures of the smallest and the largest members.
struct Pair
{
    qint32 number;
    QString text;
};
Q_DECLARE_METATYPE(Pair)

struct Wide
{
    uchar byte;
    QDBusVariant variant;
    QDBusUnixFileDescriptor descriptor;
    QVariantMap map;
    QStringList list;
};
Q_DECLARE_METATYPE(Wide)

QDBusArgument& operator<<(QDBusArgument& argument, const Pair& pair)
{
    argument.beginStructure();
    argument << pair.number << pair.text;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const Wide& wide)
{
    argument.beginStructure();
    argument << wide.byte << wide.variant << wide.descriptor << wide.map << wide.list;
    argument.endStructure();
    return argument;
}

// Required by Qt for the registration, but never used.
const QDBusArgument& operator>>(const QDBusArgument& argument, Pair&)
{
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Wide&)
{
    return argument;
}

namespace {

// Containers, including variants, can be nested 64 deep in a message. `depth` is the number of enclosing
// containers. Beyond the limit, Qt's marshalling corrupts memory.
constexpr int maxDepth = 64;
constexpr int variantCost = 1;
constexpr int structureCost = 1;
constexpr int arrayCost = 1;
constexpr int dictionaryCost = 2; // array, entry
constexpr int listCost = 2;       // array, variant
constexpr int mapCost = 3;        // array, entry, variant
constexpr int maxOwnDepth = 6;    // the largest of these costs, rounded up

QVariant anyValue(Bytes& bytes, int depth);

/// Usually few, sometimes hundreds.
int elementCount(Bytes& bytes)
{
    constexpr int few = 240;
    const int number = bytes.next();
    return number < few ? number % 4 : (number - few) * 20;
}

template <typename T>
T make(Bytes& bytes, int)
{
    return bytes.number<T>();
}

template <>
bool make<bool>(Bytes& bytes, int)
{
    return bytes.below(2) == 1;
}

template <>
double make<double>(Bytes& bytes, int)
{
    const auto bits = bytes.number<quint64>();
    double number = 0;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

template <>
QString make<QString>(Bytes& bytes, int)
{
    return bytes.text();
}

template <>
QDBusObjectPath make<QDBusObjectPath>(Bytes& bytes, int)
{
    static const std::array<QDBusObjectPath, 3> paths{QDBusObjectPath("/"), QDBusObjectPath("/a/b"),
                                                      QDBusObjectPath("/com/vantre/StateHandler")};
    return bytes.pick(paths);
}

template <>
QDBusSignature make<QDBusSignature>(Bytes& bytes, int)
{
    static const std::array<QDBusSignature, 3> signatures{QDBusSignature("s"), QDBusSignature("a{sv}"),
                                                          QDBusSignature("aa{y(ii)}")};
    return bytes.pick(signatures);
}

/// Always the same descriptor, because it stays open.
const QDBusUnixFileDescriptor& descriptor()
{
    static const QDBusUnixFileDescriptor descriptor(STDERR_FILENO);
    return descriptor;
}

template <>
QDBusUnixFileDescriptor make<QDBusUnixFileDescriptor>(Bytes&, int)
{
    return descriptor();
}

template <>
QDBusVariant make<QDBusVariant>(Bytes& bytes, int depth)
{
    return QDBusVariant(anyValue(bytes, depth + variantCost));
}

template <>
QStringList make<QStringList>(Bytes& bytes, int)
{
    QStringList list;
    for (int i = elementCount(bytes); i > 0; --i) {
        list.append(bytes.text());
    }
    return list;
}

template <>
QByteArray make<QByteArray>(Bytes& bytes, int)
{
    return bytes.take(bytes.next());
}

template <>
QVariantList make<QVariantList>(Bytes& bytes, int depth)
{
    QVariantList list;
    for (int i = elementCount(bytes); i > 0; --i) {
        list.append(anyValue(bytes, depth + listCost));
    }
    return list;
}

template <>
QVariantMap make<QVariantMap>(Bytes& bytes, int depth)
{
    QVariantMap map;
    for (int i = elementCount(bytes); i > 0; --i) {
        const QString key = bytes.text();
        map.insert(key, anyValue(bytes, depth + mapCost));
    }
    return map;
}

template <>
Pair make<Pair>(Bytes& bytes, int)
{
    const auto number = bytes.number<qint32>();
    return {number, bytes.text()};
}

template <>
Wide make<Wide>(Bytes& bytes, int depth)
{
    const auto byte = bytes.next();
    const auto variant = make<QDBusVariant>(bytes, depth + structureCost);
    const auto map = make<QVariantMap>(bytes, depth + structureCost);
    return {byte, variant, descriptor(), map, make<QStringList>(bytes, depth)};
}

/// Wraps `value` and registers its type for messages.
template <typename T>
QVariant variantOf(const T& value)
{
    static const int type = qDBusRegisterMetaType<T>();
    return QVariant(type, &value);
}

template <typename T>
QVariant single(Bytes& bytes, int depth)
{
    return QVariant::fromValue(make<T>(bytes, depth));
}

template <typename T>
QVariant array(Bytes& bytes, int depth)
{
    QList<T> list;
    for (int i = elementCount(bytes); i > 0; --i) {
        list.append(make<T>(bytes, depth + arrayCost));
    }
    return variantOf(list);
}

template <typename Key, typename Value>
QVariant dictionary(Bytes& bytes, int depth)
{
    QMap<Key, Value> map;
    for (int i = elementCount(bytes); i > 0; --i) {
        const Key key = make<Key>(bytes, depth + dictionaryCost);
        map.insert(key, make<Value>(bytes, depth + dictionaryCost));
    }
    return variantOf(map);
}

/// Up to the depth that a message can hold.
QVariant nestedVariants(Bytes& bytes, int depth)
{
    QVariant value = anyValue(bytes, maxDepth);
    for (int i = bytes.below(maxDepth - depth); i > 0; --i) {
        value = QVariant::fromValue(QDBusVariant(value));
    }
    return value;
}

QVariant nestedLists(Bytes& bytes, int depth)
{
    QVariant value = anyValue(bytes, maxDepth);
    for (int i = bytes.below((maxDepth - depth) / listCost); i > 0; --i) {
        value = QVariantList{value};
    }
    return value;
}

using Maker = QVariant (*)(Bytes&, int);

constexpr std::array basicMakers{
    single<uchar>,
    single<bool>,
    single<short>,
    single<ushort>,
    single<int>,
    single<uint>,
    single<qlonglong>,
    single<qulonglong>,
    single<double>,
    single<QString>,
    single<QDBusObjectPath>,
    single<QDBusSignature>,
    single<QDBusUnixFileDescriptor>,
    single<QByteArray>,
    single<QStringList>,
};

constexpr std::array containerMakers{
    single<QVariantList>,
    single<QVariantMap>,
    single<QDBusVariant>,
    nestedVariants,
    nestedLists,
    array<bool>,
    array<short>,
    array<int>,
    array<qulonglong>,
    array<double>,
    array<QDBusObjectPath>,
    array<QDBusSignature>,
    array<QDBusUnixFileDescriptor>,
    array<QDBusVariant>,
    array<QByteArray>,
    array<QStringList>,
    array<QVariantList>,
    array<QVariantMap>,
    array<Pair>,
    array<Wide>,
    single<Pair>,
    single<Wide>,
    dictionary<QString, QString>,
    dictionary<QString, Pair>,
    dictionary<QString, QVariantMap>,
    dictionary<uchar, QStringList>,
    dictionary<bool, QByteArray>,
    dictionary<int, QDBusVariant>,
    dictionary<qlonglong, QVariantList>,
    dictionary<double, int>,
    dictionary<QDBusObjectPath, QDBusVariant>,
    dictionary<QDBusSignature, QDBusUnixFileDescriptor>,
};

QVariant anyValue(Bytes& bytes, int depth)
{
    const bool isRoom = depth + maxOwnDepth <= maxDepth;
    const size_t kinds = basicMakers.size() + (isRoom ? containerMakers.size() : 0);
    const size_t kind = bytes.next() % kinds;
    return kind < basicMakers.size() ? basicMakers.at(kind)(bytes, depth)
                                     : containerMakers.at(kind - basicMakers.size())(bytes, depth);
}

} // namespace

void BusValues::prepare()
{
    qDBusRegisterMetaType<Pair>();
    qDBusRegisterMetaType<Wide>();
    descriptor();
}

QVariant BusValues::value(Bytes& bytes)
{
    return anyValue(bytes, 0);
}

QVariantMap BusValues::map(Bytes& bytes, const QStringList& keys, const QStringList& words)
{
    constexpr int countLimit = 8;
    constexpr int oneIn = 4;
    QVariantMap map;
    for (int i = bytes.below(countLimit); i > 0; --i) {
        const QString key = bytes.below(oneIn) == 0 ? bytes.text() : bytes.pick(keys);
        map.insert(key, bytes.below(2) == 0 ? anyValue(bytes, mapCost) : QVariant(bytes.pick(words)));
    }
    return map;
}
