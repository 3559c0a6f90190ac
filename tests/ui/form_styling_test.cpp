#include "support/form_check.h"
#include "support/test_case.h"
#include "ui/pixels.h"
#include "ui/view_styling.h"
#include "ui_styled_form.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

#include <functional>

using namespace Qt::StringLiterals;

namespace tessaly {

using MaybeColor = std::optional<QColor>;

namespace {

struct Form
{
    Form()
    {
        ui.setupUi(&root);
        applyFormStyling(&root);
    }

    QWidget root;
    Ui::StyledForm ui{};
};

QString formPath()
{
    return QFINDTESTDATA("styled_form.ui");
}

} // namespace

class FormStylingTest : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void listsTheEightNames();
    void appliesWhatTheFormSays();
    void paintsWhatTheFormSays();
    void leavesOtherViewsWithoutALayer();
    void stylesTheRootToo();
    void followsLaterProperties_data();
    void followsLaterProperties();
    void givesAViewALayerLater();
    void clearsWhatIsTakenAway();
    void showsTheValuesOfCodeAsProperties();
    void masksOnlyOnRequest();
    void canBeAppliedTwice();
    void refusesWhatItCannotRead_data();
    void refusesWhatItCannotRead();
    void findsMisspelledProperties();
    void findsBrokenForms();
};

void FormStylingTest::listsTheEightNames()
{
    QCOMPARE(stylingPropertyNames(),
             (QStringList{u"backgroundColor"_s, u"borderColor"_s, u"borderWidth"_s, u"cornerRadius"_s,
                          u"shadowColor"_s, u"shadowOffset"_s, u"shadowOpacity"_s, u"shadowRadius"_s}));
}

void FormStylingTest::appliesWhatTheFormSays()
{
    const Form form;
    const ViewStyling card(form.ui.card);
    QCOMPARE(card.backgroundColor(), MaybeColor(Qt::white));
    QCOMPARE(card.borderColor(), MaybeColor(QColor(255, 0, 0)));
    QCOMPARE(card.borderWidth(), 3.0);
    QCOMPARE(card.cornerRadius(), 0.0);
    QCOMPARE(card.shadowColor(), MaybeColor(QColor(0, 0, 255, 128)));
    QCOMPARE(card.shadowOffset(), QSizeF(2.5, -4.0));
    QCOMPARE(card.shadowOpacity(), 0.5F);
    QCOMPARE(card.shadowRadius(), 6.0);
    const ViewStyling button(form.ui.button);
    QCOMPARE(button.cornerRadius(), 5.55);
    QCOMPARE(button.shadowOffset(), QSizeF(1.0, -2.5));
}

void FormStylingTest::paintsWhatTheFormSays()
{
    Form form;
    const QImage picture = test::pictureOf(&form.root);
    QCOMPARE(test::colorAt(picture, 21.0, 40.0), QColor(255, 0, 0));
    QCOMPARE(test::colorAt(picture, 97.5, 40.0), QColor(255, 0, 0));
    QCOMPARE(test::colorAt(picture, 90.0, 55.0), QColor(Qt::white));
}

void FormStylingTest::leavesOtherViewsWithoutALayer()
{
    const Form form;
    QVERIFY(!ViewStyling(form.ui.plain).wantsLayer());
    QVERIFY(form.ui.plain->dynamicPropertyNames().isEmpty());
}

void FormStylingTest::stylesTheRootToo()
{
    QWidget root;
    root.setProperty("borderWidth", 2.0);
    applyFormStyling(&root);
    QCOMPARE(ViewStyling(&root).borderWidth(), 2.0);
}

