#include <vantrokelui/view/ProjectListItem.h>

#include <QEvent>
#include <QKeyEvent>
#include <QObject>
#include <QWidget>

#include <kelui/limner/Path.h>
#include <kelui/skins/Theme.h>
#include <kelui/ui/UI_NodeManager.h>
#include <kelui/ui/UI_WeakNodePtr.h>
#include <kelui/ui/WeakNodeFunction.h>
#include <kelui/utils/FormRoundedRect.h>
#include <vantrokelui/nodes/NodeFunctions.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroProject.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/sharedui/ResourceManager.h>

namespace vantrokelui::view {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

namespace {

constexpr float kRowWidth = 295.0f;
constexpr float kRowHeight = 20.0f;
constexpr float kIconX = 6.13f;
constexpr float kIconWidth = 13.29f;
constexpr float kIconHeight = 13.12f;
constexpr float kNameX = 26.01f;
constexpr float kHighlightRadius = 2.0f;

kelui::skins::Theme ThemeOf(const kelui::ui::UI_Node& node) {
    const auto supplier = node.UI_GetDrawSupplierOrDefault();
    return supplier->GetTheme();
}

}  // namespace

// Keys reach the row's widget, not the node: this filter hands them over while the row lives.
// It is a child of the widget, so it never outlives it.
class ProjectListItem::KeyFilter final : public QObject {
public:
    KeyFilter(ProjectListItem* row, QWidget* widget) : QObject(widget), row(row) {}

    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (event->type() != QEvent::KeyPress) {
            return false;
        }
        const auto locked = row.Lock();
        return locked && locked->OnKey(static_cast<QKeyEvent*>(event)->key());
    }

private:
    kelui::ui::UI_WeakNodePtr<ProjectListItem> row;
};

ProjectListItem::ProjectListItem(std::shared_ptr<VantroProject> project_,
                                 std::weak_ptr<ProposedSelectionNotifyingProperty> proposed,
                                 std::weak_ptr<CurrentViewIDNotifyingProperty> viewID)
    : projectIcon(new kelui::controls::UI_StaticImage),
      nameText(new kelui::controls::UI_StaticText),
      chevronImage(new kelui::controls::UI_StaticImage),
      project(std::move(project_)),
      proposedSelection(std::move(proposed)),
      currentViewID(std::move(viewID)) {
    projectIcon->SetImageSupplyFunction(
        sharedui::BindImageSupplyFunction("S_VantroProjectName_16", &sharedui::GetResourceManager));
    chevronImage->SetImageSupplyFunction(sharedui::BindImageSupplyFunction(
        kelui::skins::IsRunningV7OrBeyond() ? "S_ChevronRight_18" : "S_Chevron_Right_6x8",
        &sharedui::GetResourceManager));
    const kelcore::string::string name = project ? project->GetName() : kelcore::string::string();
    nameText->SetText(name);
    nameText->SetTextAlignment(limner::TextAlignment::Left);
    SetAccessibleName(name);

    ChildPushBack(projectIcon);
    ChildPushBack(nameText);
    ChildPushBack(chevronImage);
    projectIcon->UI_Show(true);
    nameText->UI_Show(true);
    chevronImage->UI_Show(true);

    // A row is a list entry the keyboard can reach, like Qt's item views.
    GetWidget()->setFocusPolicy(Qt::StrongFocus);
    GetWidget()->installEventFilter(new KeyFilter(this, GetWidget()));

    if (const auto property = proposedSelection.lock()) {
        bindings.push_back(property->AddProposedSelectionBinding(
            kelui::ui::WeakNodeFunction(this, &ProjectListItem::OnProposedSelectionChanged)));
    }
    UI_Show(true);
}

ProjectListItem::~ProjectListItem() = default;

PointT<float> ProjectListItem::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return {kRowWidth, kRowHeight};
}

