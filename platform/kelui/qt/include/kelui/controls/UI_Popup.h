// A pop-up list button: the button shows the chosen item (its icon when it has one, its text and a
// chevron) and opens the list of items below itself, with the chosen item highlighted. The user
// picks with the mouse or the keyboard (Space, Alt+Down or F4 open; arrows move; Enter picks; Esc
// closes); a pick sets the value and notifies the owner once. Setting the value from code never
// notifies. The list is a QMenu owned by the button's widget; items are identified by their index.
// Main thread.
//
//   boost::intrusive_ptr<UI_Popup> presets(new UI_Popup);
//   presets->AddItem(u"H.264 — Match Source", -1);
//   presets->NotifyWhenChanged([weak] { if (auto self = weak.lock()) self->OnPresetPicked(); });
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/string/String.h>
#include <kelui/controls/UI_ControlView.h>
#include <kelui/limner/ImageInterface.h>
#include <kelui/skins/Theme.h>
#include <kelui/ui/UI_PictureSupplyMessage.h>

class QAction;
class QMenu;
class QPoint;
class QWidget;

namespace kelui::controls {

namespace detail {
class PopupButtonWidget;
}

class UI_Popup : public UI_ControlView {
public:
    using MenuCallback = std::function<void(UI_Popup&)>;

    /// How UI_GetRecommendedSize chooses the width. 2, measuring every item, is what the panel
    /// passes for its preset picker.
    enum PickerMeasureStrategy : std::uint32_t {
        kMeasureGivenWidth = 0,  ///< the present width, when it has one
        kMeasureChosenItem = 1,  ///< wide enough for the chosen item
        kMeasureWidestItem = 2,  ///< wide enough for every item
    };
    /// The chrome that draws no box: only the content, with a hover background.
    static constexpr std::uint32_t kChromeBorderless = 10;

    UI_Popup();
    ~UI_Popup() override;

    // Items --------------------------------------------------------------------------------

    /// Inserts an item before `position` (-1, or a position past the end, appends) and returns
    /// its index. The chosen item stays chosen.
    int AddItem(kelcore::string::string_view label, int position);
    /// The same, for an item whose icon is the picture of SetImageSupplyFunction.
    int AddItemWithCustomIcon(kelcore::string::string_view label, int position);
    /// Greys the item out so that it cannot be picked. Does nothing for an index out of range.
    void DisableItem(int index, bool disabled);
    /// False for a disabled item and for an index out of range.
    bool IsItemEnabled(int index) const;
    void EnableAllItems();
    /// Removes every item; the value becomes -1.
    void DeleteAllItems();
    int GetItemCount() const;
    /// The item's label; empty for an index out of range.
    kelcore::string::string GetItemText(int index) const;

    // Value --------------------------------------------------------------------------------

    /// The chosen item's index, or -1 when none is chosen.
    int GetValue() const { return value; }
    /// Chooses the item `index` without notifying; -1 (or any index out of range) chooses none,
    /// and the button then shows no item.
    void SetValue(int index);

    // Look ---------------------------------------------------------------------------------

    /// Where the icons of items added with AddItemWithCustomIcon come from; asked again each
    /// time the list opens. Null: those items have no icon.
    void SetImageSupplyFunction(ui::ImageSupplyFunction supply);
    const ui::ImageSupplyFunction& GetImageSupplyFunction() const { return imageSupply; }
    /// One of PickerMeasureStrategy; other values measure the widest item.
    void SetPickerMeasureStrategy(std::uint32_t strategy);
    std::uint32_t GetPickerMeasureStrategy() const { return measureStrategy; }
    /// kChromeBorderless draws no box; every other value draws the standard field.
    void SetButtonChromeType(std::uint32_t chrome);
    std::uint32_t GetButtonChromeType() const { return chromeType; }

    // The list -----------------------------------------------------------------------------

    /// Runs just before the list opens, with this popup.
    void SetPreShowMenuCallback(MenuCallback callback);
    /// Runs right after the list closed, whether an item was picked or not, before the pick's
    /// notification.
    void SetPostShowMenuCallback(MenuCallback callback);
    /// Opens the list below the button with the chosen item highlighted; returns at once. Does
    /// nothing while the list is open, or when the popup is disabled or has no items.
    void ShowMenu();
    /// Closes the list as Esc would: nothing is picked.
    void HideMenu();
    bool IsMenuShowing() const;
    /// The list's window (a QMenu), for tests and screenshots. Never null.
    QMenu* GetMenu() const;

    // Node ---------------------------------------------------------------------------------

    /// Height 24; the width as the measure strategy says.
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;
    void UI_Draw(limner::Limner& limner) override;

protected:
    /// The picture of the image supply function: asked when first needed after the function was
    /// set, and again each time the list opens. Null without a function or a picture.
    boost::intrusive_ptr<limner::ImageInterface> GetSuppliedPicture();
    /// Where the list opens, in global coordinates, for a list of `menuWidth`: below the
    /// button, left edges aligned.
    virtual QPoint GetMenuPosition(int menuWidth) const;
    /// The list is at least this wide: the button's width.
    virtual int GetMenuMinimumWidth() const;
    /// Draws the box (unless `borderless`), the hover and pressed backgrounds and the focus
    /// ring.
    void DrawChrome(limner::Limner& limner, const skins::Theme& theme, bool borderless) const;
    /// The theme that this popup draws with now.
    skins::Theme GetTheme() const;
    /// The button's interaction state, for UI_Draw.
    bool IsHovered() const;
    bool IsPressed() const;
    /// Whether the focus ring shows: the keyboard brought the focus here.
    bool HasVisibleFocus() const;
    /// The name that screen readers hear when the owner set none: the chosen item's text.
    virtual kelcore::string::string GetFallbackAccessibleName() const;

private:
    friend class detail::PopupButtonWidget;

    struct Item {
        kelcore::string::string label;
        bool customIcon = false;
        QAction* action = nullptr;
    };

    int InsertItem(kelcore::string::string_view label, int position, bool customIcon);
    void RefreshChosenItem();
    void RefreshItemIcons();
    void OnActionTriggered(QAction* action);
    void OnMenuHidden();
    void PaintButton(QWidget& widget) { PaintWidget(widget); }
    /// The button's width when it shows `item` (null: no item).
    float MeasureItemWidth(limner::Limner& measuring, const Item* item) const;

    detail::PopupButtonWidget* button = nullptr;
    QMenu* menu = nullptr;
    std::vector<Item> items;
    int value = -1;
    ui::ImageSupplyFunction imageSupply;
    boost::intrusive_ptr<limner::ImageInterface> suppliedPicture;
    bool pictureRequested = false;
    std::uint32_t measureStrategy = kMeasureWidestItem;
    std::uint32_t chromeType = 0;
    MenuCallback preShow;
    MenuCallback postShow;
    bool menuShowing = false;
};

}  // namespace kelui::controls
