// The toolkit's side of an image: what can paint itself with QPainter. Every image that a
// resource manager or the host hands to a control is one. Monochrome artwork takes the theme's
// text colour, so one file serves light and dark. Painting is main-thread only.
#pragma once

#include <kelui/limner/ImageInterface.h>
#include <kelui/skins/Theme.h>

class QPainter;
class QRectF;

namespace limner {

class PaintableImage : public ImageInterface {
public:
    /// Paints the image scaled into `target`, crisp at the painter's device pixel ratio.
    virtual void Paint(QPainter& painter, const QRectF& target,
                       const kelui::skins::Theme& theme) const = 0;
};

}  // namespace limner
