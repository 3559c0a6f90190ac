#include "ui/desktop_panels.h"

#include "platform/paths.h"
#include "ui/replace_question.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QTemporaryDir>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

QFileDialog *makeDialog(QWidget *window, const QString &title, const QString &directory)
{
    auto *dialog = new QFileDialog(window, title, panelFolder(directory));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setSupportedSchemes({u"file"_s});
    return dialog;
}

// Calls with the path that was chosen, an empty one when it was cancelled; from the event loop, since what
// follows may take long, and the dialog dies meanwhile.
void begin(QFileDialog *dialog, const std::function<void(const QString &path)> &chosen)
{
    QObject::connect(dialog, &QDialog::finished, dialog, [dialog, chosen](int result) {
        const QUrl url = result == QDialog::Accepted ? dialog->selectedUrls().value(0) : QUrl();
        QMetaObject::invokeMethod(
            dialog->parentWidget(), [chosen, path = url.toLocalFile()] { chosen(path); },
            Qt::QueuedConnection);
    });
    dialog->open();
}

void answer(const PanelCompletion &completion, const QString &path)
{
    completion(path.isEmpty() ? panelResponseCancel : panelResponseOK, path);
}

} // namespace

// Qt makes the parts of its own dialog only where it has no other. Then they read the folder at once, so it
// is an empty one: from a file that never answers they would read for ever.
bool hasDesktopPanels()
{
    static const bool has = [] {
        const QTemporaryDir empty;
        const QFileDialog dialog(nullptr, {}, empty.path());
        return !dialog.findChild<QLineEdit *>();
    }();
    return has;
}

void beginDesktopPanel(const OpenPanel &panel, QWidget *window, PanelCompletion completion)
{
    QFileDialog *dialog = makeDialog(window, panel.title, panel.directory);
    dialog->setFileMode(QFileDialog::ExistingFile);
    begin(dialog, [completion = std::move(completion)](const QString &path) { answer(completion, path); });
}

void beginDesktopPanel(const SavePanel &panel, QWidget *window, PanelCompletion completion)
{
    QFileDialog *dialog = makeDialog(window, panel.title, panel.directory);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    if (!panel.requiredFileType.isEmpty()) dialog->setNameFilter(panel.nameFilter());
    dialog->selectFile(panel.nameFieldStringValue);
    begin(dialog, [panel, window, completion = std::move(completion)](const QString &path) {
        const QString meant = panel.nameRule && !path.isEmpty() ? panel.nameRule(path) : path;
        if (meant == path || !QFileInfo::exists(meant)) {
            answer(completion, meant);
            return;
        }
        askBeforeReplacing(window, meant, [panel, window, completion, path, meant](bool replace) {
            if (replace) {
                answer(completion, meant);
                return;
            }
            SavePanel again = panel;
            again.directory = QFileInfo(path).path();
            again.nameFieldStringValue = lastPathComponent(path);
            beginDesktopPanel(again, window, completion);
        });
    });
}

} // namespace tessaly
