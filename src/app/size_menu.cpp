// The menu of sizes that people want: each entry does what typing into the height field, or sliding, would.
#include "app/app_delegate.h"

#include <QMenu>

#include <array>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

constexpr std::array heights{2160, 1440, 1080, 720, 480}; // pixels
constexpr std::array percentages{75, 50, 25};

QString heightText(int height, qint64 original)
{
    return height > original ? AppDelegate::tr("%1p (enlarges)").arg(height)
                             : AppDelegate::tr("%1p").arg(height);
}

} // namespace

void AppDelegate::connectSizeMenu(QMenu *menu)
{
    const auto add = [this, menu](const QString &text, const QKeySequence &shortcut, const auto &act) {
        QAction *action = menu->addAction(text);
        action->setShortcut(shortcut);
        connect(action, &QAction::triggered, this, act);
        return action;
    };
    int key = Qt::Key_1;
    for (const int height : heights)
        m_heightActions << add(heightText(height, height), Qt::ALT | Qt::Key(key++),
                               [this, height] { chooseHeight(height); });
    menu->addSeparator();
    for (const int percent : percentages)
        add(tr("%1 %").arg(percent), Qt::ALT | Qt::Key(key++), [this, percent] { choosePercent(percent); });
    menu->addSeparator();
    add(tr("Slide the &Width"), Qt::CTRL | Qt::Key_1, [this] { chooseSide(*widthTF); });
    add(tr("Slide the &Height"), Qt::CTRL | Qt::Key_2, [this] { chooseSide(*heightTF); });
    m_sizeMenu = menu;
}

void AppDelegate::updateSizeMenu(bool enabled)
{
    if (!m_sizeMenu) return;
    const QList<QAction *> actions = m_sizeMenu->actions();
    for (QAction *action : actions)
        action->setEnabled(enabled);
    for (qsizetype i = 0; i < m_heightActions.size(); ++i)
        m_heightActions.at(i)->setText(heightText(heights.at(static_cast<std::size_t>(i)), originalHeight));
}

void AppDelegate::chooseHeight(int height)
{
    widthTF->commitEdit(); // as it does when the height field is gone to
    heightTF->enter(QString::number(height));
}

void AppDelegate::choosePercent(int percent)
{
    widthTF->commitEdit();
    heightTF->commitEdit();
    sizeSLDR->setValueByUser(percent);
}

// As a click does, which takes the keyboard there, too.
void AppDelegate::chooseSide(NumberField &field)
{
    field.setFocus(Qt::ShortcutFocusReason);
    Q_EMIT field.clickedPlainly();
}

} // namespace tessaly
