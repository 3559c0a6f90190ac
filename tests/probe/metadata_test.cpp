#include "probe/metadata.h"
#include "support/test_case.h"

using namespace Qt::StringLiterals;
using namespace tessaly;

using Entry = std::map<QString, QString>;

class MetadataTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void twelveEntriesWithoutTags_data();
    void twelveEntriesWithoutTags();
    void valueOfATag_data();
    void valueOfATag();
};

void MetadataTest::twelveEntriesWithoutTags_data()
{
    QTest::addColumn<QByteArray>("tags");
    QTest::newRow("no tags") << QByteArray("{}");
    QTest::newRow("tags that are null") << QByteArray("null");
    QTest::newRow("other tags") << QByteArray(R"({"artist":"A","major_brand":"isom"})");
    QTest::newRow("names in other letters")
        << QByteArray(R"({"Title":"a","Description":"b","synopsis":"c","Date":"d","Genre":"e","HD_VIDEO":"1",
            "Media_Type":"9","composer":"f","iTunextc":"g","encoder":"h","copyright":"i","comment":"j"})");
}

void MetadataTest::twelveEntriesWithoutTags()
{
    QFETCH(QByteArray, tags);
    const std::vector<Entry> entries =
        metadataOf(JSON::fromBytes(tags.toStdString(), {.fragmentsAllowed = true}));
    const QStringList labels{u"Title"_s,  u"Tagline"_s, u"Synopsis"_s,   u"Release Date"_s,
                             u"Genre"_s,  u"HD"_s,      u"Media Kind"_s, u"Composer"_s,
                             u"Rating"_s, u"Encoder"_s, u"Copyright"_s,  u"Comment"_s};
    QCOMPARE(entries.size(), std::size_t{12});
    for (qsizetype i = 0; i < labels.size(); ++i) {
        const QString value = labels[i] == "HD"_L1 ? u"No"_s : QString();
        const Entry expected{{u"key"_s, labels[i]}, {u"value"_s, value}};
        QCOMPARE(entries[static_cast<std::size_t>(i)], expected);
    }
}

void MetadataTest::valueOfATag_data()
{
    QTest::addColumn<QByteArray>("tags");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("value");
    const auto row = [](const char *name, const char *tags, int index, const QString &value) {
        QTest::newRow(name) << QByteArray(tags) << index << value;
    };
    row("title", R"({"title":"Ünïcode 🎬"})", 0, u"Ünïcode 🎬"_s);
    row("description", R"({"description":"two\nlines"})", 1, u"two\nlines"_s);
    row("Synopsis", R"({"Synopsis":"c"})", 2, u"c"_s);
    row("date", R"({"date":"2008"})", 3, u"2008"_s);
    row("date as a number", R"({"date":2008})", 3, u"2008"_s);
    row("genre", R"({"genre":"Drama"})", 4, u"Drama"_s);
    row("hd_video as text", R"({"hd_video":"1"})", 5, u"Yes"_s);
    row("hd_video as a number", R"({"hd_video":1})", 5, u"Yes"_s);
    row("hd_video off", R"({"hd_video":"0"})", 5, u"No"_s);
    row("hd_video of another kind", R"({"hd_video":"2"})", 5, u"No"_s);
    row("hd_video that is no number", R"({"hd_video":"yes"})", 5, u"No"_s);
    row("media_type film", R"({"media_type":"9"})", 6, u"Movie"_s);
    row("media_type as a number", R"({"media_type":9})", 6, u"Movie"_s);
    row("media_type of another kind", R"({"media_type":"10"})", 6, QString());
    row("Composer", R"({"Composer":"f"})", 7, u"f"_s);
    row("iTunEXTC", R"({"iTunEXTC":"mpaa|PG|200|"})", 8, u"mpaa|PG|200|"_s);
    row("Encoder", R"({"Encoder":"h"})", 9, u"h"_s);
    row("Copyright", R"({"Copyright":"i"})", 10, u"i"_s);
    row("Comment", R"({"Comment":"j"})", 11, u"j"_s);
    row("a tag that is an object", R"({"title":{}})", 0, QString());
}

void MetadataTest::valueOfATag()
{
    QFETCH(QByteArray, tags);
    QFETCH(int, index);
    const std::vector<Entry> entries = metadataOf(JSON::fromBytes(tags.toStdString()));
    QTEST(entries.at(static_cast<std::size_t>(index)).at(u"value"_s), "value");
}

TESSALY_TEST_MAIN(MetadataTest)
#include "metadata_test.moc"
