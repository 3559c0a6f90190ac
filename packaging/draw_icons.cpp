// Draws the icon in the sizes that desktops want as pictures: draw_icons SVG FOLDER makes
// FOLDER/NxN/tessaly.png. Run by a person when the icon has changed; what it makes lies in packaging/icons.
#include <QDir>
#include <QGuiApplication>
#include <QImageReader>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) qFatal("Usage: draw_icons SVG FOLDER");
    for (const int side : {16, 22, 24, 32, 48, 64, 128, 256, 512}) {
        QImageReader reader(arguments.at(1));
        reader.setScaledSize({side, side});
        const QString folder = u"%1/%2x%2"_s.arg(arguments.at(2)).arg(side);
        if (!QDir().mkpath(folder) || !reader.read().save(folder + u"/tessaly.png"_s))
            qFatal("The icon could not be drawn: %s", qUtf8Printable(reader.errorString()));
    }
}
