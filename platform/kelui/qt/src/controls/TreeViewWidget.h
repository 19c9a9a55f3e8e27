// The QTreeView of a UI_MultiColumnTree: single selection of whole rows, pixel scrolling, no
// header. It paints the selected and hovered rows' background across the whole row (the
// indentation included) in the theme's grays, so that what the owner's draw function draws in
// the theme's text colour reads the same on every row, and it hands Enter/Return to the tree
// when the owner asked for them. Owned by the tree's node; main thread.
#pragma once

#include <functional>

#include <QPersistentModelIndex>
#include <QTreeView>

#include <kelui/skins/Theme.h>

namespace kelui::controls::detail {

class TreeViewWidget final : public QTreeView {
    Q_OBJECT
public:
    TreeViewWidget();

    /// Where the theme comes from at each paint; until set, the application's.
    void SetThemeSource(std::function<skins::Theme()> source);
    /// The theme of the paint under way.
    const skins::Theme& GetPaintTheme() const { return paintTheme; }
    /// Whether Enter and Return on the current row emit activateKeyPressed instead of going on
    /// to the widgets around the tree.
    void SetHandlesActivateKeys(bool handles) { handlesActivateKeys = handles; }
    /// Lays the rows out again on the next event loop turn (or at RelayoutNow).
    void RelayoutLater() { scheduleDelayedItemsLayout(); }
    /// Lays the rows out now if a layout is due.
    void RelayoutNow() { executeDelayedItemsLayout(); }

signals:
    void activateKeyPressed(const QModelIndex& index);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                 const QModelIndex& index) const override;
    bool viewportEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void SetHoverRow(const QModelIndex& index);
    void UpdateRow(const QModelIndex& index);

    std::function<skins::Theme()> themeSource;
    skins::Theme paintTheme;
    QPersistentModelIndex hoverRow;
    bool handlesActivateKeys = false;
};

}  // namespace kelui::controls::detail
