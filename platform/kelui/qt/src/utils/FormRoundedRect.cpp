#include <kelui/utils/FormRoundedRect.h>

#include <algorithm>

namespace kelui::utils {

void FormRoundedRect(limner::Path& path, const kelcore::geom::RectT<float>& rect, float radius) {
    if (rect.IsEmpty()) {
        return;
    }
    // Corners wider than half a side would overlap and turn the outline inside out.
    const float corner = std::min({radius, rect.width / 2.0f, rect.height / 2.0f});
    if (corner > 0.0f) {
        path.AddRoundedRect(rect, corner);
    } else {
        path.AddRect(rect);
    }
}

}  // namespace kelui::utils
