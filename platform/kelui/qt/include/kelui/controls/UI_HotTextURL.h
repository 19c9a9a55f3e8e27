// A link to a web address (terms of service, a review link): its text in the theme's link
// colour, underlined while the pointer is over it. A click, or Enter or Space while it has the
// keyboard, opens the address in the desktop's browser through
// kelcore::utility::OpenFileInDefaultApplication and then notifies the owner. Screen readers
// hear a link named by its text. Owned by its parent node; main thread.
//
//   boost::intrusive_ptr<UI_HotTextURL> terms(new UI_HotTextURL);
//   terms->SetURL("https://example.com/terms");
//   terms->SetText(u"Terms of Service");
#pragma once

#include <string>

#include <kelui/controls/UI_TextControlBase.h>

namespace kelui::controls {

namespace detail {
class ButtonWidget;
}

class UI_HotTextURL : public UI_TextControlBase {
public:
    UI_HotTextURL();
    ~UI_HotTextURL() override;

    /// The address to open, UTF-8. An empty address opens nothing (the owner is still told).
    void SetURL(std::string url);
    const std::string& GetURL() const { return url; }

    /// Follows the link as a click does. Does nothing while the link is disabled.
    void Click();

    void SetText(kelcore::string::string_view text, bool invalidate = true) override;
    /// The text as drawn at the present width: shortened with an ellipsis, per the truncation,
    /// when it does not fit.
    kelcore::string::string GetDisplayedText() const;

    /// The text on one line, rounded up to whole pixels, and 2 pixels on each side for the focus
    /// ring: placed 2 pixels left of a column, its text lines up with the column's.
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;
    void UI_Draw(limner::Limner& limner) override;

protected:
    void TextFaceChanged() override;

private:
    detail::ButtonWidget* GetLinkWidget() const;
    void Follow();

    std::string url;
};

}  // namespace kelui::controls
