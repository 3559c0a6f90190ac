// What every view gains: styling properties that forward to its layer, frame conveniences, and tracking
// areas.
#pragma once

#include "ui/layer.h"

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QStringList>

namespace tessaly {

class TrackingArea;

// A handle on one view, to be made where it is used: ViewStyling(view).setCornerRadius(6.0). It stores
// nothing of its own. Main thread only.
//
// A getter answers for a view without a layer "none", 0 or (0, 0) and makes no layer. A setter makes the view
// layer-backed, even when the value stays the same, and passes the value on as it is.
class ViewStyling
{
public:
    explicit ViewStyling(QWidget *view) : m_view(view) {}

    bool wantsLayer() const { return ViewLayer::of(m_view) != nullptr; }

    // No colour, or an invalid one, clears the layer's colour.
    std::optional<QColor> backgroundColor() const;
    void setBackgroundColor(const std::optional<QColor> &color);
    std::optional<QColor> borderColor() const;
    void setBorderColor(const std::optional<QColor> &color);
    double borderWidth() const; // points
    void setBorderWidth(double width);
    double cornerRadius() const; // points
    // Turns the layer's masksToBounds on for good, which takes the shadow away. Keeps the size of the value,
    // whatever its sign, cut to hundredths; a value that has none in 64 bits leaves the radius as it was.
    void setCornerRadius(double radius);
    std::optional<QColor> shadowColor() const;
    void setShadowColor(const std::optional<QColor> &color);
    QSizeF shadowOffset() const; // points; a negative height is downwards
    void setShadowOffset(const QSizeF &offset);
    float shadowOpacity() const; // 0…1
    void setShadowOpacity(float opacity);
    double shadowRadius() const; // points, the standard deviation of the blur
    void setShadowRadius(double radius);

    // The view's frame: Qt's geometry, with y pointing down. Setting two components writes the frame twice,
    // the first component first.
    QPoint origin() const;
    void setOrigin(const QPoint &origin);
    QSize size() const;
    void setSize(const QSize &size);
    int width() const;
    void setWidth(int width);
    int height() const;
    void setHeight(int height);

    // Tells `owner` what the mouse does inside the rectangle; see TrackingArea. The view owns the area.
    TrackingArea *addTrackingArea(const QRect &rectangle, QObject *owner);

private:
    template<class Change>
    void change(Change change);

    QWidget *m_view;
};

// The eight names under which a form sets the styling properties on any view, as dynamic properties.
const QStringList &stylingPropertyNames();

// Applies the styling properties that `root` and the views inside it carry, and follows later changes from
// either side: setting a property styles the view, styling the view by code updates its properties. A colour
// is a colour or its name, a length a number, an offset a size or the text "width,height"; an empty colour
// clears. A value that cannot be read is left out with a warning that names the view.
void applyFormStyling(QWidget *root);

} // namespace tessaly
