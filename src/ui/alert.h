// A question or a message as a sheet on a window.
#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class QWidget;

namespace tessaly {

// The answer of the nth button is firstAlertResponse + n, counted from 0 in the order in which they were
// added.
constexpr int firstAlertResponse = 1000;

// The answer of a sheet that something else than a person has ended, by code, when Escape has no answer.
constexpr int alertAbortedResponse = -1001;

// Fill in, then begin. All texts are plain text: no markup, no mnemonics. Main thread only.
struct Alert
{
    enum class Style { warning, informational, critical };

    QString messageText;
    QString informativeText;
    // Shown from its end after a click on "Show Details...", with a button that copies it; no such button
    // when empty.
    QString detailsText;
    Style style = Style::warning;

    // The first button is the one that Return answers. Without any there is one "OK".
    void addButtonWithTitle(const QString &title) { buttonTitles << title; }

    // Shows the sheet and returns at once. `completion`, when given, is called exactly once with the answer,
    // from the event loop, after the sheet has closed; never when `window` is destroyed first. Escape and the
    // window manager's close answer the button "Cancel", without one "OK" or the only button, without those
    // nothing.
    //
    // The sheet belongs to the window of `window`, which takes drags meanwhile, also those onto the sheet,
    // but no other input; a sheet begun while another one is up lies over it. Its object name is "alert",
    // those of its buttons "alertButton1000", "alertButton1001", …, that of Copy "alertCopy".
    void beginSheet(QWidget *window, std::function<void(int response)> completion = {}) const;

    QStringList buttonTitles;
};

// Answers all alerts on the window as Escape does, from the top one down. One that Escape does not answer
// stays.
void answerAlerts(QWidget *window);

// The text with invisible break opportunities (U+200B) in words that are too long for one line, such as file
// names.
QString withBreaksInLongWords(const QString &text);

} // namespace tessaly
