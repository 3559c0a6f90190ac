// A file panel under a window, driven as a person drives it.
#pragma once

#include "support/test_case.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QWidget>

#include <utility>

namespace tessaly::test {

class PanelDriver
{
public:
    using Answers = QList<std::pair<int, QString>>;

    PanelDriver()
    {
        window.resize(700, 500);
        window.show();
    }

    // For beginSheet().
    auto completion()
    {
        return [this](int response, const QString &path) {
            wasVisibleAtAnswer = panel() && panel()->isVisible();
            answers += {response, path};
        };
    }

    QFileDialog *panel() { return window.findChild<QFileDialog *>(); }
    QLineEdit *nameField() { return panel()->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")); }
    QListView *list() { return panel()->findChild<QListView *>(QStringLiteral("listView")); }

    QAbstractButton *button(QDialogButtonBox::StandardButton which)
    {
        return panel()->findChild<QDialogButtonBox *>()->button(which);
    }

    QAbstractButton *acceptButton()
    {
        return button(panel()->acceptMode() == QFileDialog::AcceptOpen ? QDialogButtonBox::Open
                                                                       : QDialogButtonBox::Save);
    }

    void type(const QString &name)
    {
        panel()->activateWindow();
        nameField()->setCompleter(nullptr); // its popup comes at any time and would swallow the click
        nameField()->setFocus();
        QVERIFY(QTest::qWaitForWindowActive(panel(), waitLimit));
        nameField()->selectAll();
        QTest::keyClick(nameField(), Qt::Key_Delete);
        QTest::keyClicks(nameField(), name);
    }

    void click(QAbstractButton *target) { QTest::mouseClick(target, Qt::LeftButton); }

    void accept() { click(acceptButton()); }

    QStringList listed()
    {
        QStringList names;
        const QModelIndex root = list()->rootIndex();
        for (int row = 0; row < list()->model()->rowCount(root); ++row)
            names += list()->model()->index(row, 0, root).data().toString();
        names.sort();
        return names;
    }

    QModelIndex listIndex(const QString &name)
    {
        const QModelIndex root = list()->rootIndex();
        for (int row = 0; row < list()->model()->rowCount(root); ++row) {
            const QModelIndex index = list()->model()->index(row, 0, root);
            if (index.data().toString() == name) return index;
        }
        return {};
    }

    void clickInList(const QString &name)
    {
        const QModelIndex index = listIndex(name);
        list()->scrollTo(index);
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, list()->visualRect(index).center());
    }

    // The sheet on the panel, null when there is none.
    QMessageBox *question()
    {
        for (QMessageBox *box : panel()->findChildren<QMessageBox *>()) {
            if (box->isVisible()) return box;
        }
        return nullptr;
    }

    QAbstractButton *questionButton(const QString &text)
    {
        for (QAbstractButton *candidate : question()->buttons()) {
            if (candidate->text() == text) return candidate;
        }
        return nullptr;
    }

    QWidget window;
    Answers answers;
    bool wasVisibleAtAnswer = false;
};

} // namespace tessaly::test
