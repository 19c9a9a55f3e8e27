#include <vantrokelui/view/FolderPickerViewImpl.h>

#include <algorithm>
#include <set>
#include <utility>

#include <kelui/limner/WidgetDrawingSupplier.h>
#include <kelui/skins/Theme.h>
#include <kelui/ui/UI_NodeManager.h>
#include <kelui/ui/WeakNodeFunction.h>
#include <kelui/utility/ImageProvider.h>
#include <vantrokelui/nodes/NodeFunctions.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroProject.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/nodes/VantroWorkspace.h>
#include <vantrokelui/sharedui/ResourceManager.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

namespace vantrokelui::view {

namespace {

using kelcore::geom::PointT;
using kelcore::geom::RectT;
using kelui::controls::UI_TreeRow;

constexpr float kRowHeight = 22.0f;
constexpr float kHeaderHeight = 50.0f;
constexpr float kIconSize = 16.0f;
constexpr float kIconTextGap = 5.0f;

kelui::skins::Theme ThemeOf(const kelui::ui::UI_Node& node) {
    const auto supplier = node.UI_GetDrawSupplierOrDefault();
    return supplier ? supplier->GetTheme() : kelui::skins::Theme{};
}

// A project's root folder may come without a name; the row then shows the project's.
kelcore::string::string RowName(const VantroFolder& folder) {
    kelcore::string::string name = folder.GetName();
    if (name.empty()) {
        if (const auto project = std::dynamic_pointer_cast<VantroProject>(folder.GetParent())) {
            name = project->GetName();
        }
    }
    return name;
}

}  // namespace

boost::intrusive_ptr<FolderPickerView> FolderPickerView::Create(
    const std::shared_ptr<viewmodel::ShareForReviewViewModel>& viewModel) {
    return boost::intrusive_ptr<FolderPickerView>(new FolderPickerViewImpl(viewModel));
}

FolderPickerViewImpl::FolderPickerViewImpl(
    const std::shared_ptr<viewmodel::ShareForReviewViewModel>& viewModel)
    : FolderPickerView(viewModel ? viewModel->GetUser() : nullptr),
      header(new FolderPickerHeaderView(std::weak_ptr<CurrentViewIDNotifyingProperty>(viewModel))) {
    tree = new kelui::controls::UI_MultiColumnTree(
        kelui::ui::WeakNodeFunction(this, &FolderPickerViewImpl::DrawRow),
        kelui::ui::WeakNodeFunction(this, &FolderPickerViewImpl::OnSelectionChanged),
        kelui::ui::WeakNodeFunction(this, &FolderPickerViewImpl::OnRowExpanded));
    sharedui::GetResourceManager();  // registers the library's icons as the theme's images
    folderImage = kelui::utility::ImageProvider::GetThemeImage("VantroFolder_Sm");
    header->UI_Show(true);
    tree->UI_Show(true);
    ChildPushBack(header);
    ChildPushBack(tree);
}

FolderPickerViewImpl::~FolderPickerViewImpl() = default;

void FolderPickerViewImpl::SetChooseFunction(std::function<void()> function) {
    choose = std::move(function);
    if (choose) {
        tree->SetActivateFunction(
            kelui::ui::WeakNodeFunction(this, &FolderPickerViewImpl::OnRowActivated));
    } else {
        tree->SetActivateFunction(nullptr);
    }
}

PointT<float> FolderPickerViewImpl::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return {340.0f, 315.0f};
}

void FolderPickerViewImpl::UI_SizeChanged(const RectT<float>& rect) {
    FolderPickerView::UI_SizeChanged(rect);
    // Children are placed in the view's own coordinates.
    const float w = rect.width;
    const float h = rect.height;
    header->UI_SetLocalRectF({0.0f, 0.0f, w, kHeaderHeight});
    // Two pixels more, so that the tree's last line sits under the picker's bottom divider.
    tree->UI_SetLocalRectF({0.0f, kHeaderHeight, w, h - kHeaderHeight + 2.0f});
    tree->Refresh();
}

void FolderPickerViewImpl::ApplyVisibility() {
    FolderPickerView::ApplyVisibility();
    const bool shown = UI_IsShown();
    if (shown && !builtWhileShown) {
        Rebuild();
    }
    builtWhileShown = shown;
}

