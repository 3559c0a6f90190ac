// The image view of the window that takes one file dragged onto it.
#pragma once

#include <QImage>
#include <QPixmap>
#include <QWidget>

#include <functional>
#include <optional>

class QDropEvent;
class QMimeData;

namespace tessaly {

// Shows an image as large as it fits, enlarged when it is small, with its shape kept, in the middle, one
// image pixel for one pixel of the screen where the sizes allow it. It has a layer from the start. To
// assistive technology it is an image.
//
// A drag is welcome when it may be copied and its first local file exists and is not a folder. The source is
// told that the file was copied: never that it was moved. An accepted drop posts
// "FileAddedByDragAnadDrop" to the default notification centre, without a sender, with the one entry "key":
// the file's URL (QUrl). The observers are called before the drop event returns. There is no drop highlight.
class ImageDropView : public QWidget
{
    Q_OBJECT

public:
    explicit ImageDropView(QWidget *parent = nullptr);

    // initWithFrame: not supported, a fatal error.
    explicit ImageDropView(const QRect &frame);

    // A null image empties the view.
    void setImage(const QImage &image);
    const QImage &image() const { return m_image; }

    // Paints the image faintly, as one that stands for nothing any more, until the next is set.
    void setDimmed(bool dimmed);

    // The file of the last accepted drop.
    const std::optional<QString> &filePath() const { return m_filePath; }

    // How many files of this machine the last accepted drop held; only the first one counts.
    int fileCount() const { return m_fileCount; }

    // Takes the first file as a drop does; false, and nothing happens, where a drag would be refused.
    bool takeFile(const QMimeData *copied);

    // Asked at every step of a drag; when it answers false, the drag is refused at that step. Without a guard
    // no drag is refused for that reason.
    void setDropGuard(std::function<bool()> guard);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    // A file was dropped whose name is not UTF-8, so that it cannot be opened: instead of the notification.
    void unreadableNameDropped();

protected:
    void paintEvent(QPaintEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    bool isFree() const;
    bool isWelcome(const QDropEvent *event) const;
    bool performDragOperation(const QMimeData *drag);

    QImage m_image;
    QPixmap m_scaledImage; // what was painted last; null when the image is new
    bool m_dimmed = false;
    std::optional<QString> m_filePath;
    int m_fileCount = 0;
    std::function<bool()> m_dropGuard;
};

} // namespace tessaly
