#include "ui/replace_question.h"

#include "platform/paths.h"

#include <QMessageBox>
#include <QPushButton>

namespace tessaly {

using namespace Qt::StringLiterals;

QMessageBox *makePlainQuestion(QWidget *parent, const QString &text)
{
    auto *box = new QMessageBox(parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->setText(text);
    return box;
}

void askBeforeReplacing(QWidget *parent, const QString &path, const std::function<void(bool replace)> &answer)
{
    const QString question = u"“%1” already exists. Do you want to replace it?"_s;
    QMessageBox *box = makePlainQuestion(parent, question.arg(lastPathComponent(path)));
    box->setIcon(QMessageBox::Warning);
    QPushButton *replace = box->addButton(u"Replace"_s, QMessageBox::DestructiveRole);
    QPushButton *cancel = box->addButton(u"Cancel"_s, QMessageBox::RejectRole);
    box->setDefaultButton(cancel);
    box->setEscapeButton(cancel);
    QObject::connect(box, &QDialog::finished, parent,
                     [box, replace, answer] { answer(box->clickedButton() == replace); });
    box->open();
}

} // namespace tessaly
