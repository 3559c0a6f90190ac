#include "ui/progress_sheet.h"

#include "ui/progress_bar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

constexpr int leastWidth = 400;   // pixels at 100 % screen scale
constexpr int widthInDigits = 40; // more in large type
constexpr int margin = 18;        // pixels
constexpr qreal smallType = 0.85; // of the normal size

QLabel *makeLabel(const QString &objectName, const QFont &font, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setTextFormat(Qt::PlainText);
    label->setFont(font);
    // A long text is cut off instead of widening the sheet.
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    return label;
}

QFont titleFont(QFont font)
{
    font.setBold(true);
    return font;
}

QFont detailFont(QFont font)
{
    font.setPointSizeF(font.pointSizeF() * smallType);
    return font;
}

} // namespace

ProgressSheet::ProgressSheet(QWidget *parent)
    : QDialog(parent, Qt::Sheet | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      m_title(makeLabel(u"progressTitle"_s, titleFont(font()), this)),
      m_bar(new ProgressBar(this)),
      m_detail(makeLabel(u"progressDetail"_s, detailFont(font()), this)),
      m_cancel(new QPushButton(this))
{
    setObjectName("progressWindow"_L1);
    setFocusPolicy(Qt::StrongFocus);
    m_bar->setObjectName("progressBar"_L1);
    m_bar->setAccessibleName(u"Progress"_s);
    m_bar->setMinimumWidth(qMax(leastWidth, widthInDigits * fontMetrics().horizontalAdvance(u'0')));
    m_cancel->setObjectName("progressCancel"_L1);
    m_cancel->setText(u"Cancel"_s);
    m_cancel->setAutoDefault(false); // Return must not throw the work away

    auto *lastLine = new QHBoxLayout;
    lastLine->addWidget(m_detail, 1);
    lastLine->addWidget(m_cancel);
    auto *lines = new QVBoxLayout(this);
    lines->setSizeConstraint(QLayout::SetFixedSize);
    lines->setContentsMargins(margin, margin, margin, margin);
    lines->setSpacing(margin / 2);
    lines->addWidget(m_title);
    lines->addWidget(m_bar);
    lines->addLayout(lastLine);
}

void ProgressSheet::beginSheet(QWidget *window)
{
    setParent(window, windowFlags());
    setWindowTitle(m_title->text());
    // A label's text is mirrored by the direction of its letters, not by that of the window.
    const auto side = isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft;
    for (QLabel *label : {m_title, m_detail})
        label->setAlignment(Qt::AlignAbsolute | side | Qt::AlignVCenter);
    m_bar->setAccessibleName(m_title->text());
    setFocus(); // not Cancel: a Space that was meant for something else must not throw the work away
    open();     // modal to its parent
}

void ProgressSheet::endSheet()
{
    QWidget *window = parentWidget() ? parentWidget()->window() : nullptr;
    const bool personIsHere = isActiveWindow() || (window && window->isActiveWindow());
    hide();
    // Not every desktop gives the focus back by itself; from another window it must not be taken.
    if (personIsHere && window) window->activateWindow();
}

// QDialog sends Escape and the close command here.
void ProgressSheet::reject()
{
    if (m_cancel->isVisible()) m_cancel->click(); // a disabled button ignores it
}

} // namespace tessaly
