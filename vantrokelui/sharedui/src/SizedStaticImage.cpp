#include <vantrokelui/sharedui/SizedStaticImage.h>

namespace vantrokelui::sharedui {

SizedStaticImage::SizedStaticImage() {
    UI_SetNodeID("FixedSizeStaticImage");
}

kelcore::geom::PointT<float> SizedStaticImage::UI_GetRecommendedSize(
    limner::Limner& /*measuring*/) {
    const auto rect = GetImageRect();
    return {static_cast<float>(rect.width), static_cast<float>(rect.height)};
}

}  // namespace vantrokelui::sharedui
