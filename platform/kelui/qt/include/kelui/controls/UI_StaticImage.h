// A picture in the panel: a logo, an icon beside a name. It shows an image set directly or the
// one its supply function answers (UI_PictureSupplyMessage), scaled into its rectangle; the
// function is asked lazily, when the picture is first needed to draw or measure, and again
// after it is replaced. Held by intrusive pointer like every node; main thread.
//
//   boost::intrusive_ptr<UI_StaticImage> logo(new UI_StaticImage);
//   logo->SetImage(resources.GetImage("VantroInlineLogo_Lg"));
//   logo->UI_SetLocalRect(logo->GetImageRect());
#pragma once

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelui/controls/UI_ControlView.h>
#include <kelui/limner/ImageInterface.h>
#include <kelui/ui/UI_PictureSupplyMessage.h>

namespace kelui::controls {

class UI_StaticImage : public UI_ControlView {
public:
    UI_StaticImage() = default;

    /// Takes the picture from `function` from now on (asked when the picture is next needed);
    /// a null function, or one that sets nothing, leaves no picture.
    void SetImageSupplyFunction(ui::ImageSupplyFunction function);
    /// Shows `image` (null: nothing) until a supply function is set again.
    void SetImage(boost::intrusive_ptr<limner::ImageInterface> image);
    /// The picture shown; null when there is none. Asks a newly set supply function first.
    boost::intrusive_ptr<limner::ImageInterface> GetImage() const;
    /// {0, 0, width, height} of the picture, rounded to whole pixels; all zero without one.
    kelcore::geom::RectT<int> GetImageRect() const;

    /// The picture's natural size; (0, 0) without one.
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;
    void UI_Draw(limner::Limner& limner) override;

private:
    void AskSupplyFunctionIfNeeded() const;

    ui::ImageSupplyFunction supply;
    // Filled lazily from const getters: the supply function is asked only when the picture is
    // first needed.
    mutable boost::intrusive_ptr<limner::ImageInterface> image;
    mutable bool supplyPending = false;
};

}  // namespace kelui::controls
