// The layout of one child of a stack: the child and the rectangle it gets, in the stack's
// coordinates. A plain record; made fresh by every layout query.
#pragma once

#include <boost/intrusive_ptr.hpp>

#include <kelui/ui/UI_SubView.h>

namespace vantrokelui::sharedui {

struct StackEntry {
    boost::intrusive_ptr<kelui::ui::UI_SubView> child;
    float x = 0.0f;
    float y = 0.0f;
    float width = 0.0f;
    float height = 0.0f;
};

}  // namespace vantrokelui::sharedui
