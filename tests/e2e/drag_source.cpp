// A window that offers a drag: drag_source [--offer=copy,move,link] [--text TEXT | FILE…]. Without an offer
// it offers a copy; of several it wants the last. Like a file manager it deletes the files when the target
// reports that they were moved. On standard output it says "ready", "entered" when the mouse comes first,
// "over ACTION" when the target's answer changes, and "done ACTION" at the end; then it lives on, since a
// target may ask for the data as late as that.
#include <QApplication>
#include <QDrag>
#include <QFile>
#include <QMimeData>
#include <QMouseEvent>
#include <QTextStream>
#include <QUrl>
#include <QWidget>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

void say(const QString &line)
{
    QTextStream(stdout) << line << Qt::endl;
}

QString named(Qt::DropAction action)
{
    switch (action) {
    case Qt::CopyAction:
        return u"copy"_s;
    case Qt::MoveAction:
        return u"move"_s;
    case Qt::LinkAction:
        return u"link"_s;
    case Qt::IgnoreAction:
        return u"nothing"_s;
    default:
        return u"something else"_s;
    }
}

class Source : public QWidget
{
public:
    explicit Source(const QStringList &arguments) : m_isText(arguments.contains("--text"_L1))
    {
        constexpr auto offer = "--offer="_L1;
        for (const QString &argument : arguments) {
            if (argument.startsWith(offer)) m_offer = argument.sliced(offer.size()).split(u',');
            if (!argument.startsWith("--"_L1)) m_items << argument;
        }
        setWindowTitle(u"Drag source"_s);
        setGeometry(1000, 700, 160, 120);
    }

protected:
    void enterEvent(QEnterEvent *) override
    {
        if (!std::exchange(m_isEntered, true)) say(u"entered"_s);
    }

    void mousePressEvent(QMouseEvent *event) override { m_pressedAt = event->position().toPoint(); }

    void mouseMoveEvent(QMouseEvent *event) override
    {
        const int moved = (event->position().toPoint() - m_pressedAt).manhattanLength();
        if (event->buttons().testFlag(Qt::LeftButton) && moved >= QApplication::startDragDistance()) drag();
    }

private:
    QMimeData *data() const
    {
        auto *data = new QMimeData;
        if (m_isText) {
            data->setText(m_items.join(u' '));
            return data;
        }
        QList<QUrl> urls;
        for (const QString &path : m_items)
            urls << QUrl::fromLocalFile(path);
        data->setUrls(urls);
        return data;
    }

    void drag()
    {
        auto *drag = new QDrag(this);
        drag->setMimeData(data());
        connect(drag, &QDrag::actionChanged, this,
                [](Qt::DropAction action) { say(u"over "_s + named(action)); });
        Qt::DropActions offered;
        Qt::DropAction wanted = Qt::IgnoreAction;
        for (const Qt::DropAction action : {Qt::CopyAction, Qt::MoveAction, Qt::LinkAction}) {
            if (!m_offer.contains(named(action))) continue;
            offered |= action;
            wanted = action;
        }
        const Qt::DropAction done = drag->exec(offered, wanted);
        if (done == Qt::MoveAction) {
            for (const QString &path : m_items)
                QFile::remove(path);
        }
        say(u"done "_s + named(done));
    }

    QStringList m_offer{u"copy"_s};
    bool m_isText;
    QStringList m_items;
    QPoint m_pressedAt;
    bool m_isEntered = false;
};

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    Source source(QApplication::arguments().mid(1));
    source.show();
    say(u"ready"_s);
    return QApplication::exec();
}
