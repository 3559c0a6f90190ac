// Drags on a widget, without a window system.
#pragma once

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QWidget>

namespace tessaly::test {

// A drag whose list of files is exactly the bytes that another program sent. QMimeData::setData() would parse
// and write them anew.
class RawDrag : public QMimeData
{
public:
    explicit RawDrag(const QByteArray &uriList) : m_uriList(uriList) {}

    QStringList formats() const override { return {QStringLiteral("text/uri-list")}; }

protected:
    QVariant retrieveData(const QString &mimeType, QMetaType) const override
    {
        return mimeType == formats().first() ? QVariant(m_uriList) : QVariant();
    }

private:
    QByteArray m_uriList;
};

struct Answer
{
    bool accepted;
    Qt::DropAction action;
};

inline bool operator==(const Answer &a, const Answer &b)
{
    return a.accepted == b.accepted && a.action == b.action;
}

constexpr Answer copied{true, Qt::CopyAction};
constexpr Answer refused{false, Qt::IgnoreAction};

// The steps of one drag, as the window system delivers them.
class Drag
{
public:
    Drag(QWidget &view, const QMimeData &data, Qt::DropActions offered = Qt::CopyAction,
         Qt::KeyboardModifiers keys = Qt::NoModifier)
        : m_view(view), m_data(data), m_offered(offered), m_keys(keys)
    {}

    Answer enter()
    {
        QDragEnterEvent event({5, 5}, m_offered, &m_data, Qt::LeftButton, m_keys);
        return answerOf(event);
    }

    Answer move()
    {
        QDragMoveEvent event({6, 6}, m_offered, &m_data, Qt::LeftButton, m_keys);
        return answerOf(event);
    }

    Answer drop()
    {
        QDropEvent event({6, 6}, m_offered, &m_data, Qt::LeftButton, m_keys);
        return answerOf(event);
    }

    void leave()
    {
        QDragLeaveEvent event;
        QApplication::sendEvent(&m_view, &event);
    }

private:
    Answer answerOf(QDropEvent &event)
    {
        QApplication::sendEvent(&m_view, &event);
        return {event.isAccepted(), event.isAccepted() ? event.dropAction() : Qt::IgnoreAction};
    }

    QWidget &m_view;
    const QMimeData &m_data;
    Qt::DropActions m_offered;
    Qt::KeyboardModifiers m_keys;
};

} // namespace tessaly::test
