// Linked into a program with a main window: says on standard output when that window has been painted for the
// first time, and how large it is. The program itself knows nothing of it.
#include <QApplication>
#include <QMainWindow>

#include <cstdio>

namespace {

class FirstPaint : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject *object, QEvent *event) override
    {
        const auto *window = qobject_cast<QMainWindow *>(object);
        if (!window || event->type() != QEvent::Paint) return false;
        QCoreApplication::instance()->removeEventFilter(this);
        // The other views come after this one; a later turn finds all of them painted.
        QMetaObject::invokeMethod(
            this, [size = window->size()] { tell(size); }, Qt::QueuedConnection);
        return false;
    }

private:
    static void tell(QSize size)
    {
        std::printf("painted %d x %d\n", size.width(), size.height());
        std::fflush(stdout);
    }
};

void watchFirstPaint()
{
    QCoreApplication *application = QCoreApplication::instance();
    application->installEventFilter(new FirstPaint(application));
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(watchFirstPaint)
