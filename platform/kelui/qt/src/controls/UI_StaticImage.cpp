#include <kelui/controls/UI_StaticImage.h>

#include <cmath>

namespace kelui::controls {

void UI_StaticImage::SetImageSupplyFunction(ui::ImageSupplyFunction function) {
    supply = std::move(function);
    supplyPending = true;
    UI_Invalidate();
}

void UI_StaticImage::SetImage(boost::intrusive_ptr<limner::ImageInterface> newImage) {
    image = std::move(newImage);
    supplyPending = false;
    UI_Invalidate();
}

void UI_StaticImage::AskSupplyFunctionIfNeeded() const {
    if (!supplyPending) {
        return;
    }
    // Cleared first: a supply function that measures this control must not ask itself again.
    supplyPending = false;
    image = ui::RequestPicture(supply);
}

boost::intrusive_ptr<limner::ImageInterface> UI_StaticImage::GetImage() const {
    AskSupplyFunctionIfNeeded();
    return image;
}

kelcore::geom::RectT<int> UI_StaticImage::GetImageRect() const {
    AskSupplyFunctionIfNeeded();
    if (!image) {
        return {};
    }
    return {0, 0, static_cast<int>(std::lround(image->GetWidth())),
            static_cast<int>(std::lround(image->GetHeight()))};
}

kelcore::geom::PointT<float> UI_StaticImage::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    AskSupplyFunctionIfNeeded();
    if (!image) {
        return {};
    }
    return {image->GetWidth(), image->GetHeight()};
}

void UI_StaticImage::UI_Draw(limner::Limner& limner) {
    AskSupplyFunctionIfNeeded();
    const kelcore::geom::RectT<float> rect = UI_GetLocalRectF();
    if (!image || rect.IsEmpty()) {
        return;
    }
    limner.DrawImage(*image, {0.0f, 0.0f, rect.width, rect.height});
}

}  // namespace kelui::controls
