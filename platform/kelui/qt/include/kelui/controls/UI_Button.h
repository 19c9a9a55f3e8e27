// The base of every button of the toolkit: a QAbstractButton that the toolkit paints from the
// theme (light and dark, hovered, pressed, keyboard focus, disabled), with the looks the panel
// asks for: a standard raised button, a quiet flat one, a borderless icon button, the default
// button's accent look, and colours of the owner's choosing. A click (a mouse release inside,
// Space or Enter while focused, or Click()) notifies the owner once; a disabled button does
// nothing. The text is the Qt button's text and its accessible name. Owned by its parent node
// like any node; main thread.
//
//   boost::intrusive_ptr<UI_TextButton> cancel(new UI_TextButton);
//   cancel->SetText(u"Cancel");
//   cancel->NotifyWhenChanged([weak] { if (auto self = weak.lock()) self->OnCancel(); });
#pragma once

#include <cstdint>
#include <map>
#include <optional>

#include <kelui/controls/UI_TextControlBase.h>
#include <kelui/limner/ColorRGBA.h>
#include <kelui/skins/Theme.h>
#include <kelui/ui/UI_PictureSupplyMessage.h>

namespace kelui::controls {

namespace detail {
class ButtonWidget;
}

class UI_Button : public UI_TextControlBase {
public:
    /// Chrome types: a filled, bordered button; a flat button that shows its border when the
    /// pointer is over it; a borderless button for an icon, shaded when hovered.
    static constexpr std::uint32_t kChromeStandard = 0;
    static constexpr std::uint32_t kChromeQuiet = 9;
    static constexpr std::uint32_t kChromeBorderlessIcon = 10;

    /// Custom theme colours: the background, the background while hovered or pressed, the text.
    static constexpr std::uint32_t kBackgroundColorID = 5000017;
    static constexpr std::uint32_t kActiveBackgroundColorID = 5000016;
    static constexpr std::uint32_t kTextColorID = 5000015;

    ~UI_Button() override;

    /// Clicks the button as the user would: notifies once. Does nothing while it is disabled.
    void Click();

    /// One of the chrome types above; any other value is taken as kChromeStandard.
    void SetButtonChromeType(std::uint32_t chromeType);
    std::uint32_t GetButtonChromeType() const { return chromeType; }

    /// Replaces the theme's colour `id` (one of the colour identifiers above) for this button.
    /// Other identifiers are kept, and readable, but draw nothing.
    void SetCustomThemeColor(std::uint32_t id, limner::ColorRGBA color);
    /// The colour set for `id`, or nullopt when the theme's is used.
    std::optional<limner::ColorRGBA> GetCustomThemeColor(std::uint32_t id) const;

    /// Never draws a border, whatever the chrome and state; wins over SetDisplayBorderAlways.
    void SetDisplayBorderNever(bool never);
    bool GetDisplayBorderNever() const { return displayBorderNever; }
    /// Draws the border even where the chrome draws none (a quiet button at rest).
    void SetDisplayBorderAlways(bool always);
    bool GetDisplayBorderAlways() const { return displayBorderAlways; }
    /// Draws the button's filled box even where the chrome is flat.
    void SetDisplayContainerAlways(bool always);
    bool GetDisplayContainerAlways() const { return displayContainerAlways; }
    /// Kept for the owner; the button clicks on release either way.
    void SetSpringLoaded(bool springLoaded);
    bool GetSpringLoaded() const { return springLoaded; }
    /// Draws the default button's look: the theme's accent behind light text.
    void SetCommitAppearance(bool commit);
    bool GetCommitAppearance() const { return commitAppearance; }

    void SetText(kelcore::string::string_view text, bool invalidate = true) override;

    /// Text width plus 12 pixels each side (and the picture, if any), 24 high or the line height
    /// plus 8, whichever is more.
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;
    void UI_Draw(limner::Limner& limner) override;

protected:
    UI_Button();

    /// What drawing needs to know of the button at the moment of drawing.
    struct DrawState {
        skins::Theme theme;
        bool enabled = true;
        bool hovered = false;
        bool pressed = false;
        bool focused = false;
    };

    /// Draws the box: fill, border and focus ring, per chrome, state and settings.
    virtual void DrawChrome(limner::Limner& limner, const DrawState& state);
    /// Draws what the box holds: the picture (if any) and the text, centred. `textColor` is what
    /// the text is drawn in.
    virtual void DrawContent(limner::Limner& limner, const DrawState& state,
                             const limner::ColorRGBA& textColor);
    /// Whether `point` (node coordinates) is on the clickable part. The base: all of the button.
    virtual bool IsOnClickablePart(kelcore::geom::PointT<float> point);

    /// The colour the text is drawn in: the custom text colour, the control's text colour, or
    /// the theme's (light on the accent for a commit button; the disabled colour when disabled).
    virtual limner::ColorRGBA GetContentColor(const DrawState& state) const;
    /// The state of the button now, with the theme of its drawing supplier.
    DrawState GetDrawState() const;

    /// Gives the button a picture from `supply`, asked for when first needed; null: none.
    void SetButtonImageSupply(ui::ImageSupplyFunction supply);
    const ui::ImageSupplyFunction& GetButtonImageSupply() const { return imageSupply; }
    /// The picture, asked of the supply function the first time; null when there is none.
    boost::intrusive_ptr<limner::ImageInterface> GetButtonImage();
    /// Whether the text is drawn at all; a picture-only button keeps it for screen readers.
    virtual bool DrawsText() const { return true; }

    void TextFaceChanged() override;

    /// Turns the button's pointing-hand cursor on (links) or off.
    void SetPointingCursor(bool pointing);

private:
    detail::ButtonWidget* GetButtonWidget() const;

    std::uint32_t chromeType = kChromeStandard;
    std::map<std::uint32_t, limner::ColorRGBA> customColors;
    bool displayBorderNever = false;
    bool displayBorderAlways = false;
    bool displayContainerAlways = false;
    bool springLoaded = false;
    bool commitAppearance = false;
    ui::ImageSupplyFunction imageSupply;
    boost::intrusive_ptr<limner::ImageInterface> image;
    bool imageRequested = false;
};

}  // namespace kelui::controls
