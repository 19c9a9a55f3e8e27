// A developer's screen (view 1), opened instead of the panel's workflow when the debug database
// asks for it: sign in and out, who is signed in, start a share of the active sequence, clear
// the sequence's stored share settings and trace the panel's state. Its texts are plain, never
// localised: no user sees it. Made by the screen manager for one screen and owned by the section
// that shows it; its bindings end with it. Main thread.
//
//   boost::intrusive_ptr<DebugView> view(new DebugView(viewModel));
//   section->SetContent(view);
#pragma once

#include <memory>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelui/controls/UI_StaticText.h>
#include <kelui/controls/UI_TextButton.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/utility/DataBinding.h>
#include <vantrokelui/view/PopupBaseView.h>

namespace vantrokelui::view {

class DebugView final : public PopupBaseView {
public:
    /// Builds the controls, binds the two sign-in buttons to IsLoggedIn and the name to the
    /// current user's name, and shows itself.
    explicit DebugView(std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel);
    ~DebugView() override;

    /// Always (340, 240).
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;
    /// Places the controls for the new width.
    void UI_SizeChanged(const kelcore::geom::RectT<float>& rect) override;

    // The parts, for tests and for screen readers' order.
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetTitleText() const {
        return titleText;
    }
    const boost::intrusive_ptr<kelui::controls::UI_TextButton>& GetLoginButton() const {
        return loginButton;
    }
    const boost::intrusive_ptr<kelui::controls::UI_TextButton>& GetLogoutButton() const {
        return logoutButton;
    }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetNameLabel() const {
        return nameLabel;
    }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetNameValue() const {
        return nameValue;
    }
    const boost::intrusive_ptr<kelui::controls::UI_TextButton>& GetSendButton() const {
        return sendButton;
    }
    const boost::intrusive_ptr<kelui::controls::UI_TextButton>& GetClearButton() const {
        return clearButton;
    }
    const boost::intrusive_ptr<kelui::controls::UI_TextButton>& GetTraceButton() const {
        return traceButton;
    }

private:
    void OnLoginClicked();
    void OnLogoutClicked();
    void OnSendClicked();
    void OnClearClicked();
    void OnTraceClicked();
    void OnIsLoggedInChanged(bool loggedIn);
    /// Follows the name of each user the view model takes.
    void OnUserChanged(const std::shared_ptr<VantroUser>& user);
    void OnUserNameChanged(const kelcore::string::string& name);

    boost::intrusive_ptr<kelui::controls::UI_StaticText> titleText;
    boost::intrusive_ptr<kelui::controls::UI_TextButton> loginButton;
    boost::intrusive_ptr<kelui::controls::UI_TextButton> logoutButton;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> nameLabel;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> nameValue;
    boost::intrusive_ptr<kelui::controls::UI_TextButton> sendButton;
    boost::intrusive_ptr<kelui::controls::UI_TextButton> clearButton;
    boost::intrusive_ptr<kelui::controls::UI_TextButton> traceButton;
    // The subscription to the present user's name; replaced when the user changes.
    std::shared_ptr<utility::DataBinding> userNameBinding;
};

}  // namespace vantrokelui::view
