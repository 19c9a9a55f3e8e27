#include <kelui/ui/UI_PictureSupplyMessage.h>

#include <kelui/limner/PaintableImage.h>
#include <kelui/utility/ResourceManager.h>

namespace kelui::ui {

namespace {

// An icon asked for without theming: monochrome artwork keeps the black it is drawn in,
// whatever the theme and the control's state.
class UnthemedImage final : public limner::PaintableImage {
public:
    explicit UnthemedImage(boost::intrusive_ptr<limner::PaintableImage> artwork)
        : artwork(std::move(artwork)) {
        asDrawn.text = {0.0f, 0.0f, 0.0f, 1.0f};
        asDrawn.disabledText = asDrawn.text;
    }

    float GetWidth() const override { return artwork->GetWidth(); }
    float GetHeight() const override { return artwork->GetHeight(); }
    void Paint(QPainter& painter, const QRectF& target,
               const kelui::skins::Theme& /*theme*/) const override {
        artwork->Paint(painter, target, asDrawn);
    }

private:
    boost::intrusive_ptr<limner::PaintableImage> artwork;
    kelui::skins::Theme asDrawn;
};

}  // namespace

void UI_PictureSupplyMessage::SetIcon(const std::string& name, utility::ResourceManager* manager,
                                      bool themed, void* /*reserved*/) {
    if (!manager) {
        return;
    }
    boost::intrusive_ptr<limner::ImageInterface> found = manager->GetImage(name);
    if (!found) {
        return;
    }
    if (!themed) {
        if (auto* paintable = dynamic_cast<limner::PaintableImage*>(found.get())) {
            found = new UnthemedImage(boost::intrusive_ptr<limner::PaintableImage>(paintable));
        }
    }
    image = std::move(found);
    iconName = name;
}

void UI_PictureSupplyMessage::SetImage(boost::intrusive_ptr<limner::ImageInterface> newImage) {
    image = std::move(newImage);
    iconName.clear();
}

boost::intrusive_ptr<limner::ImageInterface> RequestPicture(const ImageSupplyFunction& supply) {
    if (!supply || !*supply) {
        return nullptr;
    }
    UI_PictureSupplyMessage message;
    (*supply)(&message);
    return message.GetImage();
}

}  // namespace kelui::ui
