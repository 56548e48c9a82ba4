// SPDX-License-Identifier: MIT
#include "tests/support/BusPeer.h"
#include "tests/support/PrivateBus.h"

#include <vantre/DBusArgumentUnpack.h>

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusSignature>
#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>
#include <QtTest>

#include <unistd.h>

using libvantre::dbusArgumentUnpack;

namespace {

const QString echoService = QStringLiteral("com.vantre.Echo");

QVariant busVariant(const QVariant& value)
{
    return QVariant::fromValue(QDBusVariant(value));
}

template <typename T>
QVariant arrayOf(const QList<T>& elements)
{
    QDBusArgument argument;
    argument.beginArray(qMetaTypeId<T>());
    for (const T& element : elements) {
        argument << element;
    }
    argument.endArray();
    return QVariant::fromValue(argument);
}

template <typename Key, typename Value>
QVariant dictionaryOf(const QMap<Key, Value>& entries)
{
    QDBusArgument argument;
    argument.beginMap(qMetaTypeId<Key>(), qMetaTypeId<Value>());
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        argument.beginMapEntry();
        argument << entry.key() << entry.value();
        argument.endMapEntry();
    }
    argument.endMap();
    return QVariant::fromValue(argument);
}

template <typename... Members>
QVariant structureOf(const Members&... members)
{
    QDBusArgument argument;
    argument.beginStructure();
    (argument << ... << members);
    argument.endStructure();
    return QVariant::fromValue(argument);
}

QVariant objectPathDictionary()
{
    QDBusArgument argument;
    argument.beginMap(qMetaTypeId<QDBusObjectPath>(), QMetaType::Int);
    argument.beginMapEntry();
    argument << QDBusObjectPath("/a/b") << 1;
    argument.endMapEntry();
    argument.endMap();
    return QVariant::fromValue(argument);
}

QDBusUnixFileDescriptor descriptor()
{
    return QDBusUnixFileDescriptor(STDERR_FILENO);
}

QVariant nestedBusVariants(int depth)
{
    QVariant value = QStringLiteral("innermost");
    for (int i = 0; i < depth; ++i) {
        value = busVariant(value);
    }
    return value;
}

QVariant nestedLists(int depth)
{
    QVariant value = QStringLiteral("innermost");
    for (int i = 0; i < depth; ++i) {
        value = QVariantList{value};
    }
    return value;
}

} // namespace

struct Pair
{
    int number;
    QString text;
};
Q_DECLARE_METATYPE(Pair)

QDBusArgument& operator<<(QDBusArgument& argument, const Pair& pair)
{
    argument.beginStructure();
    argument << pair.number << pair.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Pair&)
{
    return argument;
}

class DBusArgumentUnpackTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup() { m_bus.report(); }
    void valueFromTheBusIsUnpacked_data();
    void valueFromTheBusIsUnpacked();
    void unpackingIsRepeatable_data() { valueFromTheBusIsUnpacked_data(); }
    void unpackingIsRepeatable();
    void elementsOfPlainContainersAreUnpacked();
    void containersWithBusArgumentsInsideAreUnpacked();
    void plainValuesAreUnchanged_data();
    void plainValuesAreUnchanged();
    void unsentArgumentIsInvalid();
    void descriptorOfAnotherBusIsInvalid();

private:
    QVariant overTheBus(const QVariant& value) const;

    PrivateBus m_bus;
    BusPeer m_peer{m_bus, echoService, &BusPeer::echo};
};

void DBusArgumentUnpackTest::initTestCase()
{
    qDBusRegisterMetaType<Pair>();
}

QVariant DBusArgumentUnpackTest::overTheBus(const QVariant& value) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(echoService, "/", echoService, "echo");
    call << value;
    const QDBusMessage reply = QDBusConnection::systemBus().call(call);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        qFatal("no echo: %s", qPrintable(reply.errorMessage()));
    }
    return reply.arguments().constFirst();
}

