#include <kelui/controls/UI_ScrollView.h>

#include <algorithm>
#include <cmath>

#include <QScrollBar>

#include "controls/ScrollViewWidget.h"

namespace kelui::controls {

struct UI_ScrollView::Impl {
    // The receiver of the widget's signals: destroying it disconnects them all.
    QObject context;
};

UI_ScrollView::UI_ScrollView()
    : UI_ControlView(new detail::ScrollViewWidget),
      area(static_cast<detail::ScrollViewWidget*>(GetWidget())),
      content(new ui::UI_SubView),
      impl(std::make_unique<Impl>()) {
    ChildPushBack(content);
    content->UI_Show(true);
    area->WatchContentWidget(content->GetWidget());
    // `this` outlives the connections: the destructor cuts them first.
    QObject::connect(area, &detail::ScrollViewWidget::contentPlacementNeeded, &impl->context,
                     [this] { PlaceContent(); });
    QObject::connect(area, &detail::ScrollViewWidget::viewportResized, &impl->context,
                     [this] { Update(); });
}

UI_ScrollView::~UI_ScrollView() {
    impl.reset();
    if (GetWidget()) {
        area->WatchContentWidget(nullptr);
    }
    // While GetChildWidgetParent still answers the viewport: the base's destructor would look
    // for the children's widgets in the wrong place and delete them with the scroll area.
    const auto children = GetChildren();
    for (const auto& child : children) {
        ChildRemove(child);
    }
}

QWidget* UI_ScrollView::GetChildWidgetParent() const {
    return GetWidget() ? area->viewport() : nullptr;
}

void UI_ScrollView::SetContentRect(const kelcore::geom::RectT<float>& rect) {
    content->UI_SetLocalRectF(rect);
    Update();
}

void UI_ScrollView::Update() {
    if (!GetWidget()) {
        return;
    }
    const kelcore::geom::RectT<float> rect = content->UI_GetLocalRectF();
    const float bottom = GetOriginInWidget().y + rect.y + std::max(rect.height, 0.0f);
    const int extent = static_cast<int>(std::ceil(bottom));
    const int viewportHeight = area->height();
    // Qt shows an as-needed bar only on the next event loop turn; deciding here narrows the
    // viewport at once, so GetViewportSize is right as soon as the content is set.
    const Qt::ScrollBarPolicy policy =
        extent > viewportHeight ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff;
    if (area->verticalScrollBarPolicy() != policy) {
        area->setVerticalScrollBarPolicy(policy);
    }
    QScrollBar* bar = area->verticalScrollBar();
    bar->setPageStep(std::max(viewportHeight, 1));
    // A shorter range clamps the position, and the bar's change scrolls the content back.
    bar->setRange(0, std::max(extent - viewportHeight, 0));
    PlaceContent();
}

void UI_ScrollView::UI_SizeChanged(const kelcore::geom::RectT<float>& /*rect*/) {
    // Qt resizes a hidden widget's viewport only once it is shown; the range need not wait.
    Update();
}

void UI_ScrollView::ScrollTo(float y) {
    if (GetWidget()) {
        area->verticalScrollBar()->setValue(static_cast<int>(std::lround(y)));
    }
}

float UI_ScrollView::GetScrollPosition() const {
    return GetWidget() ? static_cast<float>(area->verticalScrollBar()->value()) : 0.0f;
}

kelcore::geom::PointT<float> UI_ScrollView::GetViewportSize() const {
    if (!GetWidget()) {
        return {};
    }
    // Worked out rather than read from the viewport, which Qt lays out only while shown: the
    // area has no frame and no horizontal bar, so the viewport is all of it but the bar.
    const QSize size = area->size();
    const bool bar = area->verticalScrollBarPolicy() == Qt::ScrollBarAlwaysOn;
    const int barWidth = bar ? area->verticalScrollBar()->sizeHint().width() : 0;
    return {static_cast<float>(std::max(size.width() - barWidth, 0)),
            static_cast<float>(size.height())};
}

void UI_ScrollView::PlaceContent() {
    QWidget* widget = content->GetWidget();
    if (!widget || !GetWidget()) {
        return;
    }
    // The same pixels the node gives its widget, raised by the scroll position.
    const kelcore::geom::RectT<float> rect = content->UI_GetLocalRectF();
    const auto origin = GetOriginInWidget();
    const QRect unscrolled = QRectF(origin.x + rect.x, origin.y + rect.y,
                                    std::max(rect.width, 0.0f), std::max(rect.height, 0.0f))
                                 .toAlignedRect();
    const QPoint target = unscrolled.topLeft() - QPoint(0, area->verticalScrollBar()->value());
    if (widget->pos() != target) {
        widget->move(target);
    }
}

}  // namespace kelui::controls
