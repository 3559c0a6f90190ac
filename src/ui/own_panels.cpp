#include "ui/own_panels.h"

#include "platform/paths.h"
#include "ui/replace_question.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QHeaderView>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QMimeDatabase>
#include <QPushButton>
#include <QSplitter>
#include <QStandardPaths>
#include <QTreeView>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

// Tells files by their names. Qt's own provider reads from each file that is listed to find out what it is:
// from one that never answers, such as /proc/kmsg or a file on a lost network drive, for ever, while the
// window waits.
class NamesOnlyIcons : public QFileIconProvider
{
public:
    QIcon icon(const QFileInfo &item) const override
    {
        if (item.isDir()) return QFileIconProvider::icon(item);
        return QIcon::fromTheme(typeOf(item).iconName(), QFileIconProvider::icon(IconType::File));
    }
    using QFileIconProvider::icon;

    QString type(const QFileInfo &item) const override
    {
        return item.isDir() ? QFileIconProvider::type(item) : typeOf(item).comment();
    }

private:
    static QMimeType typeOf(const QFileInfo &item)
    {
        return QMimeDatabase().mimeTypeForFile(item, QMimeDatabase::MatchExtension);
    }
};

QFileIconProvider *namesOnlyIcons()
{
    static NamesOnlyIcons icons;
    return &icons;
}

// Where a person keeps films, as far as these folders are there.
QList<QUrl> places()
{
    QList<QUrl> urls{QUrl(u"file:"_s)}; // the whole computer
    for (const auto place : {QStandardPaths::HomeLocation, QStandardPaths::MoviesLocation,
                             QStandardPaths::DownloadLocation, QStandardPaths::DesktopLocation}) {
        const QUrl url = fileURL(QStandardPaths::writableLocation(place));
        if (QFileInfo(url.toLocalFile()).isDir() && !urls.contains(url)) urls << url;
    }
    return urls;
}

// What both panels share: Qt's own dialog, driven alike by people and tests, whose acceptance is judged here,
// so that all questions are sheets and names with quotation marks (a list of names to Qt) are taken
// literally.
class PanelDialog : public QFileDialog
{
public:
    PanelDialog(QWidget *window, const QString &title, const QString &directory) : QFileDialog(window)
    {
        setAttribute(Qt::WA_DeleteOnClose);
        setOption(QFileDialog::DontUseNativeDialog);
        setIconProvider(namesOnlyIcons());
        makeRoom();
        setSidebarUrls(places());
        setWindowTitle(title);
        setDirectory(panelFolder(directory));
    }

    void begin(PanelCompletion completion)
    {
        // While a path is typed, Qt selects in its list what the path leads over. A selection counts more
        // than the text, and its name replaces the text where the list of completions has just taken the
        // focus. And Qt knows only the files that it lists; here what is typed stands, and is judged when it
        // is accepted.
        disconnect(nameField(), &QLineEdit::textChanged, this, nullptr);
        connect(nameField(), &QLineEdit::textEdited, this, [this] { list()->clearSelection(); });
        connect(nameField(), &QLineEdit::textChanged, this,
                [this](const QString &name) { acceptButton()->setEnabled(!name.isEmpty()); });
        // Not from within the dialog's own functions: what follows may take long, and the dialog dies
        // meanwhile.
        connect(this, &QDialog::finished, this, [this, completion = std::move(completion)](int result) {
            const int response = result == QDialog::Accepted ? panelResponseOK : panelResponseCancel;
            const auto complete = [completion, response, path = m_path] { completion(response, path); };
            QMetaObject::invokeMethod(parentWidget(), complete, Qt::QueuedConnection);
        });
        open();
    }

    void accept() override
    {
        const QString path = chosenPath();
        if (QFileInfo(path).isDir()) {
            setDirectory(path);
            nameField()->clear();
        } else {
            judge(path);
        }
    }

protected:
    // Ends the panel with the path, or asks.
    virtual void judge(const QString &path) = 0;

    void finish(const QString &path)
    {
        m_path = path;
        done(QDialog::Accepted);
    }

private:
    // For whole names of places, and whole columns.
    void makeRoom()
    {
        constexpr QSize inLetters(90, 28);
        resize(inLetters.width() * fontMetrics().averageCharWidth(),
               inLetters.height() * fontMetrics().height());
        auto *splitter = findChild<QSplitter *>(u"splitter"_s);
        splitter->setSizes({width() / 4, width() * 3 / 4});
        QHeaderView *columns = findChild<QTreeView *>(u"treeView"_s)->header();
        columns->setStretchLastSection(false);
        columns->setSectionResizeMode(QHeaderView::ResizeToContents);
        columns->setSectionResizeMode(0, QHeaderView::Stretch);
    }

    QLineEdit *nameField() const { return findChild<QLineEdit *>(u"fileNameEdit"_s); }
    QListView *list() const { return findChild<QListView *>(u"listView"_s); }
    bool holdsQuotationMark() const { return nameField()->text().contains(u'"'); }

    QPushButton *acceptButton() const
    {
        const auto role = acceptMode() == AcceptOpen ? QDialogButtonBox::Open : QDialogButtonBox::Save;
        return findChild<QDialogButtonBox *>()->button(role);
    }

    QString chosenPath() const
    {
        if (holdsQuotationMark()) return directory().absoluteFilePath(nameField()->text());
        return selectedFiles().value(0);
    }

    QString m_path; // empty unless accepted
};

class OpenDialog : public PanelDialog
{
public:
    using PanelDialog::PanelDialog;

protected:
    void judge(const QString &path) override
    {
        if (QFileInfo::exists(path)) {
            finish(path);
            return;
        }
        QMessageBox *box = makePlainQuestion(this, u"“%1” does not exist."_s.arg(lastPathComponent(path)));
        box->addButton(u"OK"_s, QMessageBox::AcceptRole);
        box->open();
    }
};

class SaveDialog : public PanelDialog
{
public:
    using PanelDialog::PanelDialog;

    SavePanel::NameRule nameRule;

protected:
    void judge(const QString &path) override
    {
        const QString meant = nameRule ? nameRule(path) : path;
        if (QFileInfo::exists(meant)) {
            askBeforeReplacing(this, meant, [this, meant](bool replace) {
                if (replace) finish(meant);
            });
        } else {
            finish(meant);
        }
    }
};

} // namespace

void beginOwnPanel(const OpenPanel &panel, QWidget *window, PanelCompletion completion)
{
    auto *dialog = new OpenDialog(window, panel.title, panel.directory);
    dialog->setObjectName(u"openPanel"_s);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->begin(std::move(completion));
}

void beginOwnPanel(const SavePanel &panel, QWidget *window, PanelCompletion completion)
{
    auto *dialog = new SaveDialog(window, panel.title, panel.directory);
    dialog->setObjectName(u"savePanel"_s);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setLabelText(QFileDialog::LookIn, u"Save in:"_s);
    if (!panel.requiredFileType.isEmpty()) dialog->setNameFilter(panel.nameFilter());
    dialog->selectFile(panel.nameFieldStringValue);
    dialog->nameRule = panel.nameRule;
    dialog->begin(std::move(completion));
}

} // namespace tessaly