void DBusArgumentUnpackTest::valueFromTheBusIsUnpacked_data()
{
    QTest::addColumn<QVariant>("sent");
    QTest::addColumn<QString>("signature");
    QTest::addColumn<QVariant>("expected");
    const auto row = [](const char* name, const char* signature, const QVariant& sent,
                        const QVariant& expected) { QTest::newRow(name) << sent << signature << expected; };
    const QVariantMap map{{"a", 1}, {"b", "x"}};
    const QVariantMap deep{
        {"list", QVariantList{map, QVariantList{2.5}}}, {"map", map}, {"names", QStringList{"y"}}};
    const QDBusObjectPath path("/a/b");
    const QDBusSignature signature("a{sv}");

    row("string", "s", "text", "text");
    row("boolean", "b", true, true);
    row("byte", "y", QVariant::fromValue(uchar(7)), QVariant::fromValue(uchar(7)));
    row("64 bits", "x", std::numeric_limits<qlonglong>::min(), std::numeric_limits<qlonglong>::min());
    row("object path", "o", QVariant::fromValue(path), "/a/b");
    row("signature", "g", QVariant::fromValue(signature), "a{sv}");
    row("descriptor", "h", QVariant::fromValue(descriptor()), {});
    row("variant", "v", busVariant(5), 5);
    row("variants in variants", "v", nestedBusVariants(3), "innermost");
    row("variants to the limit of the bus", "v", nestedBusVariants(60), "innermost");
    row("descriptor in a variant", "v", busVariant(QVariant::fromValue(descriptor())), {});

    row("strings", "as", QStringList({"a", "b"}), QStringList({"a", "b"}));
    row("no strings", "as", QStringList(), QStringList());
    row("bytes", "ay", QByteArray("\0\xff", 2), QByteArray("\0\xff", 2));
    row("no bytes", "ay", QByteArray(), QByteArray(""));
    row("integers", "ai", arrayOf<int>({1, -2}), QVariantList({1, -2}));
    row("no integers", "ai", arrayOf<int>({}), QVariantList());
    row("object paths", "ao", arrayOf<QDBusObjectPath>({path}), QVariantList({"/a/b"}));
    row("descriptors", "ah", arrayOf<QDBusUnixFileDescriptor>({descriptor()}), QVariantList({QVariant()}));
    row("variants", "av", QVariantList({1, "x", QStringList{"y"}}), QVariantList({1, "x", QStringList{"y"}}));
    row("no variants", "av", QVariantList(), QVariantList());
    row("structures", "a(is)", arrayOf<Pair>({{1, "x"}, {2, "y"}}),
        QVariantList({QVariantList{1, "x"}, QVariantList{2, "y"}}));
    row("no structures", "a(is)", arrayOf<Pair>({}), QVariantList());
    row("maps", "aa{sv}", arrayOf<QVariantMap>({map, {}}), QVariantList({map, QVariantMap()}));
    row("string lists", "aas", arrayOf<QStringList>({{"a"}, {}}),
        QVariantList({QStringList{"a"}, QStringList()}));
    row("byte strings", "aay", arrayOf<QByteArray>({"a"}), QVariantList({QByteArray("a")}));
    row("lists to the limit of the bus", "av", nestedLists(30), nestedLists(30));

    row("structure", "(isv)", structureOf(1, QString("x"), QDBusVariant(map)), QVariantList({1, "x", map}));
    row("structure with a list", "(asi)", structureOf(QStringList{"a"}, 2),
        QVariantList({QStringList{"a"}, 2}));
    row("structure in a variant", "v", busVariant(structureOf(1, 2)), QVariantList({1, 2}));

    row("map", "a{sv}", map, map);
    row("empty map", "a{sv}", QVariantMap(), QVariantMap());
    row("deep map", "a{sv}", deep, deep);
    row("map in variants", "v", busVariant(busVariant(map)), map);
    row("map with a descriptor", "a{sv}", QVariantMap{{"a", QVariant::fromValue(descriptor())}},
        QVariantMap{{"a", QVariant()}});
    row("map of strings", "a{ss}", dictionaryOf<QString, QString>({{"a", "x"}}), QVariantMap{{"a", "x"}});
    row("map of lists", "a{sas}", dictionaryOf<QString, QStringList>({{"a", {"x"}}}),
        QVariantMap{{"a", QStringList{"x"}}});
    row("map of maps", "a{sa{sv}}", dictionaryOf<QString, QVariantMap>({{"a", map}}),
        QVariantMap{{"a", map}});
    row("integer keys", "a{ii}", dictionaryOf<int, int>({{-1, 2}, {3, 4}}), QVariantMap{{"-1", 2}, {"3", 4}});
    row("byte keys", "a{ys}", dictionaryOf<uchar, QString>({{7, "x"}}), QVariantMap{{"7", "x"}});
    row("boolean keys", "a{bs}", dictionaryOf<bool, QString>({{true, "x"}}), QVariantMap{{"true", "x"}});
    row("object path keys", "a{oi}", objectPathDictionary(), QVariantMap{{"/a/b", 1}});
    row("no integer keys", "a{ii}", dictionaryOf<int, int>({}), QVariantMap());
}

