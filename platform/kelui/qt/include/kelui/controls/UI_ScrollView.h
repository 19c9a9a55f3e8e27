// A vertically scrolling area. The scroll view makes one content view, into which its owner
// pushes nodes and whose rectangle (SetContentRect) is the scrolled extent; the platform's
// scroll bar, the wheel and PageUp/PageDown (when the scroll view has focus) move it. Scrolling
// moves only the content's widget inside the viewport: the content view's rectangle stays
// exactly what the owner set, so layout code never sees the scroll position. Main thread.
//
//   boost::intrusive_ptr<UI_ScrollView> scroll(new UI_ScrollView);
//   scroll->GetContentView()->ChildPushBack(list);
//   scroll->SetContentRect({0.0f, 0.0f, width, listHeight});
#pragma once

#include <memory>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelui/controls/UI_ControlView.h>
#include <kelui/ui/UI_SubView.h>

namespace kelui::controls {

namespace detail {
class ScrollViewWidget;
}

class UI_ScrollView : public UI_ControlView {
public:
    /// A scroll view with an empty content view at (0, 0, 0, 0).
    UI_ScrollView();
    ~UI_ScrollView() override;

    /// The content view: a child node of this scroll view, made by it. Never null.
    boost::intrusive_ptr<ui::UI_SubView> GetContentView() const { return content; }
    /// Sets the content view's rectangle, in this view's coordinates, and the scroll range to
    /// its bottom edge.
    void SetContentRect(const kelcore::geom::RectT<float>& rect);
    /// Works the scroll range out again from the content view's rectangle and the viewport,
    /// for after either changed size other than through SetContentRect. A scroll position past
    /// the new end moves back to it.
    void Update();
    /// Scrolls so that content `y` pixels below the content's top edge is at the viewport's
    /// top, clamped to the scroll range and rounded to a whole pixel.
    void ScrollTo(float y);
    /// How far the content is scrolled, in pixels; 0 at the top.
    float GetScrollPosition() const;
    /// The size of the area that shows the content: the view's, less the scroll bar's width
    /// while the content needs one (hidden or shown).
    kelcore::geom::PointT<float> GetViewportSize() const;

    /// Works the scroll range out again for the new size.
    void UI_SizeChanged(const kelcore::geom::RectT<float>& rect) override;

protected:
    QWidget* GetChildWidgetParent() const override;

private:
    // Moves the content widget to where its rectangle and the scroll position put it.
    void PlaceContent();

    detail::ScrollViewWidget* area;  // the node's widget
    boost::intrusive_ptr<ui::UI_SubView> content;
    struct Impl;
    // Destroyed first, so that no signal of the dying widget reaches this view.
    std::unique_ptr<Impl> impl;
};

}  // namespace kelui::controls
