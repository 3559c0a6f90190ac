#include "ui/symbol_icon.h"

#include <QBuffer>
#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QImageReader>
#include <QPainter>
#include <QPalette>
#include <QPixmap>

// Resources of a static library are there only once this was called; the macro wants the global namespace.
static void useBuiltInIcons()
{
    Q_INIT_RESOURCE(icons);
}

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

QByteArray symbol(const QString &name)
{
    useBuiltInIcons();
    QFile file(u":/icons/%1.svg"_s.arg(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QImage drawn(QByteArray svg, const QSize &pixels, const QColor &colour)
{
    svg.replace("currentColor", colour.name().toLatin1());
    QBuffer buffer(&svg);
    QImageReader reader(&buffer, "svg");
    reader.setScaledSize(pixels);
    return reader.read();
}

class SymbolIconEngine : public QIconEngine
{
public:
    explicit SymbolIconEngine(QByteArray svg) : m_svg(std::move(svg)) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        const qreal scale = painter->device()->devicePixelRatio();
        painter->drawImage(rect, image(rect.size() * scale, mode));
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State) override
    {
        return QPixmap::fromImage(image(size, mode));
    }

    QIconEngine *clone() const override { return new SymbolIconEngine(m_svg); }

private:
    QImage image(const QSize &size, QIcon::Mode mode) const
    {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::WindowText;
        return drawn(m_svg, size, QGuiApplication::palette().color(group, role));
    }

    QByteArray m_svg;
};

} // namespace

QIcon symbolIcon(const QString &name)
{
    const QByteArray svg = symbol(name);
    return svg.isEmpty() ? QIcon() : QIcon(new SymbolIconEngine(svg));
}

QPixmap symbolPixmap(const QString &name, const QSize &size, qreal devicePixelRatio, const QColor &colour)
{
    QImage image = drawn(symbol(name), (QSizeF(size) * devicePixelRatio).toSize(), colour);
    image.setDevicePixelRatio(devicePixelRatio);
    return QPixmap::fromImage(image);
}

QIcon applicationIcon()
{
    useBuiltInIcons();
    return QIcon(u":/icons/tessaly.svg"_s);
}

} // namespace tessaly
