// The folder step's implementation: the project's folders in a UI_MultiColumnTree, filled one
// level ahead of the user (opening a row fetches its children's children, so every row knows
// whether it has children before it is opened), following each bound Folders list as pages
// arrive and as folders go. Rows are matched to folders by the folder's identity, so a row keeps
// its opening and selection across re-deliveries. Made by FolderPickerView::Create and owned by
// the picker shell; the nodes outlive it and its bindings end with it. Main thread.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <vector>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelui/controls/UI_MultiColumnTree.h>
#include <kelui/controls/UI_TreeRow.h>
#include <kelui/limner/ImageInterface.h>
#include <kelui/limner/Limner.h>
#include <vantrokelui/utility/DataBindingTarget.h>
#include <vantrokelui/utility/NotifyingProperty.h>
#include <vantrokelui/view/FolderPickerHeaderView.h>
#include <vantrokelui/view/FolderPickerView.h>

namespace vantrokelui {
class VantroFolder;
}

namespace vantrokelui::view {

class FolderPickerViewImpl final : public FolderPickerView, public utility::DataBindingTarget {
public:
    /// The folder step of `viewModel`'s present user; empty until shown.
    explicit FolderPickerViewImpl(
        const std::shared_ptr<viewmodel::ShareForReviewViewModel>& viewModel);
    ~FolderPickerViewImpl() override;

    /// Enter (or a double click on a row without children) then runs `choose`.
    void SetChooseFunction(std::function<void()> choose) override;

    /// (340, 315): the room between the picker's two dividers.
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;
    /// Header on top (50 high), the tree below it.
    void UI_SizeChanged(const kelcore::geom::RectT<float>& rect) override;

    const boost::intrusive_ptr<FolderPickerHeaderView>& GetHeader() const { return header; }
    const boost::intrusive_ptr<kelui::controls::UI_MultiColumnTree>& GetTree() const {
        return tree;
    }
    /// The row showing `folder`; null when it has none.
    kelui::controls::UI_TreeRow* GetRowForFolder(const VantroFolder* folder) const;
    /// The folder `row` shows; null for an unknown row.
    std::shared_ptr<VantroFolder> GetFolderForRow(kelui::controls::UI_TreeRow* row) const;
    /// The project's root folder's row; null while nothing is built.
    kelui::controls::UI_TreeRow* GetRootRow() const { return rootRow; }

protected:
    /// Builds the tree each time the step goes from hidden to shown.
    void ApplyVisibility() override;

private:
    struct FolderRow {
        kelui::controls::UI_TreeRow* row = nullptr;
        kelui::controls::UI_TreeRow* parentRow = nullptr;
    };

    std::shared_ptr<VantroFolder> GetCurrentFolder() const;
    void Rebuild();
    void FillHeader(const std::shared_ptr<VantroFolder>& folder);
    kelui::controls::UI_TreeRow* AddFolderRow(const std::shared_ptr<VantroFolder>& folder,
                                              int position = -1);
    void RemoveFolderRow(kelui::controls::UI_TreeRow* row);
    void FetchFolderChildren(const std::shared_ptr<VantroFolder>& folder);
    void OnFoldersChanged(const utility::SharedPtrVector<VantroFolder>& folders);
    void OnSelectionChanged(const std::vector<kelui::controls::UI_TreeRow*>& selected);
    void OnRowExpanded(kelui::controls::UI_TreeRow* row, bool opened);
    void OnRowActivated(kelui::controls::UI_TreeRow* row);
    void DrawRow(limner::Limner* limner, kelui::controls::UI_TreeRow* row, int column,
                 kelcore::geom::RectT<float> rect);

    boost::intrusive_ptr<FolderPickerHeaderView> header;
    std::map<const VantroFolder*, FolderRow> rowsByFolder;
    std::map<kelui::controls::UI_TreeRow*, std::shared_ptr<VantroFolder>> foldersByRow;
    boost::intrusive_ptr<kelui::controls::UI_MultiColumnTree> tree;
    kelui::controls::UI_TreeRow* rootRow = nullptr;
    boost::intrusive_ptr<limner::ImageInterface> folderImage;
    std::function<void()> choose;
    bool builtWhileShown = false;
};

}  // namespace vantrokelui::view
