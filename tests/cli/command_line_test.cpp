#include "cli/command_line.h"
#include "support/test_case.h"

#include <QDir>

using namespace Qt::StringLiterals;
using namespace tessaly;

class CommandLineTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void info_data();
    void info();
    void resize_data();
    void resize();
    void inputsKeepTheirOrder();
    void files_data();
    void files();
    void text_data();
    void text();
    void wrongUsage_data();
    void wrongUsage();
};

void CommandLineTest::info_data()
{
    QTest::addColumn<QByteArrayList>("words");
    QTest::addColumn<QString>("files");
    QTest::addColumn<bool>("json");
    QTest::addColumn<bool>("verbose");
    const auto row = [](const char *name, const QByteArrayList &words, const QString &files, bool json,
                        bool verbose) { QTest::newRow(name) << words << files << json << verbose; };
    row("one file", {"info", "/a"}, u"/a"_s, false, false);
    row("several, in their order", {"info", "/b", "/a", "/b"}, u"/b /a /b"_s, false, false);
    row("json", {"info", "--json", "/a"}, u"/a"_s, true, false);
    row("verbose", {"info", "--verbose", "/a"}, u"/a"_s, false, true);
    row("both", {"info", "--json", "--verbose", "/a"}, u"/a"_s, true, true);
    row("both, the other way round", {"info", "--verbose", "--json", "/a"}, u"/a"_s, true, true);
    row("behind the files", {"info", "/a", "/b", "--json"}, u"/a /b"_s, true, false);
    row("between the files", {"info", "/a", "--json", "/b", "--verbose"}, u"/a /b"_s, true, true);
    row("twice", {"info", "--json", "--json", "/a"}, u"/a"_s, true, false);
    row("files behind --", {"info", "--json", "--", "/a", "/-b"}, u"/a /-b"_s, true, false);
}

void CommandLineTest::info()
{
    QFETCH(QByteArrayList, words);
    const Command command = readCommandLine(words);
    const auto *info = std::get_if<InfoCommand>(&command);
    QVERIFY(info);
    QTEST(info->json, "json");
    QTEST(info->verbose, "verbose");
    QStringList paths;
    for (const NamedFile &file : info->files)
        paths += file.path.value_or(u"none"_s);
    QTEST(paths.join(u' '), "files");
}

void CommandLineTest::resize_data()
{
    QTest::addColumn<QByteArrayList>("more");
    QTest::addColumn<QString>("read");
    const auto row = [](const char *name, const QByteArrayList &more, const QString &read) {
        QTest::newRow(name) << more << read;
    };
    row("nothing more", {}, u"100 % - x -"_s);
    row("scale", {"--scale", "33.3"}, u"33.3 % - x -"_s);
    row("a large scale", {"--scale=1000000000"}, u"1e+09 % - x -"_s);
    row("scale with its sign", {"--scale", "50%"}, u"50 % - x -"_s);
    row("scale with a blank and its sign", {"--scale=33.3 %"}, u"33.3 % - x -"_s);
    row("a box", {"--fit", "1280x720"}, u"100 % - x - within 1280 x 720"_s);
    row("a box with the sign of multiplication", {"--fit=1280×720"}, u"100 % - x - within 1280 x 720"_s);
    row("a box with a capital", {"--fit=1281X721"}, u"100 % - x - within 1281 x 721"_s);
    row("width", {"--width", "201"}, u"100 % 201 x -"_s);
    row("height", {"--height=2"}, u"100 % - x 2"_s);
    row("both", {"--height=100", "--width=9223372036854775807"}, u"100 % 9223372036854775807 x 100"_s);
    row("for programs", {"--json"}, u"100 % - x - json"_s);
    row("for programs that wait", {"--progress", "--json"}, u"100 % - x - json progress"_s);
    row("flags", {"--force", "--quiet", "--verbose"}, u"100 % - x - force quiet verbose"_s);
}

