// SPDX-License-Identifier: MIT
#include "tests/checker/JsonPlaces.h"

#include <QtTest>

#include <random>

using namespace checker;

// For the leak check: of two members with the same name, Qt's reader never frees the first value if that is a
// list or an object.
extern "C" const char* __lsan_default_suppressions();

const char* __lsan_default_suppressions()
{
    return "leak:libQt5Core.so.5";
}

namespace {

constexpr int seeds = 20000;

/// Writes random texts that are nearly JSON.
class RandomText
{
public:
    explicit RandomText(unsigned seed) : m_random(seed) {}

    QByteArray value(int depth);

private:
    int roll(int sides) { return static_cast<int>(m_random() % static_cast<unsigned>(sides)); }
    QByteArray blank();
    QByteArray text();
    QByteArray children(int depth, bool named);

    std::mt19937 m_random;
};

QByteArray RandomText::blank()
{
    static const QByteArrayList blanks{"", "", " ", "\n", "\t", "\r\n"};
    return blanks.at(roll(blanks.size()));
}

QByteArray RandomText::text()
{
    static const QByteArrayList parts{"a", "keys", "\\\"", "\\\\", "\\u0041", "\\ud83d\\ude00", "ä",
                                      "{", "]",    ",",    ":",    "\\n",     "\x7f",           "\xff"};
    QByteArray result;
    for (int count = roll(4); count > 0; --count) {
        result += parts.at(roll(parts.size()));
    }
    return '"' + result + '"';
}

QByteArray RandomText::children(int depth, bool named)
{
    QByteArray result;
    for (int count = roll(4); count > 0; --count) {
        result += blank() + (named ? text() + blank() + ":" : QByteArray()) + value(depth - 1);
        result += count > 1 || roll(30) == 0 ? "," : "";
    }
    return result + blank();
}

QByteArray RandomText::value(int depth)
{
    static const QByteArrayList literals{"0", "-1.5e3", "true", "false", "null", "12", "nul", "01"};
    const int kind = roll(depth > 0 ? 4 : 2);
    const QByteArray inner = kind == 0   ? literals.at(roll(literals.size() - (roll(10) == 0 ? 0 : 2)))
                             : kind == 1 ? text()
                             : kind == 2 ? '[' + children(depth, false) + ']'
                                         : '{' + children(depth, true) + '}';
    return blank() + inner + blank();
}

} // namespace

/// An object of `count` members, each with its index as value, of which two have the name "twin".
QByteArray membersWithTwin(int count, int first, int last)
{
    QByteArrayList members;
    for (int i = 0; i < count; ++i) {
        const QByteArray name = i == first || i == last ? "twin" : "m" + QByteArray::number(i * 7 % 10);
        members.append('"' + name + (name == "twin" ? "" : QByteArray::number(i)) +
                       "\": " + QByteArray::number(i));
    }
    return '{' + members.join(", ") + '}';
}

int keptTwin(const QByteArray& text)
{
    return QJsonDocument::fromJson(text).object().value("twin").toInt();
}

/// The places of the values of a JSON text.
class JsonTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void placesOfMembers();
    void theLastMemberOfANameCounts();
    void amongManyMembersEitherOfANameMayCount();
    void aByteOrderMarkIsNotAValue();
    void namesWithAByteOrderMark_data();
    void namesWithAByteOrderMark();
    void eachPlaceHasTheValueThatQtReads();
    void anyTextIsScannedWithinItsBounds();
};

void JsonTextTest::placesOfMembers()
{
    const QByteArray text = R"({ "keys": ["Help", 5] })";
    const JsonNode root = JsonText::scan(text);
    const JsonNode* keys = root.member("keys");
    QVERIFY(keys);
    QCOMPARE(keys->nameRange.begin, 2);
    QCOMPARE(keys->nameRange.end, 8);
    QCOMPARE(keys->range.begin, 10);
    QCOMPARE(keys->children.size(), size_t(2));
    QCOMPARE(keys->children[0].written, QByteArray("\"Help\""));
    QCOMPARE(keys->children[1].range.begin, 19);
    QCOMPARE(keys->children[1].range.end, 20);
}

void JsonTextTest::theLastMemberOfANameCounts()
{
    const QByteArray text = R"({"a": 1, "\u0061": 2})";
    QCOMPARE(QJsonDocument::fromJson(text).object().value("a").toInt(), 2);
    QCOMPARE(JsonText::scan(text).member("a")->written, QByteArray("2"));
}

void JsonTextTest::amongManyMembersEitherOfANameMayCount()
{
    for (int first = 0; first < 16; ++first) {
        for (int last = first + 1; last < 16; ++last) {
            QVERIFY(JsonText::scan(membersWithTwin(16, first, last)).keepsLast());
            QCOMPARE(keptTwin(membersWithTwin(16, first, last)), last);
        }
    }
    QSet<bool> areLast;
    for (int first = 0; first < 16; ++first) {
        const QByteArray text = membersWithTwin(17, first, 16);
        QVERIFY(!JsonText::scan(text).keepsLast());
        QCOMPARE(JsonPlaces::faultIn(JsonText::scan(text), text), QString());
        areLast.insert(keptTwin(text) == 16);
    }
    QCOMPARE(areLast.size(), 2);
}

void JsonTextTest::aByteOrderMarkIsNotAValue()
{
    const JsonNode root = JsonText::scan("\xEF\xBB\xBF{}");
    QCOMPARE(root.range.begin, 3);
    QVERIFY(root.kind == JsonNode::Kind::Object);
}

void JsonTextTest::namesWithAByteOrderMark_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("alone") << QByteArray("{\"\xEF\xBB\xBFs\": 1}");
    QTest::newRow("in a text") << QByteArray("{\"a\": \"\xEF\xBB\xBFs\"}");
}

/// Qt's reader removes the mark.
void JsonTextTest::namesWithAByteOrderMark()
{
    QFETCH(QByteArray, text);
    const JsonNode root = JsonText::scan(text);
    QCOMPARE(JsonPlaces::faultIn(root, text), QString());
    const QVariantMap members = QJsonDocument::fromJson(text).toVariant().toMap();
    QVERIFY(!members.isEmpty());
    for (auto member = members.begin(); member != members.end(); ++member) {
        const JsonNode* node = root.member(member.key());
        QVERIFY(node);
        QCOMPARE(JsonPlaces::alone(text, node->range), member.value());
    }
}

void JsonTextTest::eachPlaceHasTheValueThatQtReads()
{
    int accepted = 0;
    for (unsigned seed = 1; seed <= seeds; ++seed) {
        const QByteArray text = RandomText(seed).value(4);
        accepted += QJsonDocument::fromJson(text).isNull() ? 0 : 1;
        const QString fault = JsonPlaces::faultIn(JsonText::scan(text), text);
        QVERIFY2(fault.isEmpty(), qPrintable(QStringLiteral("seed %1: %2\n").arg(seed).arg(fault) + text));
    }
    QVERIFY(accepted > seeds / 20);
}

void JsonTextTest::anyTextIsScannedWithinItsBounds()
{
    for (unsigned seed = 1; seed <= seeds; ++seed) {
        const QByteArray whole = RandomText(seed).value(4);
        const QByteArray text =
            whole.left(static_cast<int>(seed % 40)) + whole.mid(static_cast<int>(seed % 47));
        QVERIFY(JsonPlaces::areWithin(JsonText::scan(text), {0, text.size()}));
    }
}

QTEST_GUILESS_MAIN(JsonTextTest)
#include "JsonTextTest.moc"
