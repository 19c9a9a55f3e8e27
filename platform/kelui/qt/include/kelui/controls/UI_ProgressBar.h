// How far a long task has got (an upload, a render), over QProgressBar so the platform style
// draws it. The Qt bar counts in whole percent, so screen readers get the percentage as its
// value; without a known value it shows Qt's busy look (a range of 0 to 0). The bar shows no
// text; its owner names it for screen readers with SetAccessibleName. Held by intrusive pointer
// like every node; main thread.
//
//   boost::intrusive_ptr<UI_ProgressBar> bar(new UI_ProgressBar);
//   bar->SetAccessibleName(u"Uploading");
//   bar->SetProgress(40, 100);
#pragma once

#include <cstdint>
#include <map>
#include <optional>

#include <kelui/controls/UI_ControlView.h>
#include <kelui/limner/ColorRGBA.h>

namespace kelui::controls {

class UI_ProgressBar : public UI_ControlView {
public:
    /// The custom theme colour id of the bar's track (the part not yet filled).
    static constexpr std::uint32_t kTrackColorID = 5000061;

    /// The bar's height in the toolkit's look.
    static constexpr float kBarHeight = 12.0f;

    UI_ProgressBar();

    /// The present width (a bar stretches to what its owner gives it) and kBarHeight.
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;

    /// Shows `value` out of `maximum`, `value` clamped to 0..maximum. A maximum of 0 or less
    /// shows an empty bar; SetValueUnknown is what shows the busy look.
    void SetProgress(int value, int maximum);
    /// Shows that progress is not known (the busy look); value and maximum become 0.
    void SetValueUnknown();
    bool IsValueUnknown() const { return valueUnknown; }
    int GetValue() const { return value; }
    int GetMaximum() const { return maximum; }

    /// Replaces a colour of the theme for this bar; kTrackColorID colours the track. Other ids
    /// are kept for GetCustomThemeColor but change nothing drawn.
    void SetCustomThemeColor(std::uint32_t id, limner::ColorRGBA color);
    /// The colour set for `id`, or nullopt when none was.
    std::optional<limner::ColorRGBA> GetCustomThemeColor(std::uint32_t id) const;

private:
    int value = 0;
    int maximum = 0;
    bool valueUnknown = false;
    std::map<std::uint32_t, limner::ColorRGBA> customColors;
};

}  // namespace kelui::controls
