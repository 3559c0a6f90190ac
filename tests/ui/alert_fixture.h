// What the tests of alerts share: a window to show them on, and ways to find their parts.
#pragma once

#include "support/test_case.h"
#include "ui/alert.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTextEdit>
#include <QWindow>

namespace tessaly::test {

using namespace Qt::StringLiterals;

inline constexpr int noAnswer = 0;

// A shown window and what the alerts on it answered, in order.
struct Stage
{
    Stage()
    {
        window.setGeometry(100, 100, 500, 400);
        window.show();
    }

    Alert alert(const QStringList &titles = {}) const
    {
        Alert result;
        result.messageText = u"Message"_s;
        result.informativeText = u"Information"_s;
        for (const QString &title : titles)
            result.addButtonWithTitle(title);
        return result;
    }

    void begin(const Alert &alert)
    {
        alert.beginSheet(&window, [this](int response) { responses << response; });
    }

    // The alerts on the window, the last one begun last.
    QList<QMessageBox *> boxes() const { return window.findChildren<QMessageBox *>(u"alert"_s); }
    QMessageBox *box() const { return boxes().isEmpty() ? nullptr : boxes().last(); }

    QWidget window;
    QList<int> responses;
};

inline QPushButton *buttonOf(const QMessageBox *box, int response)
{
    return box->findChild<QPushButton *>(u"alertButton%1"_s.arg(response));
}

inline QLabel *labelOf(const QMessageBox *box, const QString &text)
{
    const QList<QLabel *> labels = box->findChildren<QLabel *>();
    for (QLabel *label : labels)
        if (label->text() == text) return label;
    return nullptr;
}

// As from the keyboard: to the window, which passes it on to the view with the focus.
inline void press(QWidget *window, Qt::Key key)
{
    QTest::keyClick(window->windowHandle(), key);
}

} // namespace tessaly::test
