// The panels in which a person chooses a file, as window-modal sheets: the desktop's own where it has some,
// else Qt's.
#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace tessaly {

// The response is 1 (OK, with an absolute path) or 0 (cancelled, with an empty one). Called exactly once, on
// the main thread, when the panel is no longer on the screen; never when the window dies under its panel.
using PanelCompletion = std::function<void(int response, const QString &path)>;

constexpr int panelResponseOK = 1;
constexpr int panelResponseCancel = 0;

// The folder in which a panel starts.
QString panelFolder(const QString &directory);

// Any one existing file. The fields are read when the sheet begins; the window must not be null. Main thread
// only.
struct OpenPanel
{
    QString title;
    QString directory; // where it starts; the home folder when this is empty or gone

    void beginSheet(QWidget *window, PanelCompletion completion) const;
};

// A file to be written. Writes and deletes nothing itself. As above.
struct SavePanel
{
    // From the path that was typed to the one that is meant, such as one with the required extension.
    using NameRule = std::function<QString(const QString &path)>;

    QString title;
    QString directory;            // as above
    QString nameFieldStringValue; // the name that is offered
    QString requiredFileType;     // extension without its point: the only files listed
    NameRule nameRule;            // none: the path is taken as typed

    QString nameFilter() const; // for the required type, as Qt's dialogs want it

    // When a file exists at the path that the rule gives, the person is asked before the panel ends; "Cancel"
    // there leads back to the panel.
    void beginSheet(QWidget *window, PanelCompletion completion) const;
};

} // namespace tessaly
