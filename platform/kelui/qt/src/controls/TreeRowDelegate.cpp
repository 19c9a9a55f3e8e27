#include "controls/TreeRowDelegate.h"

#include <cmath>

#include <QPainter>

#include <kelui/ui/QtConversions.h>

#include "controls/TreeRowModel.h"
#include "controls/TreeViewWidget.h"
#include "limner/PainterLimner.h"

namespace kelui::controls::detail {

void TreeRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const {
    UI_TreeRow* row = TreeRowModel::RowOf(index);
    if (!row || !draw) {
        return;
    }
    const auto* view = qobject_cast<const TreeViewWidget*>(option.widget);
    const skins::Theme theme = view ? view->GetPaintTheme() : skins::GetApplicationTheme();
    const kelcore::geom::RectT<float> rect = ui::FromQRectF(QRectF(option.rect));
    painter->save();
    {
        limner::PainterLimner limner(*painter, theme);
        // A draw function that spills over stays inside its own cell.
        limner.ClipRect(rect);
        draw(&limner, row, index.column(), rect);
    }
    painter->restore();
}

QSize TreeRowDelegate::sizeHint(const QStyleOptionViewItem& /*option*/,
                                const QModelIndex& index) const {
    const UI_TreeRow* row = TreeRowModel::RowOf(index);
    return QSize(0, row ? static_cast<int>(std::ceil(row->GetHeight())) : 0);
}

}  // namespace kelui::controls::detail
