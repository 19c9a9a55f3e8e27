#include <vantrokelui/view/DebugView.h>

#include <kelui/ui/WeakNodeFunction.h>

#include <vantrokelui/model/ShareModel.h>

#include "StatusViewSupport.h"

namespace vantrokelui::view {

using kelcore::geom::PointT;
using kelcore::geom::RectT;
using kelui::controls::UI_StaticText;
using kelui::controls::UI_TextButton;

namespace {

boost::intrusive_ptr<UI_StaticText> MakeText(kelcore::string::string_view text, bool bold) {
    boost::intrusive_ptr<UI_StaticText> control(new UI_StaticText);
    if (bold) {
        control->SetFontStyleName("Bold");
    }
    control->SetText(text);
    control->UI_Show(true);
    return control;
}

boost::intrusive_ptr<UI_TextButton> MakeButton(kelcore::string::string_view text,
                                               std::function<void()> onClick) {
    boost::intrusive_ptr<UI_TextButton> button(new UI_TextButton);
    button->SetFontStyleName("Bold");
    button->SetText(text);
    button->NotifyWhenChanged(std::move(onClick));
    button->UI_Show(true);
    return button;
}

}  // namespace

DebugView::DebugView(std::shared_ptr<viewmodel::ShareForReviewViewModel> model)
    : PopupBaseView(std::move(model)),
      titleText(MakeText(u"Review in Vantro DEBUG view", true)),
      loginButton(
          MakeButton(u"Login", kelui::ui::WeakNodeFunction(this, &DebugView::OnLoginClicked))),
      logoutButton(
          MakeButton(u"Logout", kelui::ui::WeakNodeFunction(this, &DebugView::OnLogoutClicked))),
      nameLabel(MakeText(u"User Name:", true)),
      nameValue(MakeText(u"--empty--", false)),
      sendButton(MakeButton(u"Send to Sarvex",
                            kelui::ui::WeakNodeFunction(this, &DebugView::OnSendClicked))),
      clearButton(MakeButton(u"Clear Sequence Settings",
                             kelui::ui::WeakNodeFunction(this, &DebugView::OnClearClicked))),
      traceButton(MakeButton(u"Trace To Console",
                             kelui::ui::WeakNodeFunction(this, &DebugView::OnTraceClicked))) {
    ChildPushBack(titleText);
    ChildPushBack(loginButton);
    ChildPushBack(logoutButton);
    ChildPushBack(nameLabel);
    ChildPushBack(nameValue);
    ChildPushBack(sendButton);
    ChildPushBack(clearButton);
    ChildPushBack(traceButton);

    bindings.push_back(viewModel->AddIsLoggedInBinding(
        kelui::ui::WeakNodeFunction(this, &DebugView::OnIsLoggedInChanged)));
    bindings.push_back(
        viewModel->AddUserBinding(kelui::ui::WeakNodeFunction(this, &DebugView::OnUserChanged)));
    UI_Show(true);
}

DebugView::~DebugView() = default;

void DebugView::OnLoginClicked() {
    viewModel->Login();
}

void DebugView::OnLogoutClicked() {
    viewModel->Logout();
}

void DebugView::OnSendClicked() {
    model::ProcessAssetForReview();
}

void DebugView::OnClearClicked() {
    viewModel->ClearAllSequenceSettings();
}

void DebugView::OnTraceClicked() {
    viewModel->Debug_TraceToConsole();
}

void DebugView::OnIsLoggedInChanged(bool loggedIn) {
    loginButton->UI_SetDisabled(loggedIn);
    logoutButton->UI_SetEnabled(loggedIn);
}

void DebugView::OnUserChanged(const std::shared_ptr<VantroUser>& user) {
    // Replacing the subscription ends the deliveries of the user before.
    userNameBinding =
        user
            ? user->AddNameBinding(kelui::ui::WeakNodeFunction(this, &DebugView::OnUserNameChanged))
            : nullptr;
}

void DebugView::OnUserNameChanged(const kelcore::string::string& name) {
    nameValue->SetText(name);
}

PointT<float> DebugView::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return {detail::kViewWidth, 240.0f};
}

void DebugView::UI_SizeChanged(const RectT<float>& rect) {
    PopupBaseView::UI_SizeChanged(rect);
    const float width = rect.width;
    titleText->UI_SetLocalRectF({15.0f, 12.0f, width - 30.0f, 20.0f});
    loginButton->UI_SetLocalRectF({15.0f, 52.0f, 60.0f, 24.0f});
    logoutButton->UI_SetLocalRectF({width - 75.0f, 52.0f, 60.0f, 24.0f});
    nameLabel->UI_SetLocalRectF({15.0f, 92.0f, width, 24.0f});
    nameValue->UI_SetLocalRectF({15.0f, 112.0f, width, 24.0f});
    sendButton->UI_SetLocalRectF({15.0f, 152.0f, 120.0f, 24.0f});
    clearButton->UI_SetLocalRectF({width - 135.0f, 152.0f, 120.0f, 24.0f});
    traceButton->UI_SetLocalRectF({15.0f, 192.0f, 150.0f, 24.0f});
}

}  // namespace vantrokelui::view
