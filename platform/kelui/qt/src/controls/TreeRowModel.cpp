#include "controls/TreeRowModel.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include <QSize>

#include <kelcore/config/ErrorHandling.h>
#include <kelui/ui/QtConversions.h>

#include "controls/TreeViewWidget.h"

namespace kelui::controls::detail {

namespace {

int ToInt(std::size_t value) {
    return static_cast<int>(value);
}

}  // namespace

TreeRowModel::TreeRowModel(TreeViewWidget& view)
    : QAbstractItemModel(&view), view(view), root(new UI_TreeRow(*this, nullptr, 0.0f)) {
    flushTimer.setSingleShot(true);
    flushTimer.setInterval(0);
    connect(&flushTimer, &QTimer::timeout, this, &TreeRowModel::FlushAppends);
}

TreeRowModel::~TreeRowModel() = default;

QModelIndex TreeRowModel::index(int row, int column, const QModelIndex& parent) const {
    if (row < 0 || column < 0 || column >= columns || parent.column() > 0) {
        return {};
    }
    const UI_TreeRow* parentRow = parent.isValid() ? RowOf(parent) : root.get();
    if (static_cast<std::size_t>(row) >= AnnouncedChildCount(*parentRow)) {
        return {};
    }
    return createIndex(row, column, parentRow->children[static_cast<std::size_t>(row)].get());
}

QModelIndex TreeRowModel::parent(const QModelIndex& child) const {
    const UI_TreeRow* row = RowOf(child);
    if (!row || row->parent == root.get()) {
        return {};
    }
    return createIndex(ToInt(row->parent->indexInParent), 0, row->parent);
}

int TreeRowModel::rowCount(const QModelIndex& parent) const {
    // Only the first column holds children, as Qt's views expect.
    if (parent.column() > 0) {
        return 0;
    }
    return ToInt(AnnouncedChildCount(parent.isValid() ? *RowOf(parent) : *root));
}

int TreeRowModel::columnCount(const QModelIndex& /*parent*/) const {
    return columns;
}

QVariant TreeRowModel::data(const QModelIndex& index, int role) const {
    const UI_TreeRow* row = RowOf(index);
    if (!row) {
        return {};
    }
    switch (role) {
        case Qt::DisplayRole:
        case Qt::AccessibleTextRole:
            return ui::ToQString(row->accessibleText);
        case Qt::SizeHintRole:
            return QSize(0, static_cast<int>(std::ceil(row->height)));
        default:
            return {};
    }
}

Qt::ItemFlags TreeRowModel::flags(const QModelIndex& index) const {
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}

QVariant TreeRowModel::headerData(int /*section*/, Qt::Orientation /*orientation*/,
                                  int /*role*/) const {
    return {};
}

UI_TreeRow* TreeRowModel::InsertRow(UI_TreeRow* parent, int position) {
    if (parent) {
        CheckOwnRow(*parent);
    }
    UI_TreeRow& parentRow = parent ? *parent : *root;
    std::unique_ptr<UI_TreeRow> row(new UI_TreeRow(*this, &parentRow, kDefaultRowHeight));
    UI_TreeRow* added = row.get();
    auto& siblings = parentRow.children;
    const bool append = position < 0 || static_cast<std::size_t>(position) >= siblings.size();
    if (append) {
        if (pendingParent != &parentRow) {
            // One gathering at a time keeps the view's picture simple: all rows known but the
            // tail of one parent's children.
            FlushAppends();
            pendingParent = &parentRow;
            pendingFrom = siblings.size();
            flushTimer.start();
        }
        row->indexInParent = siblings.size();
        siblings.push_back(std::move(row));
    } else {
        FlushAppends();
        const auto at = static_cast<std::size_t>(position);
        beginInsertRows(IndexOf(parentRow), position, position);
        siblings.insert(siblings.begin() + position, std::move(row));
        for (std::size_t i = at; i < siblings.size(); ++i) {
            siblings[i]->indexInParent = i;
        }
        endInsertRows();
    }
    ++totalRows;
    CountHeight(added->height, true);
    UpdateUniformRowHeights();
    return added;
}

void TreeRowModel::FlushAppends() {
    flushTimer.stop();
    if (!pendingParent) {
        return;
    }
    UI_TreeRow& parentRow = *pendingParent;
    const int first = ToInt(pendingFrom);
    const int last = ToInt(parentRow.children.size()) - 1;
    beginInsertRows(IndexOf(parentRow), first, last);
    pendingParent = nullptr;
    endInsertRows();
}

void TreeRowModel::RemoveRow(UI_TreeRow& row) {
    CheckOwnRow(row);
    FlushAppends();
    UI_TreeRow& parentRow = *row.parent;
    const std::size_t at = row.indexInParent;
    auto& siblings = parentRow.children;
    beginRemoveRows(IndexOf(parentRow), ToInt(at), ToInt(at));
    // Qt may still ask about the removed rows until endRemoveRows: they die after it.
    std::unique_ptr<UI_TreeRow> removed = std::move(siblings[at]);
    siblings.erase(siblings.begin() + static_cast<std::ptrdiff_t>(at));
    for (std::size_t i = at; i < siblings.size(); ++i) {
        siblings[i]->indexInParent = i;
    }
    CountSubtree(*removed, false);
    endRemoveRows();
    removed.reset();
    UpdateUniformRowHeights();
}

void TreeRowModel::Clear() {
    flushTimer.stop();
    beginResetModel();
    std::vector<std::unique_ptr<UI_TreeRow>> removed = std::move(root->children);
    root->children.clear();
    pendingParent = nullptr;
    heightCounts.clear();
    totalRows = 0;
    endResetModel();
    removed.clear();
    UpdateUniformRowHeights();
}

void TreeRowModel::SetColumnCount(int count) {
    count = std::max(count, 1);
    if (count == columns) {
        return;
    }
    FlushAppends();
    beginResetModel();
    columns = count;
    endResetModel();
}

QModelIndex TreeRowModel::IndexOf(const UI_TreeRow& row, int column) const {
    if (&row == root.get() || column < 0 || column >= columns || !IsAnnounced(row)) {
        return {};
    }
    return createIndex(ToInt(row.indexInParent), column, const_cast<UI_TreeRow*>(&row));
}

UI_TreeRow* TreeRowModel::RowOf(const QModelIndex& index) {
    return index.isValid() ? static_cast<UI_TreeRow*>(index.internalPointer()) : nullptr;
}

void TreeRowModel::CheckOwnRow(const UI_TreeRow& row) const {
    if (&row.model != this || &row == root.get()) {
        kelcore::config::ThrowError("the row belongs to another tree");
    }
}

void TreeRowModel::RowHeightChanged(UI_TreeRow& row, float oldHeight) {
    if (&row == root.get()) {
        return;
    }
    CountHeight(oldHeight, false);
    CountHeight(row.height, true);
    UpdateUniformRowHeights();
    if (IsAnnounced(row)) {
        emit dataChanged(IndexOf(row, 0), IndexOf(row, columns - 1), {Qt::SizeHintRole});
    }
}

void TreeRowModel::RowTextChanged(UI_TreeRow& row) {
    if (&row != root.get() && IsAnnounced(row)) {
        emit dataChanged(IndexOf(row, 0), IndexOf(row, columns - 1),
                         {Qt::DisplayRole, Qt::AccessibleTextRole});
    }
}

bool TreeRowModel::IsRowOpen(const UI_TreeRow& row) const {
    const QModelIndex index = IndexOf(row);
    return index.isValid() && view.isExpanded(index);
}

bool TreeRowModel::IsAnnounced(const UI_TreeRow& row) const {
    for (const UI_TreeRow* node = &row; node->parent; node = node->parent) {
        if (node->parent == pendingParent && node->indexInParent >= pendingFrom) {
            return false;
        }
    }
    return true;
}

std::size_t TreeRowModel::AnnouncedChildCount(const UI_TreeRow& parent) const {
    return &parent == pendingParent ? pendingFrom : parent.children.size();
}

void TreeRowModel::CountSubtree(const UI_TreeRow& row, bool add) {
    if (add) {
        ++totalRows;
    } else {
        --totalRows;
    }
    CountHeight(row.height, add);
    for (const auto& child : row.children) {
        CountSubtree(*child, add);
    }
}

void TreeRowModel::CountHeight(float height, bool add) {
    if (add) {
        ++heightCounts[height];
        return;
    }
    const auto found = heightCounts.find(height);
    if (found != heightCounts.end() && --found->second == 0) {
        heightCounts.erase(found);
    }
}

void TreeRowModel::UpdateUniformRowHeights() {
    const bool uniform = heightCounts.size() <= 1;
    if (view.uniformRowHeights() != uniform) {
        view.setUniformRowHeights(uniform);
        view.RelayoutLater();
    }
}

}  // namespace kelui::controls::detail
