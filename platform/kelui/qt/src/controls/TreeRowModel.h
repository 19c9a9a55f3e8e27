// The item model of a UI_MultiColumnTree: owns the tree's rows (under a hidden root) and shows
// them to the QTreeView, one model row per UI_TreeRow, with the row's pointer as the index's
// internal pointer. Appends under one parent are gathered and announced to the view as one
// insertion on the next event loop turn (or at FlushAppends), so filling a folder with ten
// thousand rows costs one layout; until then the gathered rows exist for the owner but not for
// the view. A child of the view, which it lives and dies with; main thread.
#pragma once

#include <cstddef>
#include <map>
#include <memory>

#include <QAbstractItemModel>
#include <QTimer>

#include <kelui/controls/UI_TreeRow.h>

namespace kelui::controls::detail {

class TreeViewWidget;

class TreeRowModel final : public QAbstractItemModel {
    Q_OBJECT
public:
    static constexpr float kDefaultRowHeight = 20.0f;

    explicit TreeRowModel(TreeViewWidget& view);
    ~TreeRowModel() override;

    QModelIndex index(int row, int column, const QModelIndex& parent) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent) const override;
    int columnCount(const QModelIndex& parent) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    /// Nothing: the header is hidden, and Qt's numbers would be all a screen reader announced.
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// A new row under `parent` (null: top level) before `position`; a negative or too large
    /// position appends, and appends wait for FlushAppends. Throws for a row of another tree.
    UI_TreeRow* InsertRow(UI_TreeRow* parent, int position);
    /// Removes `row` with everything under it and deletes them. Throws for a row of another tree.
    void RemoveRow(UI_TreeRow& row);
    /// Removes and deletes every row.
    void Clear();
    /// Announces the gathered appends to the view; does nothing when there are none.
    void FlushAppends();
    /// The number of rows, at every level, appends not yet announced included.
    std::size_t GetTotalRowCount() const { return totalRows; }
    const UI_TreeRow& GetRoot() const { return *root; }
    /// Sets the number of columns. With rows present the model resets, which closes them.
    void SetColumnCount(int count);

    /// The index of `row` in `column`; invalid for a row that the view has not been told of.
    QModelIndex IndexOf(const UI_TreeRow& row, int column = 0) const;
    /// The row of `index`, or null for an invalid index.
    static UI_TreeRow* RowOf(const QModelIndex& index);
    /// Throws unless `row` belongs to this model and is not its hidden root.
    void CheckOwnRow(const UI_TreeRow& row) const;

    // For UI_TreeRow.
    void RowHeightChanged(UI_TreeRow& row, float oldHeight);
    void RowTextChanged(UI_TreeRow& row);
    bool IsRowOpen(const UI_TreeRow& row) const;

private:
    // Whether the view has been told of `row`: false inside a gathered append.
    bool IsAnnounced(const UI_TreeRow& row) const;
    // The children of `parent` that the view has been told of.
    std::size_t AnnouncedChildCount(const UI_TreeRow& parent) const;
    void CountSubtree(const UI_TreeRow& row, bool add);
    void CountHeight(float height, bool add);
    // Qt lays rows out much faster when it may take one height for all of them.
    void UpdateUniformRowHeights();

    TreeViewWidget& view;
    std::unique_ptr<UI_TreeRow> root;
    // The gathered appends: the children of `pendingParent` from `pendingFrom` on.
    UI_TreeRow* pendingParent = nullptr;
    std::size_t pendingFrom = 0;
    QTimer flushTimer;
    std::map<float, std::size_t> heightCounts;
    std::size_t totalRows = 0;
    int columns = 1;
};

}  // namespace kelui::controls::detail
