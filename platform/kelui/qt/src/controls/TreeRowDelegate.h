// Paints a UI_MultiColumnTree's cells through the owner's draw function, with a painting limner
// over the view's painter: the rectangle handed over is the cell's in the viewport's
// coordinates, after the indentation and disclosure triangle for the first column. Row heights
// come from the rows. Owned by the view; main thread.
#pragma once

#include <QStyledItemDelegate>

#include <kelui/controls/UI_MultiColumnTree.h>

namespace kelui::controls::detail {

class TreeRowDelegate final : public QStyledItemDelegate {
    Q_OBJECT
public:
    explicit TreeRowDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

    /// Replaces the draw function; an empty one draws nothing (the tree clears it as it dies).
    void SetDrawFunction(UI_MultiColumnTree::RowDrawFunction function) {
        draw = std::move(function);
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    UI_MultiColumnTree::RowDrawFunction draw;
};

}  // namespace kelui::controls::detail
