// A static image that asks for exactly its picture's pixel size: the icons in the panel's rows
// and headers. Main thread.
#pragma once

#include <kelui/controls/UI_StaticImage.h>

namespace vantrokelui::sharedui {

class SizedStaticImage final : public kelui::controls::UI_StaticImage {
public:
    SizedStaticImage();

    /// The image's own width and height (0, 0 without an image).
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;
};

}  // namespace vantrokelui::sharedui
