// The layer of a view: what is painted under, around and over the view itself.
#pragma once

#include <QColor>
#include <QEvent>
#include <QObject>
#include <QPointer>
#include <QSizeF>

#include <optional>

class QWidget;

namespace tessaly {

class LayerEffect;

// Lengths are points (Qt's device-independent pixels). Values are kept as they were given; what cannot be
// painted (negative widths, opacities outside 0…1, not-a-number) is brought into range when it is painted.
struct Layer
{
    std::optional<QColor> backgroundColor = std::nullopt; // fills the bounds, rounded by cornerRadius
    std::optional<QColor> borderColor = QColor(Qt::black);
    double borderWidth = 0.0;   // inside the bounds, above the view's contents
    double cornerRadius = 0.0;  // painted as a pill when it exceeds half of the short side
    bool masksToBounds = false; // clips the contents to the rounded bounds, and takes the shadow away
    std::optional<QColor> shadowColor = QColor(Qt::black);
    QSizeF shadowOffset{0.0, -3.0}; // y points up: a negative height moves the shadow down
    float shadowOpacity = 0.0F;     // 0…1, multiplies the colour's alpha
    double shadowRadius = 3.0;      // standard deviation of the blur

    bool operator==(const Layer &) const = default;
};

// Ties a layer to its view, which owns it. A view has none until one is wanted. Main thread only.
//
// The layer is painted by the view's graphics effect, set while the values show something: the view then can
// have no other graphics effect. Qt clips a child to its parent, so a shadow never leaves the parent's
// rectangle.
class ViewLayer : public QObject
{
    Q_OBJECT

public:
    // The view's layer; nullptr when it has none.
    static ViewLayer *of(const QWidget *view);

    // The view's layer, made with its initial values when there was none.
    static ViewLayer *wantedFor(QWidget *view);

    // Sent to the view, as a plain QEvent, after values were set.
    static QEvent::Type changeEvent();

    const Layer &values() const { return m_values; }
    void setValues(const Layer &values);

private:
    explicit ViewLayer(QWidget *view);

    QWidget *m_view;
    Layer m_values;
    QPointer<LayerEffect> m_effect; // owned by the view
};

} // namespace tessaly
