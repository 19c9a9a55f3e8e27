// The workflow host that shows the panel as a lightweight popup hanging from a node of the
// host's header. The popup window is made at the first show and kept for later ones; the user
// closes it by clicking outside or pressing Esc, which runs the commit callbacks. Owned by the
// host (and the screen manager) through WorkflowBase; main thread.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <kelui/controls/UI_TouchPopupContainer.h>
#include <kelui/ui/UI_WeakNodePtr.h>
#include <vantrokelui/sharedui/WorkflowBase.h>
#include <vantrokelui/sharedui/WorkflowMainView.h>

namespace vantrokelui::sharedui {

class PopupManager final : public WorkflowBase {
public:
    enum Placement : std::uint32_t {
        BelowAnchor = 0,       ///< right edges aligned, top 4 below the anchor's bottom
        CenteredOnAnchor = 1,  ///< centred over the anchor in both axes
        AtPosition = 2,        ///< top left at the position given with SetPopupPosition
    };

    PopupManager();
    ~PopupManager() override;

    void SetPopupPosition(kelcore::geom::PointT<float> position) override;
    boost::intrusive_ptr<WorkflowSectionView> AddSection(
        std::size_t index, boost::intrusive_ptr<kelui::ui::UI_SubView> view) override;
    void ShowSection(boost::intrusive_ptr<WorkflowSectionView> section) override;
    /// Does nothing while the anchor is dead.
    void ShowWorkflow() override;
    void AddCommitCallback(std::function<void()> callback) override;
    void HideWorkflow() override;
    /// Does nothing: a popup has no dialog buttons.
    void SetDialogButtons(boost::intrusive_ptr<kelui::ui::UI_Node> view,
                          const std::string& cancelNodeID,
                          const std::string& commitNodeID) override;
    void SetAnchorNode(boost::intrusive_ptr<kelui::ui::UI_Node> node) override;
    /// Returns at once before the first show or while the anchor is dead.
    void UpdateLayout() override;

    /// Chooses the placement; a value outside Placement puts the top left at (0, 0). The library
    /// never calls it, so BelowAnchor holds unless a host asks otherwise.
    void SetPlacement(std::uint32_t mode) { placementMode = mode; }

    const boost::intrusive_ptr<WorkflowMainView>& GetMainView() const { return mainView; }
    /// The popup window; null until the first show.
    const boost::intrusive_ptr<kelui::controls::UI_TouchPopupContainer>& GetPopupContainer() const {
        return popupContainer;
    }

private:
    boost::intrusive_ptr<WorkflowMainView> mainView;
    boost::intrusive_ptr<kelui::controls::UI_TouchPopupContainer> popupContainer;
    kelui::ui::UI_WeakNodePtr<kelui::ui::UI_Node> anchorNode;
    std::vector<std::shared_ptr<std::function<void()>>> commitCallbacks;
    std::uint32_t placementMode = BelowAnchor;
    kelcore::geom::PointT<float> popupPosition{};
};

}  // namespace vantrokelui::sharedui
