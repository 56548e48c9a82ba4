// SPDX-License-Identifier: MIT
#include "service/BusValue.h"
#include "tests/support/BusPeer.h"
#include "tests/support/PrivateBus.h"

#include <vantre/DBusArgumentUnpack.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QJsonDocument>
#include <QtTest>

namespace {

const QString peerName = QStringLiteral("com.vantre.Peer");

QVariant nestedMaps(int depth)
{
    QVariant value = QStringLiteral("core");
    for (int i = 0; i < depth; ++i) {
        value = QVariantMap{{QStringLiteral("m"), value}};
    }
    return value;
}

QVariant nestedLists(int depth)
{
    QVariant value = QStringLiteral("core");
    for (int i = 0; i < depth; ++i) {
        value = QVariantList{value};
    }
    return value;
}

} // namespace

/// Sends values over a real bus, whose daemon disconnects senders that exceed its limits.
class BusValueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void plainValuesArriveUnchanged();
    void nullsArriveAsEmptyStrings();
    void valuesOfEveryDepthArrive_data();
    void valuesOfEveryDepthArrive();
    void valuesThatFitAreNotCut_data();
    void valuesThatFitAreNotCut();
    void oddStringsArrive_data();
    void oddStringsArrive();

private:
    QVariantMap sendOverBus(const QVariantMap& map);

    PrivateBus m_bus;
    BusPeer m_peer{m_bus, peerName, &BusPeer::echo};
};

QVariantMap BusValueTest::sendOverBus(const QVariantMap& map)
{
    QDBusMessage call = QDBusMessage::createMethodCall(peerName, "/", peerName, "echo");
    call << QVariant(toBusMap(map));
    const QDBusMessage reply = QDBusConnection::systemBus().call(call);
    return libvantre::dbusArgumentUnpack(reply.arguments().value(0)).toMap();
}

void BusValueTest::plainValuesArriveUnchanged()
{
    const QVariantMap map{{"text", "x"},
                          {"number", 7},
                          {"long", 5000000000LL},
                          {"real", 1.5},
                          {"truth", true},
                          {"list", QVariantList{1, "a", QVariantMap{{"b", 2}}}},
                          {"map", QVariantMap{{"empty", QVariantMap{}}}}};
    QCOMPARE(sendOverBus(map), map);
}

void BusValueTest::nullsArriveAsEmptyStrings()
{
    const QVariantMap parsed =
        QJsonDocument::fromJson(R"({"a": null, "b": [1, null, {"c": null}], "d": {"e": null}})")
            .toVariant()
            .toMap();
    const QVariantMap expected{
        {"a", ""}, {"b", QVariantList{1, "", QVariantMap{{"c", ""}}}}, {"d", QVariantMap{{"e", ""}}}};
    QCOMPARE(QJsonDocument::fromVariant(sendOverBus(parsed)), QJsonDocument::fromVariant(expected));
}

void BusValueTest::valuesOfEveryDepthArrive_data()
{
    QTest::addColumn<QVariant>("value");
    for (int depth : {1, 10, 18, 19, 20, 21, 22, 25, 40, 70, 1000}) {
        QTest::addRow("maps %d deep", depth) << nestedMaps(depth);
        QTest::addRow("lists %d deep", depth) << nestedLists(depth);
        QTest::addRow("lists %d deep in maps", depth)
            << QVariant(QVariantMap{{"a", QVariantMap{{"b", nestedLists(depth)}}}});
    }
    for (int depth = 26; depth < 34; ++depth) {
        QTest::addRow("lists %d deep, around the limit", depth) << nestedLists(depth);
    }
}

void BusValueTest::valuesOfEveryDepthArrive()
{
    QFETCH(QVariant, value);
    const QVariantMap arrived = sendOverBus({{"value", value}, {"other", 1}});
    QCOMPARE(arrived.value("other"), QVariant(1));
    QVERIFY(arrived.contains("value"));
}

void BusValueTest::valuesThatFitAreNotCut_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("the deepest nesting of maps") << nestedMaps(20);
    QTest::newRow("the deepest nesting of lists") << nestedLists(30);
}

void BusValueTest::valuesThatFitAreNotCut()
{
    QFETCH(QVariant, value);
    QCOMPARE(sendOverBus({{"value", value}}).value("value"), value);
}

void BusValueTest::oddStringsArrive_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("unpaired surrogate") << QString(QChar(0xd800));
    QTest::newRow("no character") << QString(QChar(0xffff));
    QTest::newRow("with a null character") << QString("a") + QChar(0) + "b";
    QTest::newRow("a million characters") << QString(1000000, QChar(0x20ac));
}

void BusValueTest::oddStringsArrive()
{
    QFETCH(QString, text);
    const QVariantMap arrived = sendOverBus({{text, text}, {"other", 1}});
    QCOMPARE(arrived.value("other"), QVariant(1));
    QCOMPARE(arrived.size(), 2);
}

QTEST_GUILESS_MAIN(BusValueTest)
#include "BusValueTest.moc"
