// The keys that a window answers together with Alt.
#pragma once

#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QSet>

namespace tessaly::test {

inline void addMnemonic(QStringList &keys, const QString &text)
{
    const QKeySequence key = QKeySequence::mnemonic(text);
    if (!key.isEmpty()) keys << key.toString();
}

// While the window has the keyboard: those of its menus' titles, labels and buttons; what is hidden counts,
// too.
inline QStringList mnemonics(const QWidget &window)
{
    QStringList keys;
    const auto belongs = [&](const QWidget *widget) { return widget->window() == &window; };
    for (const auto *bar : window.findChildren<QMenuBar *>()) {
        for (const QAction *action : bar->actions())
            if (belongs(bar)) addMnemonic(keys, action->text());
    }
    for (const auto *label : window.findChildren<QLabel *>())
        if (belongs(label) && label->buddy()) addMnemonic(keys, label->text());
    for (const auto *button : window.findChildren<QAbstractButton *>())
        if (belongs(button)) addMnemonic(keys, button->text());
    for (const auto *group : window.findChildren<QGroupBox *>())
        if (belongs(group)) addMnemonic(keys, group->title());
    return keys;
}

// While the menu is open.
inline QStringList mnemonics(const QMenu &menu)
{
    QStringList keys;
    for (const QAction *action : menu.actions())
        addMnemonic(keys, action->text());
    return keys;
}

// What stands there more than once, once less.
inline QStringList repeated(QStringList keys)
{
    const QSet<QString> once(keys.begin(), keys.end());
    for (const QString &key : once)
        keys.removeOne(key);
    return keys;
}

} // namespace tessaly::test