void FormStylingTest::followsLaterProperties_data()
{
    using Holds = std::function<bool(ViewStyling)>;
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<Holds>("holds");
    const auto add = [](const char *row, const char *name, const QVariant &value, const Holds &holds) {
        QTest::newRow(row) << QByteArray(name) << value << holds;
    };
    const QColor green(0, 128, 0);
    add("a colour", "backgroundColor", green,
        [=](ViewStyling view) { return view.backgroundColor() == green; });
    add("a colour's name", "borderColor", u"green"_s,
        [=](ViewStyling view) { return view.borderColor() == green; });
    add("a name with alpha", "shadowColor", u"#40102030"_s,
        [](ViewStyling view) { return view.shadowColor() == QColor(16, 32, 48, 64); });
    add("an empty name", "borderColor", QString(), [](ViewStyling view) { return !view.borderColor(); });
    add("a colour that is none", "shadowColor", QColor(),
        [](ViewStyling view) { return !view.shadowColor(); });
    add("a double", "borderWidth", 1.25, [](ViewStyling view) { return view.borderWidth() == 1.25; });
    add("an integer", "shadowRadius", 2, [](ViewStyling view) { return view.shadowRadius() == 2.0; });
    add("a number as text", "shadowRadius", u"7.5"_s,
        [](ViewStyling view) { return view.shadowRadius() == 7.5; });
    add("a negative radius", "cornerRadius", -3.999,
        [](ViewStyling view) { return view.cornerRadius() == 3.99; });
    add("an opacity", "shadowOpacity", 0.25F, [](ViewStyling view) { return view.shadowOpacity() == 0.25F; });
    add("an opacity above 1", "shadowOpacity", 3,
        [](ViewStyling view) { return view.shadowOpacity() == 3.0F; });
    add("a size", "shadowOffset", QSize(3, -7),
        [](ViewStyling view) { return view.shadowOffset() == QSizeF(3, -7); });
    add("a size as text", "shadowOffset", u"0,8"_s,
        [](ViewStyling view) { return view.shadowOffset() == QSizeF(0, 8); });
}

void FormStylingTest::followsLaterProperties()
{
    QFETCH(const QByteArray, name);
    QFETCH(const QVariant, value);
    QFETCH(const std::function<bool(ViewStyling)>, holds);
    const Form form;
    QVERIFY(!holds(ViewStyling(form.ui.card)));
    form.ui.card->setProperty(name.constData(), value);
    QVERIFY(holds(ViewStyling(form.ui.card)));
}

void FormStylingTest::givesAViewALayerLater()
{
    const Form form;
    form.ui.plain->setProperty("tint", QColor(Qt::red));
    QVERIFY(!ViewStyling(form.ui.plain).wantsLayer());
    form.ui.plain->setProperty("shadowRadius", 3.0);
    QVERIFY(ViewStyling(form.ui.plain).wantsLayer());
}

void FormStylingTest::clearsWhatIsTakenAway()
{
    const Form form;
    for (const QString &name : stylingPropertyNames())
        form.ui.card->setProperty(name.toLatin1().constData(), QVariant());
    const ViewStyling card(form.ui.card);
    QVERIFY(!card.backgroundColor());
    QVERIFY(!card.borderColor());
    QCOMPARE(card.borderWidth(), 0.0);
    QCOMPARE(card.cornerRadius(), 0.0);
    QVERIFY(!card.shadowColor());
    QCOMPARE(card.shadowOffset(), QSizeF(0.0, 0.0));
    QCOMPARE(card.shadowOpacity(), 0.0F);
    QCOMPARE(card.shadowRadius(), 0.0);
}

void FormStylingTest::showsTheValuesOfCodeAsProperties()
{
    const Form form;
    QCOMPARE(form.ui.button->property("cornerRadius").toDouble(), 5.55);
    QCOMPARE(form.ui.button->property("borderColor").value<QColor>(), QColor(Qt::black));
    QCOMPARE(form.ui.button->property("shadowOffset").toSizeF(), QSizeF(1.0, -2.5));

    ViewStyling plain(form.ui.plain);
    plain.setCornerRadius(12.345);
    plain.setBackgroundColor(QColor(Qt::red));
    plain.setShadowOpacity(0.75F);
    QCOMPARE(form.ui.plain->property("cornerRadius").toDouble(), 12.34);
    QCOMPARE(form.ui.plain->property("backgroundColor").value<QColor>(), QColor(Qt::red));
    QCOMPARE(form.ui.plain->property("shadowOpacity").toFloat(), 0.75F);
    QCOMPARE(form.ui.plain->property("shadowRadius").toDouble(), 3.0);
    plain.setBackgroundColor(std::nullopt);
    QVERIFY(!form.ui.plain->property("backgroundColor").value<QColor>().isValid());
}

