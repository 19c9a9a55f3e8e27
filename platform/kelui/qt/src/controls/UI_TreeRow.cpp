#include <kelui/controls/UI_TreeRow.h>

#include "controls/TreeRowModel.h"

namespace kelui::controls {

UI_TreeRow::UI_TreeRow(detail::TreeRowModel& model, UI_TreeRow* parent, float height)
    : model(model), parent(parent), height(height) {}

UI_TreeRow::~UI_TreeRow() = default;

void UI_TreeRow::SetHeight(float newHeight) {
    if (newHeight == height) {
        return;
    }
    const float oldHeight = height;
    height = newHeight;
    model.RowHeightChanged(*this, oldHeight);
}

UI_TreeRow* UI_TreeRow::GetParentRow() const {
    // The hidden root is nobody's business: top-level rows answer null.
    return parent && parent->parent ? parent : nullptr;
}

std::vector<UI_TreeRow*> UI_TreeRow::GetChildRows() const {
    std::vector<UI_TreeRow*> rows;
    rows.reserve(children.size());
    for (const auto& child : children) {
        rows.push_back(child.get());
    }
    return rows;
}

bool UI_TreeRow::IsOpen() const {
    return model.IsRowOpen(*this);
}

void UI_TreeRow::SetAccessibleText(kelcore::string::string_view text) {
    if (text == accessibleText) {
        return;
    }
    accessibleText = kelcore::string::string(text);
    model.RowTextChanged(*this);
}

}  // namespace kelui::controls
