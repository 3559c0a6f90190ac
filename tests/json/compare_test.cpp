#include "json_test_case.h"
#include "json/json.h"

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

Q_DECLARE_METATYPE(tessaly::JSON)

class CompareTest : public JSONTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void equalsByKindAndValue_data();
    void equalsByKindAndValue();
    void isOrdered_data();
    void isOrdered();
    void equalsLiterals();
};

void CompareTest::equalsByKindAndValue_data()
{
    QTest::addColumn<JSON>("left");
    QTest::addColumn<JSON>("right");
    QTest::addColumn<bool>("equal");
    const auto row = [](const char *name, const JSON &left, const JSON &right, bool equal) {
        QTest::newRow(name) << left << right << equal;
    };
    const JSON unknown = JSON::fromObject(Object::other(1));
    row("integer, same", 1, 1, true);
    row("integer, real", 1, 1.0, true);
    row("integer, decimal", 1, Number(Decimal::fromString("1.0")), true);
    row("integer, other", 1, 2, false);
    row("integer 1, true", 1, true, false);
    row("integer 0, false", 0, false, false);
    row("number, string", 90, "90", false);
    row("string, same", "90", "90", true);
    row("string, other case", "a", "A", false);
    row("string, longer", "90", "90 ", false);
    row("true, true", true, true, true);
    row("true, false", true, false, false);
    row("true, string", true, "true", false);
    row("arrays", JSON::arrayLiteral({1, "a"}), JSON::arrayLiteral({1, "a"}), true);
    row("arrays of equal numbers", JSON::arrayLiteral({1}), JSON::arrayLiteral({1.0}), true);
    row("arrays, true inside equals 1", JSON::arrayLiteral({1}), JSON::arrayLiteral({true}), true);
    row("arrays, other element", JSON::arrayLiteral({1}), JSON::arrayLiteral({2}), false);
    row("array, dictionary", JSON::arrayLiteral({}), JSON::dictionaryLiteral({}), false);
    row("dictionaries", JSON::dictionaryLiteral({{"a", 1}}), JSON::dictionaryLiteral({{"a", 1}}), true);
    row("dictionaries, other value", JSON::dictionaryLiteral({{"a", 1}}), JSON::dictionaryLiteral({{"a", 2}}),
        false);
    row("null, null", nullptr, nullptr, true);
    row("null, failed lookup", nullptr, JSON::null()["x"], true);
    row("failed lookups with different errors", JSON::null()["x"], JSON::arrayLiteral({})[0], true);
    row("null, 0", nullptr, 0, false);
    row("null, empty string", nullptr, "", false);
    row("null, unknown", nullptr, unknown, false);
    row("unknown, itself", unknown, unknown, false);
    row("unknown, null", unknown, nullptr, false);
}

void CompareTest::equalsByKindAndValue()
{
    QFETCH(JSON, left);
    QFETCH(JSON, right);
    QFETCH(bool, equal);
    QCOMPARE(left == right, equal);
    QCOMPARE(right == left, equal);
    QCOMPARE(left != right, !equal);
    if (!equal) {
        return;
    }
    QVERIFY(left <= right);
    QVERIFY(left >= right);
    QVERIFY(!(left < right));
    QVERIFY(!(left > right));
}

void CompareTest::isOrdered_data()
{
    QTest::addColumn<JSON>("left");
    QTest::addColumn<JSON>("right");
    QTest::addColumn<bool>("less");
    const auto row = [](const char *name, const JSON &left, const JSON &right, bool less) {
        QTest::newRow(name) << left << right << less;
    };
    row("integers", 1, 2, true);
    row("integer, real", 1, 1.5, true);
    row("reals", -0.5, 0.5, true);
    row("integer, large unsigned", -1, std::uint64_t(1) << 63, true);
    row("strings", "a", "b", true);
    row("strings by bytes", "Z", "a", true);
    row("string, longer", "a", "ab", true);
    row("strings beyond ASCII", "z", "é", true);
    row("false, true", false, true, false);
    row("arrays", JSON::arrayLiteral({1}), JSON::arrayLiteral({2}), false);
    row("dictionaries", JSON::dictionaryLiteral({{"a", 1}}), JSON::dictionaryLiteral({{"a", 2}}), false);
    row("number, string", 1, "2", false);
    row("false, integer", false, 5, false);
    row("null, integer", nullptr, 1, false);
    row("unknown, integer", JSON::fromObject(Object::other(1)), 5, false);
}

void CompareTest::isOrdered()
{
    QFETCH(JSON, left);
    QFETCH(JSON, right);
    QFETCH(bool, less);
    QCOMPARE(left < right, less);
    QCOMPARE(left <= right, less);
    QCOMPARE(right > left, less);
    QCOMPARE(right >= left, less);
    QVERIFY(!(right < left));
    QVERIFY(!(right <= left));
    QVERIFY(!(left > right));
    QVERIFY(!(left >= right));
}

void CompareTest::equalsLiterals()
{
    const JSON json =
        JSON::fromBytes(R"({"type": "video", "rotate": "90", "width": 1920, "flag": true, "x": null})");
    QVERIFY(json["type"] == "video");
    QVERIFY(json["type"] != "audio");
    QVERIFY(json["rotate"] == "90");
    QVERIFY(json["rotate"] != 90);
    QVERIFY(json["width"] == 1920);
    QVERIFY(json["flag"] == true);
    QVERIFY(json["flag"] != 1);
    QVERIFY(json["x"] == nullptr);
    QVERIFY(json["missing"] == nullptr);
    QVERIFY(json["type"] != JSON::null());
}

TESSALY_TEST_MAIN(CompareTest)
#include "compare_test.moc"
