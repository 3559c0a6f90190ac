// Two number fields in a window, and what a person does to them.
#pragma once

#include "pointer.h"
#include "support/test_case.h"
#include "ui/number_field.h"

#include <QSignalSpy>

namespace tessaly::test {

// Two fields of one window, as they stand after a file was opened.
struct NumberFieldFixture
{
    NumberFieldFixture()
    {
        width.setIntegerValue(853);
        height.setIntegerValue(480);
        width.setGeometry(10, 10, 200, 40);
        height.setGeometry(10, 60, 200, 40);
        window.resize(300, 200);
        window.show();
        width.setFocus();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window, waitLimit)) qFatal("the window does not become active");
        width.selectAll(); // as after the Tab key
    }

    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(window.windowHandle(), key, modifiers);
    }
    void type(const char *text)
    {
        for (; *text != 0; ++text)
            QTest::keyClick(window.windowHandle(), *text);
    }

    QWidget window;
    NumberField width{&window};
    NumberField height{&window};
    QSignalSpy widthCommitted{&width, &NumberField::committed};
    QSignalSpy heightCommitted{&height, &NumberField::committed};
    QSignalSpy widthClicked{&width, &NumberField::clickedPlainly};
    QSignalSpy heightClicked{&height, &NumberField::clickedPlainly};
};

// In the middle of the digits of a field.
inline QPoint inText(const NumberField &field)
{
    return {10, field.height() / 2};
}

} // namespace tessaly::test
