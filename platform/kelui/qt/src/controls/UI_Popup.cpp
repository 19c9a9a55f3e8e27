#include <kelui/controls/UI_Popup.h>

#include <algorithm>
#include <cmath>

#include <QAccessible>
#include <QAction>
#include <QMenu>

#include <kelui/skins/Theme.h>
#include <kelui/ui/QtConversions.h>
#include <kelui/ui/UI_NodeManager.h>

#include "controls/ImageIconEngine.h"
#include "controls/PopupButtonWidget.h"

namespace kelui::controls {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

namespace {

constexpr float kButtonHeight = 24.0f;
constexpr float kPadding = 8.0f;
constexpr float kBorderlessPadding = 4.0f;
constexpr float kIconSize = 16.0f;
constexpr float kIconGap = 6.0f;
constexpr float kChevronWidth = 8.0f;
constexpr float kChevronGap = 6.0f;
constexpr float kCornerRadius = 3.0f;

// A menu's text marks its shortcut with '&' and its accelerator after a tab; a label means
// neither.
QString ToMenuText(kelcore::string::string_view label) {
    QString text = ui::ToQString(label);
    text.replace(QLatin1Char('&'), QLatin1String("&&"));
    text.replace(QLatin1Char('\t'), QLatin1Char(' '));
    return text;
}

}  // namespace

UI_Popup::UI_Popup() : UI_ControlView(new detail::PopupButtonWidget(*this)) {
    button = static_cast<detail::PopupButtonWidget*>(GetWidget());
    menu = button->GetMenu();
}

UI_Popup::~UI_Popup() {
    if (button) {
        button->DetachNode();
    }
}

int UI_Popup::AddItem(kelcore::string::string_view label, int position) {
    return InsertItem(label, position, false);
}

int UI_Popup::AddItemWithCustomIcon(kelcore::string::string_view label, int position) {
    return InsertItem(label, position, true);
}

int UI_Popup::InsertItem(kelcore::string::string_view label, int position, bool customIcon) {
    const int count = GetItemCount();
    const int index = position < 0 || position > count ? count : position;
    auto* action = new QAction(ToMenuText(label), menu);
    menu->insertAction(index < count ? items[static_cast<std::size_t>(index)].action : nullptr,
                       action);
    items.insert(items.begin() + index, Item{kelcore::string::string(label), customIcon, action});
    if (value >= index) {
        ++value;  // the same item stays chosen
    }
    if (customIcon) {
        action->setIcon(
            detail::ImageIconEngine::MakeIcon(GetSuppliedPicture(), UI_GetDrawSupplier()));
    }
    RefreshChosenItem();
    return index;
}

void UI_Popup::DisableItem(int index, bool disabled) {
    if (index >= 0 && index < GetItemCount()) {
        items[static_cast<std::size_t>(index)].action->setEnabled(!disabled);
    }
}

bool UI_Popup::IsItemEnabled(int index) const {
    return index >= 0 && index < GetItemCount() &&
           items[static_cast<std::size_t>(index)].action->isEnabled();
}

void UI_Popup::EnableAllItems() {
    for (const Item& item : items) {
        item.action->setEnabled(true);
    }
}

void UI_Popup::DeleteAllItems() {
    for (const Item& item : items) {
        menu->removeAction(item.action);
        delete item.action;
    }
    items.clear();
    value = -1;
    RefreshChosenItem();
}

int UI_Popup::GetItemCount() const {
    return static_cast<int>(items.size());
}

kelcore::string::string UI_Popup::GetItemText(int index) const {
    if (index < 0 || index >= GetItemCount()) {
        return {};
    }
    return items[static_cast<std::size_t>(index)].label;
}

void UI_Popup::SetValue(int index) {
    value = index >= 0 && index < GetItemCount() ? index : -1;
    RefreshChosenItem();
}

void UI_Popup::SetImageSupplyFunction(ui::ImageSupplyFunction supply) {
    imageSupply = std::move(supply);
    suppliedPicture = nullptr;
    pictureRequested = false;
    RefreshItemIcons();
    UI_Invalidate();
}

boost::intrusive_ptr<limner::ImageInterface> UI_Popup::GetSuppliedPicture() {
    if (!pictureRequested) {
        pictureRequested = true;
        suppliedPicture = ui::RequestPicture(imageSupply);
    }
    return suppliedPicture;
}

void UI_Popup::SetPickerMeasureStrategy(std::uint32_t strategy) {
    measureStrategy = strategy;
}

void UI_Popup::SetButtonChromeType(std::uint32_t chrome) {
    chromeType = chrome;
    UI_Invalidate();
}

void UI_Popup::SetPreShowMenuCallback(MenuCallback callback) {
    preShow = std::move(callback);
}

void UI_Popup::SetPostShowMenuCallback(MenuCallback callback) {
    postShow = std::move(callback);
}

void UI_Popup::ShowMenu() {
    if (menuShowing || items.empty() || !button || !button->isEnabled()) {
        return;
    }
    // The callbacks may drop the owner's last reference to this popup.
    const boost::intrusive_ptr<UI_Popup> keep(this);
    if (const auto callback = preShow) {
        callback(*this);
    }
    pictureRequested = false;  // the supply function may answer differently now (theme)
    RefreshItemIcons();
    RefreshChosenItem();
    menuShowing = true;
    button->setDown(true);
    menu->setMinimumWidth(GetMenuMinimumWidth());
    menu->popup(GetMenuPosition(menu->sizeHint().width()));
    if (value >= 0) {
        menu->setActiveAction(items[static_cast<std::size_t>(value)].action);
    }
    UI_Invalidate();
}

void UI_Popup::HideMenu() {
    if (menuShowing) {
        menu->hide();
    }
}

bool UI_Popup::IsMenuShowing() const {
    return menuShowing;
}

QMenu* UI_Popup::GetMenu() const {
    return menu;
}

void UI_Popup::OnMenuHidden() {
    if (!menuShowing) {
        return;
    }
    menuShowing = false;
    const boost::intrusive_ptr<UI_Popup> keep(this);
    button->setDown(false);
    UI_Invalidate();
    if (const auto callback = postShow) {
        callback(*this);
    }
}

void UI_Popup::OnActionTriggered(QAction* action) {
    const auto found = std::find_if(items.begin(), items.end(),
                                    [action](const Item& item) { return item.action == action; });
    if (found == items.end()) {
        return;
    }
    value = static_cast<int>(found - items.begin());
    RefreshChosenItem();
    NotifyChanged();
}

void UI_Popup::RefreshChosenItem() {
    UI_Invalidate();
    if (button && QAccessible::isActive()) {
        QAccessibleEvent event(button, QAccessible::NameChanged);
        QAccessible::updateAccessibility(&event);
    }
}

void UI_Popup::RefreshItemIcons() {
    const bool anyCustomIcon =
        std::any_of(items.begin(), items.end(), [](const Item& item) { return item.customIcon; });
    if (!anyCustomIcon) {
        return;
    }
    const QIcon icon =
        detail::ImageIconEngine::MakeIcon(GetSuppliedPicture(), UI_GetDrawSupplier());
    for (const Item& item : items) {
        if (item.customIcon) {
            item.action->setIcon(icon);
        }
    }
}

QPoint UI_Popup::GetMenuPosition(int /*menuWidth*/) const {
    return button->mapToGlobal(QPoint(0, button->height()));
}

int UI_Popup::GetMenuMinimumWidth() const {
    return button->width();
}

skins::Theme UI_Popup::GetTheme() const {
    const auto supplier = UI_GetDrawSupplierOrDefault();
    return supplier->GetTheme();
}

bool UI_Popup::IsHovered() const {
    return button && button->underMouse();
}

bool UI_Popup::IsPressed() const {
    return menuShowing || (button && button->isDown());
}

bool UI_Popup::HasVisibleFocus() const {
    return button && button->HasVisibleFocus();
}

kelcore::string::string UI_Popup::GetFallbackAccessibleName() const {
    return GetItemText(value);
}

float UI_Popup::MeasureItemWidth(limner::Limner& measuring, const Item* item) const {
    const float padding = chromeType == kChromeBorderless ? kBorderlessPadding : kPadding;
    float width = padding + kChevronGap + kChevronWidth + padding;
    if (item) {
        width += std::ceil(measuring.MeasureText(item->label, limner::FontDescription{}).x);
        if (item->customIcon) {
            width += kIconSize + kIconGap;
        }
    }
    return width;
}

PointT<float> UI_Popup::UI_GetRecommendedSize(limner::Limner& measuring) {
    float widest = MeasureItemWidth(measuring, nullptr);
    for (const Item& item : items) {
        widest = std::max(widest, MeasureItemWidth(measuring, &item));
    }
    float width = widest;
    if (measureStrategy == kMeasureChosenItem) {
        width = MeasureItemWidth(measuring,
                                 value >= 0 ? &items[static_cast<std::size_t>(value)] : nullptr);
    } else if (measureStrategy == kMeasureGivenWidth && UI_GetLocalRectF().width > 0.0f) {
        width = UI_GetLocalRectF().width;
    }
    return {width, kButtonHeight};
}

namespace {

// `image` scaled to fit `box`, keeping its proportions, centred in it.
RectT<float> FitImage(const limner::ImageInterface& image, const RectT<float>& box) {
    if (image.GetWidth() <= 0.0f || image.GetHeight() <= 0.0f) {
        return box;
    }
    const float scale = std::min(box.width / image.GetWidth(), box.height / image.GetHeight());
    const float width = image.GetWidth() * scale;
    const float height = image.GetHeight() * scale;
    return {box.x + (box.width - width) / 2.0f, box.y + (box.height - height) / 2.0f, width,
            height};
}

}  // namespace

void UI_Popup::DrawChrome(limner::Limner& limner, const skins::Theme& theme,
                          bool borderless) const {
    const RectT<float> bounds = UI_GetLocalRectF();
    const float width = bounds.width;
    const float height = bounds.height;
    const bool enabled = button && button->isEnabled();
    const bool pressed = enabled && IsPressed();
    const bool hovered = enabled && IsHovered();
    if (!borderless) {
        limner::Path box;
        box.AddRoundedRect({0.5f, 0.5f, width - 1.0f, height - 1.0f}, kCornerRadius);
        const int fill = pressed ? 3 : hovered ? 2 : 0;
        limner.FillPath(box, skins::GetPaletteGrayColor(theme, fill));
        const int border = !enabled ? 3 : hovered || pressed ? 5 : 4;
        limner.StrokePath(box, limner::Pen{1.0f, skins::GetPaletteGrayColor(theme, border)});
    } else if (pressed || hovered) {
        limner::Path box;
        box.AddRoundedRect({0.0f, 0.0f, width, height}, kCornerRadius);
        limner.FillPath(box, skins::GetPaletteGrayColor(theme, pressed ? 4 : 3));
    }
    if (HasVisibleFocus()) {
        limner::Path ring;
        ring.AddRoundedRect({1.0f, 1.0f, width - 2.0f, height - 2.0f}, kCornerRadius - 0.5f);
        limner.StrokePath(ring, limner::Pen{2.0f, theme.accent});
    }
}

void UI_Popup::UI_Draw(limner::Limner& limner) {
    const skins::Theme theme = GetTheme();
    DrawChrome(limner, theme, chromeType == kChromeBorderless);
    const RectT<float> bounds = UI_GetLocalRectF();
    const bool enabled = button && button->isEnabled();
    const float padding = chromeType == kChromeBorderless ? kBorderlessPadding : kPadding;
    const float chevronLeft = bounds.width - padding - kChevronWidth;
    float x = padding;
    if (value >= 0) {
        const Item& item = items[static_cast<std::size_t>(value)];
        if (item.customIcon) {
            if (const auto picture = GetSuppliedPicture()) {
                const RectT<float> box{x, (bounds.height - kIconSize) / 2.0f, kIconSize, kIconSize};
                limner.DrawImage(*picture, FitImage(*picture, box), enabled ? 1.0f : 0.4f);
            }
            x += kIconSize + kIconGap;
        }
        limner.DrawText(item.label,
                        {x, 0.0f, std::max(chevronLeft - kChevronGap - x, 0.0f), bounds.height},
                        limner::FontDescription{}, enabled ? theme.text : theme.disabledText,
                        limner::TextAlignment::Left, limner::TextTruncation::End);
    }
    // A down chevron, 8 wide and 4 high, centred on the button's middle line.
    const float middle = bounds.height / 2.0f;
    limner::Path chevron;
    chevron.MoveTo({chevronLeft, middle - 2.0f});
    chevron.LineTo({chevronLeft + kChevronWidth / 2.0f, middle + 2.0f});
    chevron.LineTo({chevronLeft + kChevronWidth, middle - 2.0f});
    limner.StrokePath(chevron, limner::Pen{1.5f, enabled ? skins::GetPaletteGrayColor(theme, 8)
                                                         : theme.disabledText});
}

}  // namespace kelui::controls
