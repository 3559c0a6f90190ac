#include "ui/sheets_in_front.h"

#include <QApplication>
#include <QEvent>
#include <QTimer>

#include <algorithm>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

constexpr int answerLimit = 300; // milliseconds that the desktop has to grant the keyboard
constexpr int showings = 3;      // a desktop that still grants a sheet nothing has its reasons

QDialog *newestSheetOf(const QWidget *window)
{
    const QList<QDialog *> sheets = window->findChildren<QDialog *>(QString(), Qt::FindDirectChildrenOnly);
    const auto newest = std::find_if(sheets.rbegin(), sheets.rend(), [](const QDialog *sheet) {
        return sheet->isVisible() && !sheet->testAttribute(Qt::WA_DontShowOnScreen);
    });
    return newest == sheets.rend() ? nullptr : *newest;
}

// A dialog that is hidden forgets that it is modal.
void showAnew(QDialog *sheet)
{
    const Qt::WindowModality modality = sheet->windowModality();
    sheet->hide();
    sheet->setWindowModality(modality);
    sheet->show();
}

} // namespace

QDialog *topSheetOn(const QWidget *window)
{
    QDialog *top = nullptr;
    while (QDialog *sheet = window ? newestSheetOf(window) : nullptr)
        window = top = sheet;
    return top;
}

SheetsInFront::SheetsInFront()
{
    if (!QGuiApplication::platformName().startsWith("wayland"_L1)) return;
    // Which widget is active is known a moment later.
    connect(qApp, &QGuiApplication::focusWindowChanged, this, &SheetsInFront::follow, Qt::QueuedConnection);
    qApp->installEventFilter(this);
}

// The keyboard can come to a new sheet and leave it again before the program hears of it: no change is told
// then.
bool SheetsInFront::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::Show && qobject_cast<QDialog *>(object))
        QTimer::singleShot(answerLimit, this, &SheetsInFront::follow);
    return false;
}

void SheetsInFront::follow()
{
    QDialog *sheet = topSheetOn(QApplication::activeWindow());
    if (sheet != m_sheet) m_showings = 0;
    m_sheet = sheet;
    if (!sheet) return;
    sheet->activateWindow();
    QTimer::singleShot(answerLimit, sheet, [this, sheet] {
        if (topSheetOn(QApplication::activeWindow()) != sheet || m_showings == showings) return;
        ++m_showings;
        showAnew(sheet);
    });
}

} // namespace tessaly
