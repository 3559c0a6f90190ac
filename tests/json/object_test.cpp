#include "json_test_case.h"
#include "json/builder.h"
#include "json/json.h"
#include "json/object_events.h"
#include "json/text_writer.h"

#include <thread>

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

Q_DECLARE_METATYPE(tessaly::Object)

namespace {

constexpr int manyLevels = 100'000;

Object deepArray(Object innermost)
{
    Object value = std::move(innermost);
    for (int i = 0; i < manyLevels; ++i) {
        Array around;
        around.push_back(std::move(value));
        value = Object(std::move(around));
    }
    return value;
}

Object deepDictionary(Object innermost)
{
    Object value = std::move(innermost);
    for (int i = 0; i < manyLevels; ++i) {
        Dictionary around;
        around.emplace("a", std::move(value));
        value = Object(std::move(around));
    }
    return value;
}

// Arrays and dictionaries in turn.
Object deepMixture()
{
    Object value = 1;
    for (int i = 0; i < manyLevels / 2; ++i) {
        Array array;
        array.push_back(std::move(value));
        array.push_back("beside");
        Dictionary dictionary;
        dictionary.emplace("a", Object(std::move(array)));
        dictionary.emplace("b", 2);
        value = Object(std::move(dictionary));
    }
    return value;
}

} // namespace

class ObjectTest : public JSONTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void holdsOneKind_data();
    void holdsOneKind();
    void copiesShareUntilOneIsWritten();
    void writingCopiesOnlyTheWay();
    void assignsAPartOfItself();
    void movedFromObjectIsAbsent();
    void comparesByKindAndValue_data();
    void comparesByKindAndValue();
    void survivesDeepNesting_data();
    void survivesDeepNesting();
    void deepDifferenceIsFound();
    void mergesDeepDictionaries();
    void sharedPartsEndOnSeveralThreads();
};

void ObjectTest::holdsOneKind_data()
{
    QTest::addColumn<Object>("object");
    QTest::addColumn<int>("kind");
    QTest::newRow("absent") << Object() << int(Object::Kind::absent);
    QTest::newRow("null") << Object(nullptr) << int(Object::Kind::null);
    QTest::newRow("boolean") << Object(true) << int(Object::Kind::number);
    QTest::newRow("integer") << Object(5) << int(Object::Kind::number);
    QTest::newRow("unsigned") << Object(std::size_t(5)) << int(Object::Kind::number);
    QTest::newRow("real") << Object(5.5) << int(Object::Kind::number);
    QTest::newRow("literal") << Object("a") << int(Object::Kind::string);
    QTest::newRow("view") << Object(std::string_view("a")) << int(Object::Kind::string);
    QTest::newRow("string") << Object(std::string("a")) << int(Object::Kind::string);
    QTest::newRow("array") << Object(Array{1}) << int(Object::Kind::array);
    QTest::newRow("dictionary") << Object(Dictionary{{"a", 1}}) << int(Object::Kind::dictionary);
    QTest::newRow("bytes") << Object::bytes("a") << int(Object::Kind::bytes);
    QTest::newRow("other") << Object::other(1) << int(Object::Kind::other);
}

void ObjectTest::holdsOneKind()
{
    QFETCH(Object, object);
    QFETCH(int, kind);
    QCOMPARE(int(object.kind()), kind);
    QCOMPARE(object.number() != nullptr, object.kind() == Object::Kind::number);
    QCOMPARE(object.string() != nullptr, object.kind() == Object::Kind::string);
    QCOMPARE(object.array() != nullptr, object.kind() == Object::Kind::array);
    QCOMPARE(object.dictionary() != nullptr, object.kind() == Object::Kind::dictionary);
    QCOMPARE(object.bytes() != nullptr, object.kind() == Object::Kind::bytes);
    QCOMPARE(object.other() != nullptr, object.kind() == Object::Kind::other);
    if (object.string()) QCOMPARE(shown(*object.string()), u"a"_s);
    if (object.bytes()) QCOMPARE(shown(*object.bytes()), u"a"_s);
    if (object.other()) QCOMPARE(std::any_cast<int>(*object.other()), 1);
}

void ObjectTest::copiesShareUntilOneIsWritten()
{
    Object first(Array{1, 2});
    const Object second = first;
    QCOMPARE(first.array(), second.array());
    first.writableArray().push_back(3);
    QVERIFY(first.array() != second.array());
    QVERIFY(first == Object(Array{1, 2, 3}));
    QVERIFY(second == Object(Array{1, 2}));

    const Array *own = first.array();
    first.writableArray().push_back(4);
    QCOMPARE(first.array(), own); // nobody shares it: written in place

    Object map(Dictionary{{"a", 1}});
    const Object mapCopy = map;
    map.writableDictionary().emplace("b", 2);
    QCOMPARE(mapCopy.dictionary()->size(), std::size_t(1));
    QCOMPARE(map.dictionary()->size(), std::size_t(2));
}

void ObjectTest::writingCopiesOnlyTheWay()
{
    JSON json = JSON::fromBytes(R"({"way": {"a": 1}, "beside": {"b": 2}})");
    const JSON copy = json;
    QVERIFY(json.set({"way", "a"}, 5));
    QVERIFY(json["way"].object().dictionary() != copy["way"].object().dictionary());
    QCOMPARE(json["beside"].object().dictionary(), copy["beside"].object().dictionary());
}

