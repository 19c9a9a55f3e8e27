// What both workflow hosts do alike with the sections of their main view. Private to the hosts;
// main thread.
#pragma once

#include <vantrokelui/sharedui/WorkflowMainView.h>
#include <vantrokelui/sharedui/WorkflowSectionView.h>

namespace vantrokelui::sharedui::detail {

/// Inserts `section` at `index`, or last when the index is past the end.
void InsertSection(WorkflowMainView& mainView,
                   const boost::intrusive_ptr<WorkflowSectionView>& section, std::size_t index);
/// Shows `section` alone among the main view's sections, or all of them for null.
void ShowOnlySection(WorkflowMainView& mainView,
                     const boost::intrusive_ptr<WorkflowSectionView>& section);

}  // namespace vantrokelui::sharedui::detail