UI_TreeRow* FolderPickerViewImpl::GetRowForFolder(const VantroFolder* folder) const {
    const auto found = rowsByFolder.find(folder);
    return found == rowsByFolder.end() ? nullptr : found->second.row;
}

std::shared_ptr<VantroFolder> FolderPickerViewImpl::GetFolderForRow(UI_TreeRow* row) const {
    const auto found = foldersByRow.find(row);
    return found == foldersByRow.end() ? nullptr : found->second;
}

std::shared_ptr<VantroFolder> FolderPickerViewImpl::GetCurrentFolder() const {
    if (!user) {
        return nullptr;
    }
    if (auto proposed = user->GetProposedSelection()) {
        return proposed;
    }
    return user->GetSelection();
}

void FolderPickerViewImpl::Rebuild() {
    tree->Clear();
    rowsByFolder.clear();
    foldersByRow.clear();
    rootRow = nullptr;

    const std::shared_ptr<VantroFolder> current = GetCurrentFolder();
    if (!current) {
        return;
    }
    FillHeader(current);
    const std::shared_ptr<VantroProject> project = GetProject(current);
    const std::shared_ptr<VantroFolder> root = project ? project->GetRootFolder() : nullptr;
    if (!root) {
        return;
    }
    rootRow = AddFolderRow(root);
    tree->LayoutAfterAppendRow();
    tree->Refresh();
    // The root's own children must be known for its disclosure triangle to appear.
    FetchFolderChildren(root);

    UI_TreeRow* row = GetRowForFolder(current.get());
    if (!row) {
        // A re-fetch may have replaced the folder object: identity in the tree is by id.
        if (const auto found =
                std::dynamic_pointer_cast<VantroFolder>(root->FindNode(current->GetID()))) {
            row = GetRowForFolder(found.get());
        }
    }
    if (!row) {
        return;
    }
    if (row != rootRow) {
        std::vector<UI_TreeRow*> chain;
        for (UI_TreeRow* above = row->GetParentRow(); above; above = above->GetParentRow()) {
            chain.push_back(above);
        }
        // From the top down, so that each row opens inside an open parent.
        for (auto above = chain.rbegin(); above != chain.rend(); ++above) {
            tree->OpenRow(*above);
        }
    }
    tree->SelectRow(row);
    tree->ScrollRowIntoView(row, false);
}

void FolderPickerViewImpl::FillHeader(const std::shared_ptr<VantroFolder>& folder) {
    const auto project = GetProject(folder);
    const auto workspace = GetWorkspace(folder);
    header->SetNames(project ? project->GetName() : kelcore::string::string(),
                     workspace ? workspace->GetName() : kelcore::string::string());
}

UI_TreeRow* FolderPickerViewImpl::AddFolderRow(const std::shared_ptr<VantroFolder>& folder,
                                               int position) {
    UI_TreeRow* parentRow = nullptr;
    if (const auto parent = folder->GetParent()) {
        if (const auto found = rowsByFolder.find(dynamic_cast<VantroFolder*>(parent.get()));
            found != rowsByFolder.end()) {
            parentRow = found->second.row;
        }
    }
    UI_TreeRow* row = tree->CreateAndInsertRow(parentRow, position);
    row->SetHeight(kRowHeight);
    row->SetAccessibleText(RowName(*folder));
    rowsByFolder[folder.get()] = FolderRow{row, parentRow};
    foldersByRow[row] = folder;
    // What is known already shows at once, at every depth.
    if (folder->GetFetchChildrenState() == FetchChildrenState::Fetched) {
        for (const auto& child : folder->GetFolders()) {
            AddFolderRow(child);
        }
    }
    return row;
}

void FolderPickerViewImpl::RemoveFolderRow(UI_TreeRow* row) {
    // The tree deletes the whole branch: forget every row in it first.
    std::vector<UI_TreeRow*> pending{row};
    while (!pending.empty()) {
        UI_TreeRow* next = pending.back();
        pending.pop_back();
        for (UI_TreeRow* child : next->GetChildRows()) {
            pending.push_back(child);
        }
        if (const auto found = foldersByRow.find(next); found != foldersByRow.end()) {
            rowsByFolder.erase(found->second.get());
            foldersByRow.erase(found);
        }
    }
    if (row == rootRow) {
        rootRow = nullptr;
    }
    tree->RemoveRow(row);
}