void ObjectTest::assignsAPartOfItself()
{
    Object copied(Array{Object(Array{Object("inner")})});
    copied = copied.array()->front();
    copied = copied.array()->front();
    QCOMPARE(shown(*copied.string()), u"inner"_s);

    Object moved(Array{Object(Array{Object("inner")})});
    moved = std::move(moved.writableArray().front());
    QVERIFY(moved == Object(Array{Object("inner")}));
}

void ObjectTest::movedFromObjectIsAbsent()
{
    Object source(Array{1});
    const Object target = std::move(source);
    QCOMPARE(source.kind(),
             Object::Kind::absent); // NOLINT(bugprone-use-after-move): that it can be used is the point
    QVERIFY(source.array() == nullptr);
    QCOMPARE(target.array()->size(), std::size_t(1));
}

void ObjectTest::comparesByKindAndValue_data()
{
    QTest::addColumn<Object>("left");
    QTest::addColumn<Object>("right");
    QTest::addColumn<bool>("equal");
    const auto row = [](const char *name, const Object &left, const Object &right, bool equal) {
        QTest::newRow(name) << left << right << equal;
    };
    const Object any = Object::other(1);
    row("absent, absent", Object(), Object(), true);
    row("absent, null", Object(), nullptr, false);
    row("integer, real", 1, 1.0, true);
    row("integer, boolean", 1, true, true);
    row("integer, string", 1, "1", false);
    row("strings", "a", "a", true);
    row("strings with NUL", std::string("a\0b", 3), std::string("a\0c", 3), false);
    row("arrays", Array{1, "a"}, Array{1.0, "a"}, true);
    row("arrays of other length", Array{1}, Array{1, 1}, false);
    row("arrays of other order", Array{1, 2}, Array{2, 1}, false);
    row("nested arrays", Array{Object(Array{1}), Object(Array{2})}, Array{Object(Array{1}), Object(Array{3})},
        false);
    row("array, dictionary", Array{}, Dictionary{}, false);
    row("dictionaries", Dictionary{{"a", 1}, {"b", 2}}, Dictionary{{"b", 2}, {"a", 1}}, true);
    row("dictionaries of other size", Dictionary{{"a", 1}}, Dictionary{{"a", 1}, {"b", 2}}, false);
    row("dictionaries of other keys", Dictionary{{"a", 1}}, Dictionary{{"b", 1}}, false);
    row("dictionaries of other values", Dictionary{{"a", 1}}, Dictionary{{"a", 2}}, false);
    row("bytes", Object::bytes("a"), Object::bytes("a"), true);
    row("bytes, others", Object::bytes("a"), Object::bytes("b"), false);
    row("bytes, string", Object::bytes("a"), "a", false);
    row("one unknown value", any, any, true);
    row("two unknown values", any, Object::other(1), false);
}

void ObjectTest::comparesByKindAndValue()
{
    QFETCH(Object, left);
    QFETCH(Object, right);
    QFETCH(bool, equal);
    QCOMPARE(left == right, equal);
    QCOMPARE(right == left, equal);
    QVERIFY(left == left);
}

void ObjectTest::survivesDeepNesting_data()
{
    QTest::addColumn<Object>("object");
    QTest::addColumn<Object>("same");
    QTest::newRow("arrays") << deepArray(1) << deepArray(1);
    QTest::newRow("dictionaries") << deepDictionary(1) << deepDictionary(1);
    QTest::newRow("mixture") << deepMixture() << deepMixture();
}

// Copied, compared, written as text, coded, merged and destroyed, each level by level would need a stack of
// its own.
void ObjectTest::survivesDeepNesting()
{
    QFETCH(Object, object);
    QFETCH(Object, same);
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the copying is what is tested
    const Object copy = object;
    QVERIFY(copy == same);

    const JSON json = JSON::fromObject(object);
    QVERIFY(json == JSON::fromObject(same));
    writingOptionsKeys options;
    QVERIFY_THROWS_EXCEPTION(JSONException, json.rawString(options));
    options.maxObjextDepth = manyLevels;
    options.jsonSerialization.prettyPrinted = false;
    const std::string text = json.rawString(options);
    QVERIFY(text.size() > 2 * manyLevels);
    QCOMPARE(shown(json.description()), shown(text));

    QVERIFY(JSON::decode([&json](EventSink &sink) { json.encode(sink); }) == json);
    QCOMPARE(json.merged(json).type(), json.type());
}

void ObjectTest::deepDifferenceIsFound()
{
    QVERIFY(!(deepArray(1) == deepArray(2)));
    QVERIFY(!(deepDictionary("a") == deepDictionary("b")));
}

void ObjectTest::mergesDeepDictionaries()
{
    Object target = deepDictionary(Object(Dictionary{{"left", 1}}));
    mergeInto(target, deepDictionary(Object(Dictionary{{"right", 2}})));
    QVERIFY(target == deepDictionary(Object(Dictionary{{"left", 1}, {"right", 2}})));
}

void ObjectTest::sharedPartsEndOnSeveralThreads()
{
    const auto makeAndEnd = [](const Object &shared) {
        for (int i = 0; i < 3; ++i) {
            Object own(Array{shared, deepArray(i)});
            own.writableArray().front() = nullptr;
        }
    };
    Object shared = deepMixture();
    std::thread first(makeAndEnd, shared);
    std::thread second(makeAndEnd, shared);
    shared = nullptr;
    first.join();
    second.join();
    QCOMPARE(shared.kind(), Object::Kind::null);
}

TESSALY_TEST_MAIN(ObjectTest)
#include "object_test.moc"
