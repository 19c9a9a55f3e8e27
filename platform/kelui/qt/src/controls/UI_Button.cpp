#include <kelui/controls/UI_Button.h>

#include <algorithm>
#include <cmath>

#include <kelui/ui/UI_NodeManager.h>

#include "controls/ButtonLook.h"
#include "controls/ButtonWidget.h"

namespace kelui::controls {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

namespace {

constexpr float kHorizontalPadding = 12.0f;
constexpr float kMinimumPadding = 4.0f;
constexpr float kImageTextGap = 6.0f;
constexpr float kMinimumHeight = 24.0f;
constexpr float kVerticalPadding = 4.0f;

}  // namespace

UI_Button::UI_Button()
    : UI_TextControlBase(new detail::ButtonWidget(detail::ButtonWidget::Callbacks{
          // The node owns the widget and detaches these before it goes (see ~UI_Button).
          [this](QWidget& widget) { PaintWidget(widget); },
          [this](const QPointF& position) {
              const PointT<float> origin = GetOriginInWidget();
              return IsOnClickablePart({static_cast<float>(position.x()) - origin.x,
                                        static_cast<float>(position.y()) - origin.y});
          }})) {
    // The widget is the sender and dies with this node, so `this` outlives every emission.
    QObject::connect(GetButtonWidget(), &QAbstractButton::clicked, GetButtonWidget(), [this] {
        boost::intrusive_ptr<ui::UI_Node> keep(this);
        NotifyChanged();
        detail::ReleaseAfterCurrentEvent(std::move(keep));
    });
}

UI_Button::~UI_Button() {
    if (detail::ButtonWidget* widget = GetButtonWidget()) {
        widget->DetachCallbacks();
        QObject::disconnect(widget, &QAbstractButton::clicked, widget, nullptr);
    }
}

detail::ButtonWidget* UI_Button::GetButtonWidget() const {
    return qobject_cast<detail::ButtonWidget*>(GetWidget());
}

void UI_Button::Click() {
    if (detail::ButtonWidget* widget = GetButtonWidget()) {
        widget->click();
    }
}

void UI_Button::SetButtonChromeType(std::uint32_t type) {
    const bool known =
        type == kChromeStandard || type == kChromeQuiet || type == kChromeBorderlessIcon;
    chromeType = known ? type : kChromeStandard;
    UI_Invalidate();
}

void UI_Button::SetCustomThemeColor(std::uint32_t id, limner::ColorRGBA color) {
    customColors[id] = color;
    UI_Invalidate();
}

std::optional<limner::ColorRGBA> UI_Button::GetCustomThemeColor(std::uint32_t id) const {
    const auto found = customColors.find(id);
    if (found == customColors.end()) {
        return std::nullopt;
    }
    return found->second;
}

void UI_Button::SetDisplayBorderNever(bool never) {
    displayBorderNever = never;
    UI_Invalidate();
}

void UI_Button::SetDisplayBorderAlways(bool always) {
    displayBorderAlways = always;
    UI_Invalidate();
}

void UI_Button::SetDisplayContainerAlways(bool always) {
    displayContainerAlways = always;
    UI_Invalidate();
}

void UI_Button::SetSpringLoaded(bool value) {
    springLoaded = value;
}

void UI_Button::SetCommitAppearance(bool commit) {
    commitAppearance = commit;
    UI_Invalidate();
}

void UI_Button::SetText(kelcore::string::string_view newText, bool invalidate) {
    UI_TextControlBase::SetText(newText, invalidate);
    // The Qt button's text follows at once, even when the redraw waits for the owner.
    if (detail::ButtonWidget* widget = GetButtonWidget()) {
        widget->setText(detail::ToPlainButtonText(GetText()));
    }
}

void UI_Button::TextFaceChanged() {
    UI_TextControlBase::TextFaceChanged();
    if (detail::ButtonWidget* widget = GetButtonWidget()) {
        widget->setText(detail::ToPlainButtonText(GetText()));
    }
}

void UI_Button::SetPointingCursor(bool pointing) {
    if (detail::ButtonWidget* widget = GetButtonWidget()) {
        widget->SetPointingCursor(pointing);
    }
}

void UI_Button::SetButtonImageSupply(ui::ImageSupplyFunction supply) {
    imageSupply = std::move(supply);
    image.reset();
    imageRequested = false;
    UI_Invalidate();
}

boost::intrusive_ptr<limner::ImageInterface> UI_Button::GetButtonImage() {
    if (!imageRequested) {
        imageRequested = true;
        image = ui::RequestPicture(imageSupply);
    }
    return image;
}

PointT<float> UI_Button::UI_GetRecommendedSize(limner::Limner& measuring) {
    const auto font = measuring.GetFont(GetFontDescription());
    const float lineHeight = font->GetLineHeight();
    float width = 2.0f * kHorizontalPadding;
    float height = std::max(kMinimumHeight, std::ceil(lineHeight) + 2.0f * kVerticalPadding);
    const bool drawsText = DrawsText() && !GetText().empty();
    if (drawsText) {
        width += std::ceil(font->MeasureText(GetText()).x);
    }
    if (const auto picture = GetButtonImage()) {
        width += std::ceil(picture->GetWidth()) + (drawsText ? kImageTextGap : 0.0f);
        height = std::max(height, std::ceil(picture->GetHeight()) + 2.0f * kVerticalPadding);
    }
    return {width, height};
}

UI_Button::DrawState UI_Button::GetDrawState() const {
    DrawState state;
    const auto supplier = UI_GetDrawSupplierOrDefault();
    state.theme = supplier->GetTheme();
    if (const detail::ButtonWidget* widget = GetButtonWidget()) {
        state.enabled = widget->isEnabled();
        state.pressed = state.enabled && widget->isDown();
        state.hovered = state.enabled && widget->IsHovered();
        state.focused = state.enabled && widget->HasVisibleFocus();
    }
    return state;
}

limner::ColorRGBA UI_Button::GetContentColor(const DrawState& state) const {
    std::optional<limner::ColorRGBA> color = GetCustomThemeColor(kTextColorID);
    if (!color) {
        color = GetTextColor();
    }
    if (!color && commitAppearance && !GetCustomThemeColor(kBackgroundColorID)) {
        color = detail::GetTextOnAccent(state.theme);
    }
    if (!color) {
        return state.enabled ? state.theme.text : state.theme.disabledText;
    }
    return state.enabled ? *color : detail::Faded(*color, detail::kDisabledTextOpacity);
}

void UI_Button::UI_Draw(limner::Limner& limner) {
    const DrawState state = GetDrawState();
    DrawChrome(limner, state);
    DrawContent(limner, state, GetContentColor(state));
}

void UI_Button::DrawChrome(limner::Limner& limner, const DrawState& state) {
    detail::ButtonLook look;
    look.chromeType = chromeType;
    look.background = GetCustomThemeColor(kBackgroundColorID);
    look.activeBackground = GetCustomThemeColor(kActiveBackgroundColorID);
    look.commitAppearance = commitAppearance;
    look.borderNever = displayBorderNever;
    look.borderAlways = displayBorderAlways;
    look.containerAlways = displayContainerAlways;
    const RectT<float> local = UI_GetLocalRectF();
    detail::DrawButtonChrome(limner, {0.0f, 0.0f, local.width, local.height}, look, state.theme,
                             {state.enabled, state.hovered, state.pressed, state.focused},
                             GetContentColor(state));
}

void UI_Button::DrawContent(limner::Limner& limner, const DrawState& state,
                            const limner::ColorRGBA& textColor) {
    const RectT<float> local = UI_GetLocalRectF();
    const auto picture = GetButtonImage();
    const bool drawsText = DrawsText() && !GetText().empty();
    const float imageWidth = picture ? picture->GetWidth() : 0.0f;
    const float imageHeight = picture ? picture->GetHeight() : 0.0f;
    const float gap = picture && drawsText ? kImageTextGap : 0.0f;
    // The picture and the text stand together, centred; a narrow button shortens the text and
    // lets the padding shrink first.
    const float room = std::max(local.width - 2.0f * kMinimumPadding, 0.0f);
    float textWidth = 0.0f;
    if (drawsText) {
        const float wanted = limner.MeasureText(GetText(), GetFontDescription()).x;
        textWidth = std::clamp(room - imageWidth - gap, 0.0f, std::ceil(wanted));
    }
    const float groupWidth = imageWidth + gap + textWidth;
    const float left = std::max(std::round((local.width - groupWidth) / 2.0f), 0.0f);
    if (picture) {
        // Scaled down only when it does not fit; whole pixels keep artwork crisp.
        const float scale = std::min({1.0f, local.width / std::max(imageWidth, 1.0f),
                                      local.height / std::max(imageHeight, 1.0f)});
        const float width = imageWidth * scale;
        const float height = imageHeight * scale;
        const float x = drawsText ? left : std::round((local.width - width) / 2.0f);
        limner.DrawImage(*picture, {x, std::round((local.height - height) / 2.0f), width, height},
                         state.enabled ? 1.0f : detail::kDisabledImageOpacity);
    }
    if (drawsText && textWidth > 0.0f) {
        const auto truncation = GetTextTruncation() == limner::TextTruncation::None
                                    ? limner::TextTruncation::End
                                    : GetTextTruncation();
        limner.DrawText(GetText(), {left + imageWidth + gap, 0.0f, textWidth, local.height},
                        GetFontDescription(), textColor,
                        picture ? limner::TextAlignment::Left : limner::TextAlignment::Center,
                        truncation);
    }
}

bool UI_Button::IsOnClickablePart(PointT<float> /*point*/) {
    return true;
}

}  // namespace kelui::controls