void ProjectListItem::UI_SetLocalRectF(const RectT<float>& rect) {
    UI_ControlView::UI_SetLocalRectF(rect);
    const float w = rect.width;
    const float h = rect.height;
    const bool newSkin = kelui::skins::IsRunningV7OrBeyond();
    projectIcon->UI_SetLocalRectF({kIconX, (h - kIconHeight) / 2.0f, kIconWidth, kIconHeight});
    const float limit = newSkin ? w - 21.0f : w - 14.0f;
    const float rh = sharedui::GetRecommendedSize(nameText).y;
    nameText->UI_SetLocalRectF({kNameX, (h - rh - 2.0f) / 2.0f, limit - 8.0f - kNameX, rh});
    const float ch = newSkin ? 19.0f : 9.0f;
    // The chevron keeps its artwork's own size (18 x 18, or 6 x 8 on the older skin), as the
    // folder step's header does: the picture is scaled into its rectangle, and a 7 x 3 one
    // squashes it out of sight.
    const PointT<float> chevronSize =
        newSkin ? PointT<float>{18.0f, 18.0f} : PointT<float>{6.0f, 8.0f};
    chevronImage->UI_SetLocalRectF({limit, (h - ch) / 2.0f, chevronSize.x, chevronSize.y});
}

bool ProjectListItem::UI_DoPointerEvent(const kelui::ui::PointerEvent& event) {
    switch (event.GetAction()) {
        case kelui::ui::PointerEvent::kEnter:
            SetHovered(true);
            break;
        case kelui::ui::PointerEvent::kLeave:
            SetHovered(false);
            break;
        case kelui::ui::PointerEvent::kDown:
            if (event.GetButton() == 1) {
                Activate();
            }
            break;
        default:
            break;
    }
    return false;
}

void ProjectListItem::Activate() {
    const auto proposed = proposedSelection.lock();
    const auto viewID = currentViewID.lock();
    if (!proposed || !viewID) {
        return;
    }
    // A second visit to the project that holds the proposal keeps the folder chosen there.
    if (!isCurrentProject) {
        proposed->SetProposedSelection(project ? project->GetRootFolder() : nullptr);
    }
    viewID->SetCurrentViewID(ShareForReviewViewID::SelectFolder);
}

void ProjectListItem::UI_Draw(limner::Limner& limner) {
    const RectT<float> rect = UI_GetLocalRectF();
    const bool focused = GetWidget()->hasFocus();
    if (!hovered && !isCurrentProject && !focused) {
        return;
    }
    const kelui::skins::Theme theme = ThemeOf(*this);
    limner::Path path;
    kelui::utils::FormRoundedRect(path, {0.0f, 0.0f, rect.width, rect.height}, kHighlightRadius);
    limner.FillPath(path, kelui::skins::GetPaletteGrayColor(theme, 4));
    if (focused) {
        limner::Path ring;
        kelui::utils::FormRoundedRect(ring, {0.5f, 0.5f, rect.width - 1.0f, rect.height - 1.0f},
                                      kHighlightRadius);
        limner.StrokePath(ring, limner::Pen{1.0f, theme.accent});
    }
}

void ProjectListItem::OnProposedSelectionChanged(const std::shared_ptr<VantroFolder>& folder) {
    const bool current = folder && project && vantrokelui::GetProject(folder) == project;
    if (current != isCurrentProject) {
        isCurrentProject = current;
        UI_Invalidate();
    }
}

void ProjectListItem::SetHovered(bool hover) {
    if (hover == hovered) {
        return;
    }
    hovered = hover;
    if (hovered) {
        nameText->SetTextColor(kelui::skins::GetPaletteGrayColor(ThemeOf(*this), 9));
    } else {
        nameText->SetTextColor(std::nullopt);
    }
    UI_Invalidate();
}

bool ProjectListItem::OnKey(int key) {
    switch (key) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Space:
            Activate();
            return true;
        case Qt::Key_Up:
        case Qt::Key_Down:
            if (!moveFocus) {
                return false;
            }
            moveFocus(*this, key == Qt::Key_Up ? -1 : 1);
            return true;
        default:
            return false;
    }
}

}  // namespace vantrokelui::view
