// SPDX-License-Identifier: MIT
#include "keys/LongKey.h"
#include "tests/virtual/DeviceTest.h"
#include "tests/virtual/MapReader.h"

/// Tests what key scripts cannot express.
class LongKeyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachValidStateIsEmitted_data();
    void eachValidStateIsEmitted();
    void rowWithoutKeysNeverFires();
    void firstKeyOfARowMustBeHeld();
    void negativeTimeFiresImmediately();
    void maximumTimeExpires();
    void receiverMayStopTheRecogniser();
    void tripledTimeIsLimitedTo32Bits_data();
    void tripledTimeIsLimitedTo32Bits();
    void missingFileHasNoTimes();

private:
    void make(const QVariantList& rows);
    static QVariant row(const QString& key, const QVariant& timeout, const QString& states = "Idle");
    void advance(std::chrono::milliseconds time) { VirtualDevice::clock().advance(time); }
    QStringList takeFired();

    std::unique_ptr<LongKey> longKey;
    QStringList fired;
};

void LongKeyTest::make(const QVariantList& rows)
{
    MapReader reader({{"LongKeys", rows}});
    longKey = std::make_unique<LongKey>(reader, nullptr);
    fired.clear();
    connect(
        longKey.get(), &LongKey::longPress, this,
        [this](const QString& action, const QString& receiver, const QString& state, const QVariantMap& map) {
            const QVariantMap expected{{firstKeyKey, map.value(firstKeyKey)}};
            QCOMPARE(map, expected);
            fired.append(
                QStringList{action, receiver, "<" + state + ">", map.value(firstKeyKey).toString()}.join(
                    ' '));
        });
}

QVariant LongKeyTest::row(const QString& key, const QVariant& timeout, const QString& states)
{
    return QVariantMap{{"keys", QStringList{key}},
                       {"eAction", "Act"},
                       {"receiverService", "UserMenu"},
                       {"timeout", timeout},
                       {"validOnState", states}};
}

QStringList LongKeyTest::takeFired()
{
    return std::exchange(fired, {});
}

void LongKeyTest::eachValidStateIsEmitted_data()
{
    QTest::addColumn<QString>("states");
    QTest::addColumn<QStringList>("emitted");
    QTest::newRow("one") << "Idle" << QStringList{"Idle"};
    QTest::newRow("one with blanks, untouched") << " Idle " << QStringList{" Idle "};
    QTest::newRow("two") << "Idle|Print" << QStringList{"Idle", "Print"};
    QTest::newRow("two with blanks, trimmed") << " Idle | Print " << QStringList{"Idle", "Print"};
    QTest::newRow("inner blanks reduced") << "Idle|Print \t  Off" << QStringList{"Idle", "Print Off"};
    QTest::newRow("empty part") << "Idle||Print" << QStringList{"Idle", "", "Print"};
    QTest::newRow("only a bar") << "|" << QStringList{"", ""};
    QTest::newRow("none") << "" << QStringList{""};
}

void LongKeyTest::eachValidStateIsEmitted()
{
    QFETCH(QString, states);
    QFETCH(QStringList, emitted);
    make({row("Menu", 1, states)});
    longKey->start("Menu");
    advance(1s);
    QStringList expected;
    for (const QString& state : emitted) {
        expected.append("Act UserMenu <" + state + "> Menu");
    }
    QCOMPARE(takeFired(), expected);
}

void LongKeyTest::rowWithoutKeysNeverFires()
{
    make({QVariantMap{{"timeout", 1}, {"validOnState", "Idle"}}});
    longKey->start("");
    advance(10s);
    QCOMPARE(takeFired(), QStringList{});
    QCOMPARE(longKey->timeouts(), QVariantMap{});
}

void LongKeyTest::negativeTimeFiresImmediately()
{
    make({row("Menu", -3)});
    QCOMPARE(longKey->timeouts().value("Menu"), QVariant(-3000));
    longKey->start("Menu");
    QCOMPARE(takeFired(), QStringList{});
    advance(0ms);
    QCOMPARE(takeFired().size(), 1);
}

void LongKeyTest::maximumTimeExpires()
{
    make({row("Menu", 1e18)});
    longKey->start("Menu");
    advance(2147482999ms);
    QCOMPARE(takeFired(), QStringList{});
    advance(1ms);
    QCOMPARE(takeFired().size(), 1);
}

void LongKeyTest::receiverMayStopTheRecogniser()
{
    make({row("Menu", 1, "Idle|Print")});
    connect(longKey.get(), &LongKey::longPress, longKey.get(), &LongKey::stop);
    longKey->start("Menu");
    advance(1s);
    QCOMPARE(takeFired(), (QStringList{"Act UserMenu <Idle> Menu", "Act UserMenu <Print> Menu"}));
}

void LongKeyTest::tripledTimeIsLimitedTo32Bits_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<int>("reported");
    QTest::newRow("just within") << 715827LL << 2147481000;
    QTest::newRow("just beyond") << 715828LL << 2147483647;
    QTest::newRow("far beyond") << 5000000000LL << 2147483647;
    QTest::newRow("far below") << -5000000000LL << std::numeric_limits<int>::min();
}

void LongKeyTest::tripledTimeIsLimitedTo32Bits()
{
    QFETCH(qint64, seconds);
    make({row("Help", seconds)});
    const QVariant time = longKey->timeouts().value("Help");
    QCOMPARE(time.type(), QVariant::Int);
    QTEST(time.toInt(), "reported");
}

void LongKeyTest::missingFileHasNoTimes()
{
    MapReader reader;
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("^LongKey::load ERROR: reading"));
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("^LongKey::load ERROR: value list"));
    LongKey empty(reader, nullptr);
    QCOMPARE(empty.timeouts(), QVariantMap{});
    QSignalSpy spy(&empty, &LongKey::longPress);
    empty.start("Menu");
    advance(10s);
    QCOMPARE(spy.size(), 0);
}

void LongKeyTest::firstKeyOfARowMustBeHeld()
{
    make({QVariantMap{{"keys", QStringList{"Menu", "Up"}}, {"timeout", 1}, {"validOnState", "Idle"}}});
    QCOMPARE(longKey->timeouts(), (QVariantMap{{"Menu", 1000}}));
    longKey->start("Up");
    advance(10s);
    QCOMPARE(takeFired(), QStringList{});
    longKey->start("Menu");
    advance(1s);
    QCOMPARE(takeFired(), QStringList{"  <Idle> Menu"});
}

VIRTUAL_TIME_TEST_MAIN(LongKeyTest)
#include "LongKeyTest.moc"