void FolderPickerViewImpl::FetchFolderChildren(const std::shared_ptr<VantroFolder>& folder) {
    if (!folder || folder->GetFetchChildrenState() != FetchChildrenState::NotFetched) {
        return;
    }
    bindings.push_back(folder->AddFoldersBinding(
        kelui::ui::WeakNodeFunction(this, &FolderPickerViewImpl::OnFoldersChanged)));
    folder->FetchChildren();
}

void FolderPickerViewImpl::OnFoldersChanged(const utility::SharedPtrVector<VantroFolder>& folders) {
    if (folders.empty()) {
        return;
    }
    const std::vector<UI_TreeRow*> selected = tree->GetSelectedRows();

    const std::shared_ptr<VantroNode> parent = folders.front()->GetParent();
    const auto parentEntry = rowsByFolder.find(dynamic_cast<VantroFolder*>(parent.get()));
    if (!parent || parentEntry == rowsByFolder.end()) {
        return;  // a folder this tree does not show (any more)
    }
    UI_TreeRow* parentRow = parentEntry->second.row;

    // Rows are matched to folders by identity, so kept rows keep their state.
    const std::set<const VantroFolder*> incoming = [&folders] {
        std::set<const VantroFolder*> set;
        for (const auto& folder : folders) {
            set.insert(folder.get());
        }
        return set;
    }();
    for (UI_TreeRow* child : parentRow->GetChildRows()) {
        const auto found = foldersByRow.find(child);
        if (found == foldersByRow.end() || !incoming.count(found->second.get())) {
            RemoveFolderRow(child);
        }
    }
    std::vector<std::shared_ptr<VantroFolder>> added;
    int position = 0;
    for (const auto& folder : folders) {
        if (!rowsByFolder.count(folder.get())) {
            // At its place in the list, which the property keeps sorted by name.
            AddFolderRow(folder, position);
            added.push_back(folder);
        }
        ++position;
    }
    // New rows under an open row are in sight: keep one level ahead of them too.
    if (parentRow->IsOpen()) {
        for (const auto& folder : added) {
            FetchFolderChildren(folder);
        }
    }

    tree->LayoutAfterAppendRow();
    for (UI_TreeRow* row : tree->GetSelectedRows()) {
        if (std::find(selected.begin(), selected.end(), row) != selected.end()) {
            tree->ScrollRowIntoView(row, false);
        }
    }
    tree->Refresh();
}

void FolderPickerViewImpl::OnSelectionChanged(const std::vector<UI_TreeRow*>& selected) {
    if (selected.size() != 1 || !user) {
        return;
    }
    if (const auto folder = GetFolderForRow(selected.front())) {
        user->SetProposedSelection(folder);
    }
}

void FolderPickerViewImpl::OnRowExpanded(UI_TreeRow* row, bool opened) {
    if (!opened || !row) {
        return;
    }
    const std::vector<UI_TreeRow*> children = row->GetChildRows();
    if (children.empty()) {
        return;
    }
    // Last child first, then the row itself: as many children as fit come into view.
    tree->ScrollRowIntoView(children.back(), false);
    tree->ScrollRowIntoView(row, true);
    for (UI_TreeRow* child : children) {
        FetchFolderChildren(GetFolderForRow(child));
    }
}

void FolderPickerViewImpl::OnRowActivated(UI_TreeRow* row) {
    if (!choose || !GetFolderForRow(row)) {
        return;
    }
    // Enter commits what is selected now, exactly as the picker's Choose does.
    const auto function = choose;
    function();
}

void FolderPickerViewImpl::DrawRow(limner::Limner* limner, UI_TreeRow* row, int /*column*/,
                                   RectT<float> rect) {
    const auto folder = GetFolderForRow(row);
    if (!limner || !folder) {
        return;
    }
    const kelui::skins::Theme theme = ThemeOf(*tree);
    if (folderImage) {
        limner->DrawImage(*folderImage, {rect.x, rect.y + (rect.height - kIconSize) / 2.0f,
                                         kIconSize, kIconSize});
    }
    const float textX = rect.x + kIconSize + kIconTextGap;
    limner->DrawText(
        RowName(*folder),
        {textX, rect.y, std::max(0.0f, rect.x + rect.width - textX - 4.0f), rect.height},
        limner::FontDescription{}, theme.text, limner::TextAlignment::Left,
        limner::TextTruncation::End);
}

}  // namespace vantrokelui::view