void CommandLineTest::resize()
{
    QFETCH(QByteArrayList, more);
    const Command command = readCommandLine(QByteArrayList{"resize", "/in", "-o", "/out"} + more);
    const auto *resize = std::get_if<ResizeCommand>(&command);
    QVERIFY(resize);
    QCOMPARE(resize->inputs.size(), std::size_t{1});
    QCOMPARE(resize->inputs[0].path, u"/in"_s);
    QCOMPARE(resize->output.path, u"/out"_s); // as it was named
    const auto side = [](std::optional<qint64> length) { return length ? QString::number(*length) : u"-"_s; };
    QString read = u"%1 % %2 x %3"_s.arg(QString::number(resize->size.percent), side(resize->size.width),
                                         side(resize->size.height));
    if (resize->size.box) read += u" within "_s + frameSizeText(*resize->size.box);
    if (resize->force) read += u" force"_s;
    if (resize->quiet) read += u" quiet"_s;
    if (resize->verbose) read += u" verbose"_s;
    if (resize->json) read += u" json"_s;
    if (resize->progress) read += u" progress"_s;
    QTEST(read, "read");
}

void CommandLineTest::inputsKeepTheirOrder()
{
    const Command command = readCommandLine({"resize", "/b", "-o", "/out", "/a", "--force", "/b", "/c\xFF"});
    const auto *resize = std::get_if<ResizeCommand>(&command);
    QVERIFY(resize);
    QStringList paths;
    for (const NamedFile &input : resize->inputs)
        paths += input.path.value_or(u"none"_s);
    QCOMPARE(paths.join(u' '), u"/b /a /b none"_s);
}

void CommandLineTest::files_data()
{
    QTest::addColumn<QByteArray>("word");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("path"); // null when the file cannot be opened
    const auto row = [](const char *name, const char *word, const QString &shown, const QString &path) {
        QTest::newRow(name) << QByteArray(word) << shown << path;
    };
    const QString here = QDir::currentPath() + u'/';
    row("absolute", "/v/a.mp4", u"/v/a.mp4"_s, u"/v/a.mp4"_s);
    row("relative", "a.mp4", u"a.mp4"_s, here + u"a.mp4"_s);
    row("in a folder above", "../a.mp4", u"../a.mp4"_s, here + u"../a.mp4"_s);
    row("leading dash", "-video-.mp4", u"-video-.mp4"_s, here + u"-video-.mp4"_s);
    row("like an option", "--json", u"--json"_s, here + u"--json"_s);
    row("one dash", "-", u"-"_s, here + u'-');
    row("line break", "/v/a\nb", u"/v/a\nb"_s, u"/v/a\nb"_s);
    row("quotes and markup", "/v/'a' \"b\" <b>", u"/v/'a' \"b\" <b>"_s, u"/v/'a' \"b\" <b>"_s);
    row("emoji", "/v/🎬é", u"/v/🎬é"_s, u"/v/🎬é"_s);
    row("pattern", "/v/%1 %d", u"/v/%1 %d"_s, u"/v/%1 %d"_s);
    row("home sign", "~/a", u"~/a"_s, here + u"~/a"_s);
    row("not UTF-8", "/v/b\xFF.mp4", u"/v/b\uFFFD.mp4"_s, QString());
    row("not UTF-8, leading dash", "-\xFF", u"-\uFFFD"_s, QString());
    row("an encoded surrogate", "/v/\xED\xA0\x80", u"/v/\uFFFD\uFFFD\uFFFD"_s, QString());
}

void CommandLineTest::files()
{
    QFETCH(QByteArray, word);
    QFETCH(QString, path);
    const Command command = readCommandLine({"info", "--", word});
    const auto *info = std::get_if<InfoCommand>(&command);
    QVERIFY(info);
    QCOMPARE(info->files.size(), std::size_t{1});
    QTEST(info->files[0].shown, "shown");
    QCOMPARE(info->files[0].path.has_value(), !path.isNull());
    QCOMPARE(info->files[0].path.value_or(QString()), path);
}

void CommandLineTest::text_data()
{
    QTest::addColumn<QByteArrayList>("words");
    QTest::addColumn<QString>("beginning");
    const QString usage = u"Usage: tessaly-cli info [--json] [--verbose] FILE...\n"_s;
    const QString version = u"tessaly-cli " TESSALY_VERSION "\n"_s;
    const auto row = [](const char *name, const QByteArrayList &words, const QString &beginning) {
        QTest::newRow(name) << words << beginning;
    };
    row("help", {"--help"}, usage);
    row("help, short", {"-h"}, usage);
    row("help of the command", {"info", "--help"}, usage);
    row("help of the command, short", {"info", "/a", "-h"}, usage);
    row("help before the version", {"info", "--version", "--help"}, usage);
    row("version", {"--version"}, version);
    row("version and confinement", {"--version", "--verbose"}, version + u"Confinement of the tools: "_s);
    row("version of the command", {"info", "--version"}, version);
}

