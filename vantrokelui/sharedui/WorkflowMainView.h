// The body of a workflow host: a vertical stack of sections with a 1-pixel margin and 1-pixel
// spacing, and a 1-pixel line drawn in those gaps around every visible section, so neighbours
// share one line. Owned by its workflow host for the host's whole life. Main thread.
#pragma once

#include <vantrokelui/sharedui/VStackView.h>

namespace vantrokelui::sharedui {

class WorkflowMainView final : public VStackView {
public:
    WorkflowMainView();

    void UI_Draw(limner::Limner& limner) override;
};

}  // namespace vantrokelui::sharedui
