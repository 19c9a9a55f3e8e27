// A tree of rows in one or more columns, over a QTreeView: the platform's keyboard handling
// (Up/Down move the selection, Right opens, Left closes or goes to the parent), disclosure
// triangles on rows that have children, pixel scrolling and screen reader support. The owner
// draws each cell with its draw function and is told of selection, opening and closing, and
// (when it asks) activation. The tree owns its rows (UI_TreeRow); rows can be added under any
// row at any time, for example when the expansion function has fetched a folder's children.
// Many appends in a row under one parent reach the view as one insertion. Main thread.
//
//   auto tree = boost::intrusive_ptr<UI_MultiColumnTree>(new UI_MultiColumnTree(
//       [](limner::Limner* limner, UI_TreeRow* row, int column, RectT<float> rect) { ... },
//       [](const std::vector<UI_TreeRow*>& selected) { ... }, [](UI_TreeRow*, bool) { ... }));
//   UI_TreeRow* folder = tree->CreateAndInsertRow(nullptr);
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include <kelcore/geom/RectT.h>
#include <kelui/controls/UI_ControlView.h>
#include <kelui/controls/UI_TreeRow.h>
#include <kelui/limner/Limner.h>

namespace kelui::controls {

namespace detail {
class TreeRowDelegate;
class TreeRowModel;
class TreeViewWidget;
}  // namespace detail

class UI_MultiColumnTree : public UI_ControlView {
public:
    /// Draws `column` of `row` into `rect`, given in the viewport's coordinates; for the first
    /// column it starts after the row's indentation and disclosure triangle. The selected or
    /// hovered background is already painted.
    using RowDrawFunction = std::function<void(limner::Limner*, UI_TreeRow*, int column,
                                               kelcore::geom::RectT<float> rect)>;
    /// Receives the selected rows (none or one) each time the selection changes.
    using SelectionFunction = std::function<void(const std::vector<UI_TreeRow*>&)>;
    /// Told that `row` was opened (true) or closed (false), by the user or by OpenRow/CloseRow.
    using ExpansionFunction = std::function<void(UI_TreeRow*, bool opened)>;
    /// Told that the user activated `row`.
    using ActivateFunction = std::function<void(UI_TreeRow*)>;

    /// A tree without rows, in one column. Any of the functions may be empty.
    UI_MultiColumnTree(RowDrawFunction draw, SelectionFunction selection,
                       ExpansionFunction expansion);
    ~UI_MultiColumnTree() override;

    // Rows ----------------------------------------------------------------------------------

    /// Makes a row under `parent` (null: at the top level) before `position` among its
    /// children; -1 (or any position past the end) appends. The row is 20 pixels high until
    /// SetHeight. Appends reach the view on the next event loop turn, or earlier when any other
    /// method of the tree needs them there. Throws for a parent of another tree.
    UI_TreeRow* CreateAndInsertRow(UI_TreeRow* parent, int position = -1);
    /// Removes and deletes `row` and every row under it; their pointers are dangling after.
    /// A selected row among them is deselected first (the selection function hears it). Does
    /// nothing for null; throws for a row of another tree.
    void RemoveRow(UI_TreeRow* row);
    /// Removes and deletes every row. The selection function hears it when a row was selected.
    void Clear();
    /// The number of rows at every level.
    std::size_t GetRowCount() const;
    /// The top-level rows, in order.
    std::vector<UI_TreeRow*> GetRootRows() const;
    /// Sets how many columns the tree has and their widths in pixels; the last column takes
    /// the rest of the width whatever its entry says. Meant for before the first row: later,
    /// a change in the number of columns closes every row. An empty list means one column.
    void SetColumnWidths(const std::vector<float>& widths);

    // State ---------------------------------------------------------------------------------

    /// Shows `row`'s children. The expansion function hears it unless the row was open already.
    /// Does nothing for null or for a row without children.
    void OpenRow(UI_TreeRow* row);
    /// Hides `row`'s children; the expansion function hears it when it was open. Does nothing
    /// for null.
    void CloseRow(UI_TreeRow* row);
    /// Makes `row` the one selected row (null: none) and the keyboard's current row. The
    /// selection function hears it when the selection changed. When the tree is shown, the
    /// view scrolls to the row and opens the rows above it.
    void SelectRow(UI_TreeRow* row);
    /// The selected rows: none or one.
    std::vector<UI_TreeRow*> GetSelectedRows() const;
    /// Called with the current row when the user presses Enter or Return in the tree, and with
    /// a row without children that the user double-clicks. While no function is set, Enter and
    /// Return go on to the widgets around the tree (a dialog's default button).
    void SetActivateFunction(ActivateFunction function);

    // Scrolling and layout ------------------------------------------------------------------

    /// Scrolls as little as needed for `row` to be wholly in view, opening the rows above it;
    /// `animate` glides there. Does nothing for null.
    void ScrollRowIntoView(UI_TreeRow* row, bool animate);
    /// The rows at least partly inside the viewport now, top to bottom; none while the tree is
    /// not on screen.
    std::vector<UI_TreeRow*> GetVisibleRows() const;
    /// `row`'s rectangle across all columns in the viewport's coordinates, starting after its
    /// indentation and disclosure triangle; empty when the row is not laid out (inside a closed
    /// row, or the tree hidden).
    kelcore::geom::RectT<float> GetRowRect(UI_TreeRow* row) const;
    /// Hands pending appends to the view and lays the rows out now.
    void LayoutAfterAppendRow();
    /// Hands pending appends to the view, lays the rows out and redraws them all (for when
    /// what the draw function draws changed).
    void Refresh();

private:
    void ConnectView();
    void NotifySelection();

    detail::TreeViewWidget* view;       // the node's widget
    detail::TreeRowModel* model;        // a child of the view
    detail::TreeRowDelegate* delegate;  // a child of the view
    SelectionFunction selection;
    ExpansionFunction expansion;
    ActivateFunction activate;
    struct Impl;
    // Destroyed first, so that no signal of the dying view reaches this tree's functions.
    std::unique_ptr<Impl> impl;
};

}  // namespace kelui::controls