void CommandLineTest::text()
{
    QFETCH(QByteArrayList, words);
    QFETCH(QString, beginning);
    const Command command = readCommandLine(words);
    const auto *show = std::get_if<ShowText>(&command);
    QVERIFY(show);
    QVERIFY2(show->text.startsWith(beginning), qPrintable(show->text));
    QVERIFY(show->text.endsWith(u'\n'));
}

void CommandLineTest::wrongUsage_data()
{
    QTest::addColumn<QByteArrayList>("words");
    QTest::addColumn<QString>("refusal");
    const auto row = [](const char *name, const QByteArrayList &words, const char *refusal) {
        QTest::newRow(name) << words << QString::fromLatin1(refusal);
    };
    row("nothing", {}, "A command is missing.");
    row("another command", {"play", "/a"}, "There is no command \"play\".");
    row("command in capitals", {"INFO", "/a"}, "There is no command \"INFO\".");
    row("a file only", {"/a"}, "There is no command \"/a\".");
    row("empty command", {""}, "There is no command \"\".");
    row("option before the command", {"--json", "info", "/a"}, "There is no command \"--json\".");
    row("no file", {"info"}, "info needs at least one file.");
    row("options only", {"info", "--json", "--verbose"}, "info needs at least one file.");
    row("no file behind --", {"info", "--"}, "info needs at least one file.");
    row("empty file name", {"info", "/a", ""}, "A file name is empty.");
    row("unknown option", {"info", "--xml", "/a"}, "Unknown option 'xml'.");
    row("unknown short option", {"info", "-x", "/a"}, "Unknown option 'x'.");
    row("option with a value", {"info", "--json=1", "/a"}, "Unexpected value after '--json'.");
    row("option cut short", {"info", "--js", "/a"}, "Unknown option 'js'.");
    row("no input", {"resize", "-o", "a"}, "resize needs at least one input.");
    row("empty input", {"resize", "", "-o", "c"}, "A file name is empty.");
    row("an empty input among others", {"resize", "a", "", "-o", "c"}, "A file name is empty.");
    row("progress for people and programs", {"resize", "a", "-o", "b", "--progress"},
        "--progress needs --json.");
    row("no output", {"resize", "a"}, "resize needs an output: -o FILE.");
    row("empty output", {"resize", "a", "-o", ""}, "resize needs an output: -o FILE.");
    row("scale and width", {"resize", "a", "-o", "b", "--scale=50", "--width=10"},
        "--scale does not go with --width or --height.");
    row("a box and a side", {"resize", "a", "-o", "b", "--fit=10x10", "--height=10"},
        "--fit does not go with another size.");
    row("a box and a scale", {"resize", "a", "-o", "b", "--fit=10x10", "--scale=10"},
        "--fit does not go with another size.");
    row("unknown option of resize", {"resize", "a", "-o", "b", "--fast"}, "Unknown option 'fast'.");
    for (const char *scale : {"0", "-5", "half", "inf", "nan", "", "%", "0%", "50%%", "5%0"}) {
        QTest::addRow("scale %s", scale)
            << QByteArrayList{"resize", "a", "-o", "b", QByteArray("--scale=") + scale}
            << u"--scale takes a number above 0."_s;
    }
    for (const char *box :
         {"", "1280", "1280x", "x720", "1280x720x2", "1280*720", "1x720", "1280x1", "-2x-2"}) {
        QTest::addRow("fit %s", box) << QByteArrayList{"resize", "a", "-o", "b", QByteArray("--fit=") + box}
                                     << u"--fit takes two whole numbers of at least 2, such as 1280x720."_s;
    }
    for (const char *side : {"0", "1", "-2", "1.5", "1,920", "wide", "99999999999999999999", ""}) {
        QTest::addRow("height %s", side)
            << QByteArrayList{"resize", "a", "-o", "b", QByteArray("--height=") + side}
            << u"--height takes a whole number of at least 2."_s;
    }
}

void CommandLineTest::wrongUsage()
{
    QFETCH(QByteArrayList, words);
    const Command command = readCommandLine(words);
    const auto *wrong = std::get_if<WrongUsage>(&command);
    QVERIFY(wrong);
    QTEST(wrong->refusal, "refusal");
}

TESSALY_TEST_MAIN(CommandLineTest)
#include "command_line_test.moc"
