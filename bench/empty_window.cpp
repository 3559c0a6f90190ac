// What our window is held against: a Qt window of its size with a menu, a tool bar and an empty body.
#include <QApplication>
#include <QMainWindow>
#include <QMenuBar>
#include <QToolBar>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    QMainWindow window;
    window.menuBar()->addMenu(u"&File"_s)->addAction(u"&Quit"_s);
    window.addToolBar(u"Tools"_s)->addAction(u"Open"_s);
    window.setCentralWidget(new QWidget);
    window.resize(880, 620);
    window.show();
    return QApplication::exec();
}
