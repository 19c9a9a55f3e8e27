#include "SectionFunctions.h"

#include <algorithm>

namespace vantrokelui::sharedui::detail {

void InsertSection(WorkflowMainView& mainView,
                   const boost::intrusive_ptr<WorkflowSectionView>& section, std::size_t index) {
    mainView.ChildInsert(section, std::min(index, mainView.ChildCount()));
}

void ShowOnlySection(WorkflowMainView& mainView,
                     const boost::intrusive_ptr<WorkflowSectionView>& section) {
    for (const auto& child : mainView.GetChildren()) {
        if (auto candidate = kelui::ui::NodeCast<WorkflowSectionView>(child)) {
            candidate->UI_Show(!section || candidate == section);
        }
    }
}

}  // namespace vantrokelui::sharedui::detail
