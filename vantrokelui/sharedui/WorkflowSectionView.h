// One section of a workflow host: holds one view (the screen of the moment) on the panel's
// background. The screen manager replaces the view at each change of screen; the section keeps
// only the present one. Owned by the main view's child list. Main thread.
//
//   auto section = workflow->AddSection(0, emptyView);
//   section->SetContent(newScreen);   // the old screen leaves the tree
#pragma once

#include <functional>
#include <memory>

#include <kelcore/string/String.h>
#include <kelui/ui/ConstMessage.h>
#include <vantrokelui/sharedui/VStackView.h>

namespace vantrokelui::sharedui {

class WorkflowSectionView final : public VStackView {
public:
    /// Wraps `content` (shown and pushed as the only child). `title` and `image` are accepted for
    /// the hosts' calls and not used: a section draws no header of its own.
    WorkflowSectionView(
        boost::intrusive_ptr<kelui::ui::UI_SubView> content, const kelcore::string::string& title,
        const std::shared_ptr<std::function<void(kelui::ui::ConstMessage*)>>& image);

    void UI_Draw(limner::Limner& limner) override;

    virtual boost::intrusive_ptr<kelui::ui::UI_SubView> GetContent();
    /// Replaces the content by `view` (a new empty view when null) and sizes the section to its
    /// recommended size. Setting the present content again removes and pushes it again.
    virtual void SetContent(boost::intrusive_ptr<kelui::ui::UI_SubView> view);

private:
    boost::intrusive_ptr<kelui::ui::UI_SubView> content;
};

}  // namespace vantrokelui::sharedui