// Showing the values as properties must not set them: setting the radius would turn the mask on.
void FormStylingTest::masksOnlyOnRequest()
{
    const Form form;
    QVERIFY(!ViewLayer::of(form.ui.card)->values().masksToBounds);
    ViewStyling(form.ui.card).setShadowRadius(1.0);
    QVERIFY(!ViewLayer::of(form.ui.card)->values().masksToBounds);
    QVERIFY(ViewLayer::of(form.ui.button)->values().masksToBounds);
}

void FormStylingTest::canBeAppliedTwice()
{
    Form form;
    const QImage once = test::pictureOf(&form.root);
    applyFormStyling(&form.root);
    applyFormStyling(form.ui.card);
    form.ui.card->setProperty("shadowRadius", 6.5);
    form.ui.card->setProperty("shadowRadius", 6.0);
    QVERIFY(!ViewLayer::of(form.ui.card)->values().masksToBounds);
    QCOMPARE(test::pictureOf(&form.root), once);
}

void FormStylingTest::refusesWhatItCannotRead_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QVariant>("value");
    const auto add = [](const char *row, const char *name, const QVariant &value) {
        QTest::newRow(row) << QByteArray(name) << value;
    };
    add("a number for a colour", "backgroundColor", 3.5);
    add("a colour that nobody knows", "borderColor", u"greeen"_s);
    add("text for a number", "borderWidth", u"wide"_s);
    add("an empty text for a number", "shadowRadius", QString());
    add("a colour for a number", "shadowOpacity", QColor(Qt::red));
    add("a number for a size", "shadowOffset", 3.5);
    add("one number for a size", "shadowOffset", u"3"_s);
    add("three numbers for a size", "shadowOffset", u"1,2,3"_s);
    add("words for a size", "shadowOffset", u"a,b"_s);
}

void FormStylingTest::refusesWhatItCannotRead()
{
    QFETCH(const QByteArray, name);
    QFETCH(const QVariant, value);
    const Form form;
    const Layer before = ViewLayer::of(form.ui.card)->values();
    const QByteArray warning = "The view \"card\" cannot take this value for " + name;
    QTest::ignoreMessage(QtWarningMsg, warning.constData());
    form.ui.card->setProperty(name.constData(), value);
    QVERIFY(ViewLayer::of(form.ui.card)->values() == before);
}

void FormStylingTest::findsMisspelledProperties()
{
    Form form;
    QCOMPARE(test::unknownFormProperties(formPath(), &form.root, stylingPropertyNames()), QStringList());

    QFile file(formPath());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QByteArray text = file.readAll();
    const QTemporaryDir folder;
    const QString misspelled = folder.filePath(u"misspelled.ui"_s);
    text.replace("\"cornerRadius\"", "\"cornerradius\"").replace("\"shadowColor\"", "\"shadowColour\"");
    text.replace("\"checkable\"", "\"checkible\"");
    QFile copy(misspelled);
    QVERIFY(copy.open(QIODevice::WriteOnly));
    copy.write(text);
    copy.close();
    QCOMPARE(test::unknownFormProperties(misspelled, &form.root, stylingPropertyNames()),
             (QStringList{u"card.shadowColour"_s, u"button.cornerradius"_s, u"button.checkible"_s}));
    delete form.ui.button;
    QCOMPARE(test::unknownFormProperties(misspelled, &form.root, stylingPropertyNames()),
             (QStringList{u"card.shadowColour"_s, u"button"_s, u"button"_s, u"button"_s}));
}

void FormStylingTest::findsBrokenForms()
{
    Form form;
    const QStringList unreadable{u"unreadable"_s};
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"broken.ui"_s);
    QCOMPARE(test::unknownFormProperties(path, &form.root, {}), unreadable);
    for (const QByteArray text : {"", "<ui></ui>", "<ui><widget name=\"a\"/>"}) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        QCOMPARE(test::unknownFormProperties(path, &form.root, {}), unreadable);
    }
}

} // namespace tessaly

using tessaly::FormStylingTest;
TESSALY_GUI_TEST_MAIN(FormStylingTest)
#include "form_styling_test.moc"
