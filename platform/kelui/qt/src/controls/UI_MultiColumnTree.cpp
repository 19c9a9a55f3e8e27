#include <kelui/controls/UI_MultiColumnTree.h>

#include <algorithm>
#include <cmath>

#include <QItemSelectionModel>
#include <QPointer>
#include <QPropertyAnimation>
#include <QScrollBar>

#include <kelui/ui/QtConversions.h>
#include <kelui/ui/UI_NodeManager.h>

#include "controls/TreeRowDelegate.h"
#include "controls/TreeRowModel.h"
#include "controls/TreeViewWidget.h"

namespace kelui::controls {

using detail::TreeRowModel;

namespace {

constexpr int kScrollAnimationMilliseconds = 180;

skins::Theme ThemeOf(const ui::UI_Node& node) {
    const auto supplier = node.UI_GetDrawSupplierOrDefault();
    return supplier->GetTheme();
}

}  // namespace

struct UI_MultiColumnTree::Impl {
    // The receiver of the view's signals: destroying it disconnects them all.
    QObject context;
    QPointer<QPropertyAnimation> scrollAnimation;
    // What the selection function heard last. Qt also reports selections that it merely
    // rebuilt (rows inserted or removed around them); those are no news to the owner.
    std::vector<UI_TreeRow*> reportedSelection;
};

UI_MultiColumnTree::UI_MultiColumnTree(RowDrawFunction drawFunction,
                                       SelectionFunction selectionFunction,
                                       ExpansionFunction expansionFunction)
    : UI_ControlView(new detail::TreeViewWidget),
      view(static_cast<detail::TreeViewWidget*>(GetWidget())),
      model(new TreeRowModel(*view)),
      delegate(new detail::TreeRowDelegate(view)),
      selection(std::move(selectionFunction)),
      expansion(std::move(expansionFunction)),
      impl(std::make_unique<Impl>()) {
    delegate->SetDrawFunction(std::move(drawFunction));
    view->setItemDelegate(delegate);
    view->setModel(model);
    // `this` outlives the source: the destructor clears it before the view can paint again.
    view->SetThemeSource([this] { return ThemeOf(*this); });
    ConnectView();
}

UI_MultiColumnTree::~UI_MultiColumnTree() {
    impl.reset();
    // The view outlives this object by the base's destructor; it must not call back into it.
    if (GetWidget()) {
        view->SetThemeSource({});
        delegate->SetDrawFunction({});
    }
}

void UI_MultiColumnTree::ConnectView() {
    // The lambdas capture `this`: `impl->context` dies first in the destructor, cutting them off.
    QObject* context = &impl->context;
    QObject::connect(view->selectionModel(), &QItemSelectionModel::selectionChanged, context,
                     [this] { NotifySelection(); });
    const auto tellExpansion = [this](const QModelIndex& index, bool opened) {
        UI_TreeRow* row = TreeRowModel::RowOf(index);
        if (!row || !expansion) {
            return;
        }
        const boost::intrusive_ptr<UI_MultiColumnTree> keep(this);
        const auto function = expansion;
        function(row, opened);
    };
    QObject::connect(view, &QTreeView::expanded, context,
                     [tellExpansion](const QModelIndex& index) { tellExpansion(index, true); });
    QObject::connect(view, &QTreeView::collapsed, context,
                     [tellExpansion](const QModelIndex& index) { tellExpansion(index, false); });
    const auto tellActivation = [this](const QModelIndex& index) {
        UI_TreeRow* row = TreeRowModel::RowOf(index);
        if (!row || !activate) {
            return;
        }
        const boost::intrusive_ptr<UI_MultiColumnTree> keep(this);
        const auto function = activate;
        function(row);
    };
    QObject::connect(view, &detail::TreeViewWidget::activateKeyPressed, context, tellActivation);
    QObject::connect(view, &QAbstractItemView::doubleClicked, context,
                     [this, tellActivation](const QModelIndex& index) {
                         // A double click on a row with children opens or closes it instead.
                         if (index.isValid() && !model->hasChildren(index.siblingAtColumn(0))) {
                             tellActivation(index);
                         }
                     });
}

void UI_MultiColumnTree::NotifySelection() {
    std::vector<UI_TreeRow*> rows = GetSelectedRows();
    if (rows == impl->reportedSelection) {
        return;
    }
    impl->reportedSelection = rows;
    if (!selection) {
        return;
    }
    const boost::intrusive_ptr<UI_MultiColumnTree> keep(this);
    const auto function = selection;
    function(rows);
}

UI_TreeRow* UI_MultiColumnTree::CreateAndInsertRow(UI_TreeRow* parent, int position) {
    return model->InsertRow(parent, position);
}

void UI_MultiColumnTree::RemoveRow(UI_TreeRow* row) {
    if (!row) {
        return;
    }
    model->CheckOwnRow(*row);
    model->FlushAppends();
    // Deselect before removing, so that the selection function hears of it in a whole tree.
    for (UI_TreeRow* selected : GetSelectedRows()) {
        for (UI_TreeRow* above = selected; above; above = above->GetParentRow()) {
            if (above == row) {
                view->selectionModel()->clearSelection();
                break;
            }
        }
    }
    model->RemoveRow(*row);
}

void UI_MultiColumnTree::Clear() {
    // A reset drops the selection silently: clear it first, loudly.
    if (view->selectionModel()->hasSelection()) {
        view->selectionModel()->clearSelection();
    }
    model->Clear();
}

std::size_t UI_MultiColumnTree::GetRowCount() const {
    return model->GetTotalRowCount();
}

std::vector<UI_TreeRow*> UI_MultiColumnTree::GetRootRows() const {
    return model->GetRoot().GetChildRows();
}

void UI_MultiColumnTree::SetColumnWidths(const std::vector<float>& widths) {
    model->SetColumnCount(static_cast<int>(std::max<std::size_t>(widths.size(), 1)));
    for (std::size_t column = 0; column + 1 < widths.size(); ++column) {
        view->setColumnWidth(static_cast<int>(column),
                             static_cast<int>(std::lround(widths[column])));
    }
}

void UI_MultiColumnTree::OpenRow(UI_TreeRow* row) {
    if (!row) {
        return;
    }
    model->CheckOwnRow(*row);
    model->FlushAppends();
    const QModelIndex index = model->IndexOf(*row);
    if (model->rowCount(index) == 0) {
        return;
    }
    view->RelayoutNow();
    view->expand(index);
}

void UI_MultiColumnTree::CloseRow(UI_TreeRow* row) {
    if (!row) {
        return;
    }
    model->CheckOwnRow(*row);
    model->FlushAppends();
    view->RelayoutNow();
    view->collapse(model->IndexOf(*row));
}

void UI_MultiColumnTree::SelectRow(UI_TreeRow* row) {
    if (!row) {
        view->selectionModel()->clearSelection();
        return;
    }
    model->CheckOwnRow(*row);
    model->FlushAppends();
    view->selectionModel()->setCurrentIndex(
        model->IndexOf(*row), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

std::vector<UI_TreeRow*> UI_MultiColumnTree::GetSelectedRows() const {
    std::vector<UI_TreeRow*> rows;
    for (const QModelIndex& index : view->selectionModel()->selectedRows(0)) {
        if (UI_TreeRow* row = TreeRowModel::RowOf(index)) {
            rows.push_back(row);
        }
    }
    return rows;
}

void UI_MultiColumnTree::SetActivateFunction(ActivateFunction function) {
    activate = std::move(function);
    view->SetHandlesActivateKeys(static_cast<bool>(activate));
}

void UI_MultiColumnTree::ScrollRowIntoView(UI_TreeRow* row, bool animate) {
    if (!row) {
        return;
    }
    model->CheckOwnRow(*row);
    model->FlushAppends();
    view->RelayoutNow();
    if (impl->scrollAnimation) {
        impl->scrollAnimation->stop();
    }
    QScrollBar* bar = view->verticalScrollBar();
    const int from = bar->value();
    view->scrollTo(model->IndexOf(*row), QAbstractItemView::EnsureVisible);
    const int to = bar->value();
    if (!animate || to == from) {
        return;
    }
    // Qt's scrollTo found the place; glide there from where the view was.
    bar->setValue(from);
    auto* animation = new QPropertyAnimation(bar, "value", bar);
    animation->setDuration(kScrollAnimationMilliseconds);
    animation->setEasingCurve(QEasingCurve::OutCubic);
    animation->setStartValue(from);
    animation->setEndValue(to);
    impl->scrollAnimation = animation;
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

std::vector<UI_TreeRow*> UI_MultiColumnTree::GetVisibleRows() const {
    std::vector<UI_TreeRow*> rows;
    if (!view->isVisible()) {
        return rows;
    }
    model->FlushAppends();
    view->RelayoutNow();
    const QRect viewport = view->viewport()->rect();
    for (QModelIndex index = view->indexAt(QPoint(0, 0)); index.isValid();
         index = view->indexBelow(index)) {
        const QRect cell = view->visualRect(index);
        if (cell.top() >= viewport.bottom() + 1) {
            break;
        }
        if (cell.bottom() >= viewport.top()) {
            rows.push_back(TreeRowModel::RowOf(index));
        }
    }
    return rows;
}

kelcore::geom::RectT<float> UI_MultiColumnTree::GetRowRect(UI_TreeRow* row) const {
    if (!row) {
        return {};
    }
    model->CheckOwnRow(*row);
    model->FlushAppends();
    view->RelayoutNow();
    const QModelIndex first = model->IndexOf(*row);
    const QRect firstCell = view->visualRect(first);
    if (firstCell.isEmpty()) {
        return {};
    }
    const int lastColumn = model->columnCount(first.parent()) - 1;
    const QRect lastCell = view->visualRect(model->IndexOf(*row, lastColumn));
    return ui::FromQRectF(QRectF(firstCell.united(lastCell)));
}

void UI_MultiColumnTree::LayoutAfterAppendRow() {
    model->FlushAppends();
    view->RelayoutNow();
}

void UI_MultiColumnTree::Refresh() {
    model->FlushAppends();
    view->doItemsLayout();
    view->viewport()->update();
}

}  // namespace kelui::controls
