#include "ui/image_drop_view.h"

#include "platform/notification_center.h"
#include "platform/paths.h"
#include "ui/dropped_file.h"
#include "ui/layer.h"

#include <QAccessibleWidget>
#include <QDropEvent>
#include <QPainter>

#include <sys/stat.h>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

bool isExistingFile(const QByteArray &name)
{
    struct stat item
    {};
    return ::stat(name.constData(), &item) == 0 && !S_ISDIR(item.st_mode);
}

QRect fittedInto(const QSize &area, const QSize &image)
{
    const QSize size = image.scaled(area, Qt::KeepAspectRatio).expandedTo({1, 1});
    return {QPoint((area.width() - size.width()) / 2, (area.height() - size.height()) / 2), size};
}

// Set, not just accepted as proposed: a source that is told "move" may delete its file. Qt puts the proposed
// action in the place of a copy that is not offered, so without one there is no answer but a refusal.
void answerCopy(QDropEvent *event, bool accepted)
{
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(accepted);
}

bool offersCopy(const QDropEvent *event)
{
    return event->possibleActions().testFlag(Qt::CopyAction);
}

QAccessibleInterface *makeImageInterface(const QString & /*className*/, QObject *object)
{
    auto *view = qobject_cast<ImageDropView *>(object);
    return view ? new QAccessibleWidget(view, QAccessible::Graphic) : nullptr;
}

} // namespace

ImageDropView::ImageDropView(QWidget *parent) : QWidget(parent)
{
    QAccessible::installFactory(makeImageInterface); // taken once
    ViewLayer::wantedFor(this);
    setAcceptDrops(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

ImageDropView::ImageDropView(const QRect &)
{
    qFatal("Use of unimplemented initializer 'init(frame:)' for class 'ImageDropView'");
}

void ImageDropView::setImage(const QImage &image)
{
    m_image = image;
    m_scaledImage = {};
    m_dimmed = false;
    update();
}

void ImageDropView::setDimmed(bool dimmed)
{
    m_dimmed = dimmed;
    update();
}

void ImageDropView::setDropGuard(std::function<bool()> guard)
{
    m_dropGuard = std::move(guard);
}

QSize ImageDropView::sizeHint() const
{
    return {640, 360};
}

QSize ImageDropView::minimumSizeHint() const
{
    return {160, 90};
}

void ImageDropView::paintEvent(QPaintEvent *)
{
    if (m_image.isNull()) return;
    QPainter painter(this);
    // The scale of the device that is really painted on, which need not be the window's.
    const qreal devicePixels = painter.deviceTransform().m11();
    const QRect place = fittedInto((QSizeF(size()) * devicePixels).toSize(), m_image.size());
    if (m_scaledImage.size() != place.size()) {
        m_scaledImage =
            QPixmap::fromImage(m_image.scaled(place.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }
    m_scaledImage.setDevicePixelRatio(devicePixels);
    constexpr qreal faint = 0.3;
    if (m_dimmed) painter.setOpacity(faint);
    painter.drawPixmap(QPointF(place.topLeft()) / devicePixels, m_scaledImage);
}

void ImageDropView::dragEnterEvent(QDragEnterEvent *event)
{
    answerCopy(event, isWelcome(event) && isExistingFile(firstLocalFileName(event->mimeData())));
}

void ImageDropView::dragMoveEvent(QDragMoveEvent *event)
{
    answerCopy(event, isWelcome(event));
}

void ImageDropView::dropEvent(QDropEvent *event)
{
    answerCopy(event, isWelcome(event) && performDragOperation(event->mimeData()));
}

bool ImageDropView::isFree() const
{
    return !m_dropGuard || m_dropGuard();
}

bool ImageDropView::isWelcome(const QDropEvent *event) const
{
    return offersCopy(event) && isFree();
}

bool ImageDropView::takeFile(const QMimeData *copied)
{
    return isFree() && isExistingFile(firstLocalFileName(copied)) && performDragOperation(copied);
}

bool ImageDropView::performDragOperation(const QMimeData *drag)
{
    const QByteArray name = firstLocalFileName(drag);
    if (name.isEmpty()) return false;
    const std::optional<QString> path = pathFromBytes(name);
    if (!path) {
        Q_EMIT unreadableNameDropped();
        return false;
    }
    m_filePath = path;
    m_fileCount = localFileCount(drag);
    NotificationCenter::defaultCenter().postNotification(u"FileAddedByDragAnadDrop"_s, nullptr,
                                                         {{u"key"_s, fileURL(*path)}});
    return true;
}

} // namespace tessaly
