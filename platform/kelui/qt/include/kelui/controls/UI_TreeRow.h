// One row of a UI_MultiColumnTree. The tree makes, owns and deletes its rows; owners hold them
// as plain pointers (a row is identified by its address) until they remove it or clear the
// tree. What a row shows is the owner's draw function's business; the row itself only keeps its
// place in the tree, its height and the text that screen readers announce. Main thread.
//
//   UI_TreeRow* folder = tree->CreateAndInsertRow(nullptr);
//   folder->SetHeight(24.0f);
//   folder->SetAccessibleText(u"Projects");
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include <kelcore/string/String.h>

namespace kelui::controls {

namespace detail {
class TreeRowModel;
}

class UI_TreeRow {
public:
    ~UI_TreeRow();
    UI_TreeRow(const UI_TreeRow&) = delete;
    UI_TreeRow& operator=(const UI_TreeRow&) = delete;

    /// Sets the row's height in pixels; the view lays out again. Rows drawn in whole pixels, so
    /// a fractional height takes the next whole pixel on screen.
    void SetHeight(float height);
    float GetHeight() const { return height; }

    /// The row this one is under; null for a top-level row.
    UI_TreeRow* GetParentRow() const;
    /// The rows directly under this one, in order.
    std::vector<UI_TreeRow*> GetChildRows() const;
    /// Whether the row's children are shown. False for a row the view has not taken in yet.
    bool IsOpen() const;

    /// The text screen readers announce for the row; it also serves the view's type-ahead
    /// search.
    void SetAccessibleText(kelcore::string::string_view text);
    const kelcore::string::string& GetAccessibleText() const { return accessibleText; }

private:
    friend class detail::TreeRowModel;

    UI_TreeRow(detail::TreeRowModel& model, UI_TreeRow* parent, float height);

    detail::TreeRowModel& model;
    // The tree's hidden root is the parent of top-level rows; only the root has none.
    UI_TreeRow* parent;
    std::vector<std::unique_ptr<UI_TreeRow>> children;
    // Where the row sits among its parent's children, kept current so that the model answers
    // Qt's parent() queries without searching.
    std::size_t indexInParent = 0;
    float height;
    kelcore::string::string accessibleText;
};

}  // namespace kelui::controls
