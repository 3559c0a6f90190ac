// A window of another program, for whoever works there. On standard output it says each letter that it is
// typed.
#include <QApplication>
#include <QKeyEvent>
#include <QTextStream>
#include <QWidget>

namespace {

class Typewriter : public QWidget
{
protected:
    void keyPressEvent(QKeyEvent *event) override { QTextStream(stdout) << event->text() << Qt::flush; }
};

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    Typewriter window;
    window.setWindowTitle(QStringLiteral("Typewriter"));
    window.resize(400, 300);
    window.show();
    return QApplication::exec();
}
