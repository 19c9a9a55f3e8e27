#include "controls/TreeViewWidget.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <kelui/ui/QtConversions.h>

namespace kelui::controls::detail {

namespace {

// Grays of the theme behind rows: light enough for the theme's text in both light and dark.
constexpr int kHoverGray = 2;
constexpr int kSelectedGray = 3;
constexpr int kSelectedFocusedGray = 4;

}  // namespace

TreeViewWidget::TreeViewWidget() {
    setHeaderHidden(true);
    header()->setStretchLastSection(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setRootIsDecorated(true);
    setAllColumnsShowFocus(true);
    setExpandsOnDoubleClick(true);
    setAnimated(false);
    setUniformRowHeights(true);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setFrameShape(QFrame::NoFrame);
    paintTheme = skins::GetApplicationTheme();
}

void TreeViewWidget::SetThemeSource(std::function<skins::Theme()> source) {
    themeSource = std::move(source);
}

void TreeViewWidget::keyPressEvent(QKeyEvent* event) {
    const bool activateKey = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (activateKey && handlesActivateKeys && currentIndex().isValid()) {
        event->accept();
        emit activateKeyPressed(currentIndex());
        return;
    }
    QTreeView::keyPressEvent(event);
}

void TreeViewWidget::paintEvent(QPaintEvent* event) {
    paintTheme = themeSource ? themeSource() : skins::GetApplicationTheme();
    QTreeView::paintEvent(event);
}

void TreeViewWidget::drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
    QStyleOptionViewItem rowOption(option);
    const QItemSelectionModel* selection = selectionModel();
    const bool selected = selection && selection->isRowSelected(index.row(), index.parent());
    const bool hovered = hoverRow.isValid() && hoverRow == index.siblingAtColumn(0);
    const QColor selectedColor = ui::ToQColor(
        skins::GetPaletteGrayColor(paintTheme, hasFocus() ? kSelectedFocusedGray : kSelectedGray));
    if (selected || hovered) {
        // Across the whole width, indentation included: the row reads as one band.
        const QColor band = selected
                                ? selectedColor
                                : ui::ToQColor(skins::GetPaletteGrayColor(paintTheme, kHoverGray));
        painter->fillRect(QRect(0, option.rect.y(), viewport()->width(), option.rect.height()),
                          band);
    }
    // Whatever the style fills for selected cells and branches is then the same gray.
    rowOption.palette.setColor(QPalette::Highlight, selectedColor);
    rowOption.palette.setColor(QPalette::HighlightedText, ui::ToQColor(paintTheme.text));
    QTreeView::drawRow(painter, rowOption, index);
}

bool TreeViewWidget::viewportEvent(QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseMove:
            SetHoverRow(indexAt(static_cast<QMouseEvent*>(event)->position().toPoint()));
            break;
        case QEvent::Leave:
            SetHoverRow({});
            break;
        default:
            break;
    }
    return QTreeView::viewportEvent(event);
}

void TreeViewWidget::focusInEvent(QFocusEvent* event) {
    QTreeView::focusInEvent(event);
    viewport()->update();
}

void TreeViewWidget::focusOutEvent(QFocusEvent* event) {
    QTreeView::focusOutEvent(event);
    viewport()->update();
}

void TreeViewWidget::SetHoverRow(const QModelIndex& index) {
    const QModelIndex row = index.isValid() ? index.siblingAtColumn(0) : QModelIndex();
    if (row == hoverRow) {
        return;
    }
    UpdateRow(hoverRow);
    hoverRow = row;
    UpdateRow(hoverRow);
}

void TreeViewWidget::UpdateRow(const QModelIndex& index) {
    if (!index.isValid()) {
        return;
    }
    const QRect cell = visualRect(index);
    viewport()->update(QRect(0, cell.y(), viewport()->width(), cell.height()));
}

}  // namespace kelui::controls::detail
