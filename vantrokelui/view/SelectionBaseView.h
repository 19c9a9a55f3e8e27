// The base of the location picker's steps that edit the user's proposed location. It keeps the
// user whose ProposedSelection the step edits, and commits that proposal on demand (the shell's
// Choose). Held by the picker shell through boost::intrusive_ptr like every node. Main thread.
//
//   folderPicker->CommitSelection();   // Selection = ProposedSelection, if it holds a folder
#pragma once

#include <memory>

#include <kelui/controls/UI_ControlView.h>

namespace vantrokelui {
class VantroUser;
}

namespace vantrokelui::view {

class SelectionBaseView : public kelui::controls::UI_ControlView {
public:
    /// A step editing `user`'s proposal; `user` may be null (nothing to edit or commit).
    explicit SelectionBaseView(std::shared_ptr<VantroUser> user);
    ~SelectionBaseView() override;

    /// Makes the proposed folder the committed one: when ProposedSelection holds a folder,
    /// Selection is set to it; a null proposal leaves Selection as it is.
    virtual void CommitSelection();

    /// The user whose proposal this step edits; null when nobody is signed in.
    const std::shared_ptr<VantroUser>& GetUser() const { return user; }

protected:
    std::shared_ptr<VantroUser> user;
};

}  // namespace vantrokelui::view
