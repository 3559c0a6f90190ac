#include "ui/alert.h"

#include "platform/main_queue.h"
#include "ui/sheet_shield.h"
#include "ui/sheets_in_front.h"

#include <QAbstractButton>
#include <QBoxLayout>
#include <QClipboard>
#include <QCoreApplication>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QStyle>
#include <QTextBoundaryFinder>
#include <QTextEdit>

#include <algorithm>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

constexpr int longestUnbrokenWord = 24; // characters as a person counts them
constexpr int breakEvery = 12;
constexpr QChar breakOpportunity(0x200b);

QString withBreaks(const QString &word)
{
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, word);
    QString result;
    int count = 0;
    for (qsizetype from = 0; from < word.size(); ++count) {
        const qsizetype to = characters.toNextBoundary();
        if (count > 0 && count % breakEvery == 0) result += breakOpportunity;
        result += word.sliced(from, to - from);
        from = to;
    }
    return count > longestUnbrokenWord ? result : word;
}

QString literalTitle(QString title)
{
    return title.replace(u'&', u"&&"_s);
}

QStringList titlesOf(const Alert &alert)
{
    return alert.buttonTitles.isEmpty() ? QStringList{u"OK"_s} : alert.buttonTitles;
}

// Which button Escape answers; -1 when none.
qsizetype escapeIndex(const QStringList &titles)
{
    if (const qsizetype cancel = titles.indexOf(u"Cancel"_s); cancel >= 0) return cancel;
    if (titles.size() == 1) return 0;
    return titles.indexOf(u"OK"_s);
}

QMessageBox::ButtonRole roleOf(qsizetype index, const QString &title)
{
    if (title == "Cancel"_L1) return QMessageBox::RejectRole;
    return index == 0 ? QMessageBox::AcceptRole : QMessageBox::ActionRole;
}

void addButtons(QMessageBox *box, const QStringList &titles)
{
    for (qsizetype i = 0; i < titles.size(); ++i) {
        QPushButton *button = box->addButton(literalTitle(titles.at(i)), roleOf(i, titles.at(i)));
        button->setObjectName(u"alertButton%1"_s.arg(firstAlertResponse + i));
        button->setAccessibleName(titles.at(i));
        if (i == 0) box->setDefaultButton(button);
        if (i == escapeIndex(titles)) box->setEscapeButton(button);
    }
}

QMessageBox::Icon iconOf(Alert::Style style)
{
    switch (style) {
    case Alert::Style::warning:
        return QMessageBox::Warning;
    case Alert::Style::informational:
        return QMessageBox::Information;
    case Alert::Style::critical:
        return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

// A message that is not critical comes with the application's own icon.
void setIcon(QMessageBox *box, Alert::Style style)
{
    const QIcon own = box->windowIcon();
    if (style == Alert::Style::critical || own.isNull()) {
        box->setIcon(iconOf(style));
        return;
    }
    const int side = box->style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, box);
    box->setIconPixmap(own.pixmap(QSize(side, side), box->devicePixelRatio()));
}

void setTexts(QMessageBox *box, const Alert &alert)
{
    const QString message = withBreaksInLongWords(alert.messageText);
    box->setTextFormat(Qt::PlainText);
    box->setText(message);
    box->setInformativeText(withBreaksInLongWords(alert.informativeText));
    // The box has no setting for the format of its informative text, nor one for the weight of its message.
    const QList<QLabel *> labels = box->findChildren<QLabel *>();
    for (QLabel *label : labels) {
        label->setTextFormat(Qt::PlainText);
        if (label->text().contains(breakOpportunity))
            label->setAccessibleName(label->text().remove(breakOpportunity));
        if (label->text() != message) continue;
        QFont bold = label->font();
        bold.setBold(true);
        label->setFont(bold);
    }
    // No description: a screen reader that comes to a sheet reads its labels, too.
    box->setAccessibleName(alert.messageText);
}

// Below the details, and seen only with them. A button in the row of answers would close the box.
void addCopyButton(QWidget *detailsPart, const QString &details)
{
    auto *copy = new QPushButton(QCoreApplication::translate("Alert", "&Copy"), detailsPart);
    copy->setObjectName(u"alertCopy"_s);
    copy->setAutoDefault(false); // Return stays the answer's
    QObject::connect(copy, &QPushButton::clicked, copy,
                     [details] { QGuiApplication::clipboard()->setText(details); });
    auto *column = qobject_cast<QBoxLayout *>(detailsPart->layout());
    column->addWidget(copy, 0, Qt::AlignTrailing);
}

// They are lines of a program, of which the last ones tell what went wrong.
void setDetails(QMessageBox *box, const QString &details)
{
    box->setDetailedText(details);
    auto *view = box->findChild<QTextEdit *>();
    if (!view) return; // there are none
    view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    view->moveCursor(QTextCursor::End); // is what shows when it opens
    addCopyButton(view->parentWidget(), details);
}

int responseOf(const QMessageBox *box)
{
    // Closed by the window manager, no button was clicked: this answers as Escape does.
    const QAbstractButton *button = box->clickedButton() ? box->clickedButton() : box->escapeButton();
    if (!button) return alertAbortedResponse;
    return QStringView(button->objectName()).mid("alertButton"_L1.size()).toInt();
}

// A desktop may give the focus to the window now, though another sheet still lies over it.
void activateTopSheet(const QWidget *window)
{
    QDialog *top = topSheetOn(window);
    if (!top) return;
    top->raise();
    top->activateWindow();
}

} // namespace

void Alert::beginSheet(QWidget *window, std::function<void(int response)> completion) const
{
    QWidget *parent = window ? window->window() : nullptr;
    auto *box = new QMessageBox(parent);
    box->setObjectName(u"alert"_s);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(QGuiApplication::applicationDisplayName());
    setIcon(box, style);
    setTexts(box, *this);
    setDetails(box, detailsText);
    addButtons(box, titlesOf(*this));

    QObject *context = parent ? static_cast<QObject *>(parent) : QCoreApplication::instance();
    const auto answer = [box, parent, context, completion = std::move(completion)] {
        if (parent) activateTopSheet(parent);
        if (!completion) return;
        // Later, from the event loop: the completion may well delete the window, and this sheet with it.
        asyncOnMainQueue(context, [completion, response = responseOf(box)] { completion(response); });
    };
    QObject::connect(box, &QDialog::finished, context, answer, Qt::SingleShotConnection);
    if (!parent) {
        box->open();
        return;
    }
    box->setModal(false); // a message box is modal of its own accord
    new SheetShield(parent, box);
    box->show();
}

void answerAlerts(QWidget *window)
{
    const QList<QMessageBox *> boxes = window->findChildren<QMessageBox *>(u"alert"_s);
    std::for_each(boxes.rbegin(), boxes.rend(), [](QMessageBox *box) {
        if (box->isVisible() && box->escapeButton()) box->reject();
    });
}

QString withBreaksInLongWords(const QString &text)
{
    QString result;
    qsizetype wordStart = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        const bool atEnd = i == text.size();
        if (!atEnd && !text.at(i).isSpace()) continue;
        result += withBreaks(text.sliced(wordStart, i - wordStart));
        if (!atEnd) result += text.at(i);
        wordStart = i + 1;
    }
    return result;
}

} // namespace tessaly