void DBusArgumentUnpackTest::valueFromTheBusIsUnpacked()
{
    QFETCH(QVariant, sent);
    QFETCH(QVariant, expected);

    const QVariant unpacked = dbusArgumentUnpack(overTheBus(sent));

    QTEST(m_peer.calls().constLast().signature(), "signature");
    QCOMPARE(unpacked.typeName(), expected.typeName());
    QCOMPARE(unpacked, expected);
}

void DBusArgumentUnpackTest::unpackingIsRepeatable()
{
    QFETCH(QVariant, sent);
    const QVariant received = overTheBus(sent);
    const QVariant copy = received;

    const QVariant first = dbusArgumentUnpack(received);

    QCOMPARE(dbusArgumentUnpack(received), first);
    QCOMPARE(dbusArgumentUnpack(copy), first);
    QCOMPARE(dbusArgumentUnpack(first), first);
}

void DBusArgumentUnpackTest::elementsOfPlainContainersAreUnpacked()
{
    const QVariantMap packed{
        {"variant", busVariant(busVariant(1))},
        {"list", QVariantList{busVariant("x"), QVariant::fromValue(QDBusObjectPath("/"))}},
        {"map", QVariantMap{{"path", QVariant::fromValue(QDBusSignature("s"))}}}};

    const QVariantMap unpacked{
        {"variant", 1}, {"list", QVariantList{"x", "/"}}, {"map", QVariantMap{{"path", "s"}}}};
    QCOMPARE(dbusArgumentUnpack(packed), QVariant(unpacked));
}

void DBusArgumentUnpackTest::containersWithBusArgumentsInsideAreUnpacked()
{
    const QVariant argument = overTheBus(QVariantMap{{"a", 1}});
    QCOMPARE(argument.userType(), qMetaTypeId<QDBusArgument>());

    const QVariantMap unpacked = dbusArgumentUnpack(QVariantMap{{"outer", QVariantList{argument}}}).toMap();

    QCOMPARE(unpacked, QVariantMap({{"outer", QVariantList{QVariantMap{{"a", 1}}}}}));
}

void DBusArgumentUnpackTest::plainValuesAreUnchanged_data()
{
    QTest::addColumn<QVariant>("value");

    QTest::newRow("nothing") << QVariant();
    QTest::newRow("boolean") << QVariant(true);
    QTest::newRow("string") << QVariant("x");
    QTest::newRow("null") << QVariant::fromValue(nullptr);
    QTest::newRow("strings") << QVariant(QStringList{"a"});
    QTest::newRow("point") << QVariant(QPoint(1, 2));
    QTest::newRow("empty list") << QVariant(QVariantList());
    QTest::newRow("empty map") << QVariant(QVariantMap());
    QTest::newRow("deep list") << nestedLists(1000);
}

void DBusArgumentUnpackTest::plainValuesAreUnchanged()
{
    QFETCH(QVariant, value);

    const QVariant unpacked = dbusArgumentUnpack(value);

    QCOMPARE(unpacked.userType(), value.userType());
    QCOMPARE(unpacked, value);
}

void DBusArgumentUnpackTest::unsentArgumentIsInvalid()
{
    QVERIFY(!dbusArgumentUnpack(QVariant::fromValue(QDBusArgument())).isValid());
    QVERIFY(!dbusArgumentUnpack(arrayOf<int>({1})).isValid());
    QVERIFY(!dbusArgumentUnpack(structureOf(1)).isValid());
}

void DBusArgumentUnpackTest::descriptorOfAnotherBusIsInvalid()
{
    QVERIFY(!dbusArgumentUnpack(QVariant::fromValue(descriptor())).isValid());
    QVERIFY(!dbusArgumentUnpack(busVariant(QVariant::fromValue(QDBusUnixFileDescriptor()))).isValid());
}

QTEST_GUILESS_MAIN(DBusArgumentUnpackTest)
#include "DBusArgumentUnpackTest.moc"
