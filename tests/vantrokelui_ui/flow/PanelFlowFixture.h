// The ground of the panel's end-to-end tests: the real vantro-server on loopback with ann's
// Studio / Editors / Alpha and a folder "Reviews" (ViewModelWorldFixture), the host's side of a
// share (sequences, the test encoder, toasts), and the real panel hanging from the Share button
// in the header of a host window: a popup workflow host, the screen manager, and the view model
// opened by a click on that button, as an editor wires them. The user's steps are real mouse and
// key events on the panel's Qt widgets (offscreen); screenshots of the popup go to the test
// output and to /tmp/keluiqt-shots/e2e/. The test's thread is the main thread; it pumps both
// kelcore's main-thread queue and Qt's events.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <QApplication>
#include <QImage>
#include <QPalette>
#include <QPushButton>
#include <QStyle>
#include <QTest>
#include <QVBoxLayout>
#include <QWidget>

#include <gtest/gtest.h>
#include <boost/json.hpp>

#include <kelappsupport/analytics/UsageEventsCapturedForTesting.h>
#include <kelui/ui/UI_HostWidgetNode.h>
#include <kelui/ui/UI_Node.h>
#include <vantrokelui/sharedui/CreatePopupWorkflow.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/sharedui/PopupManager.h>
#include <vantrokelui/sharedui/ResourceManager.h>
#include <vantrokelui/sharedui/WorkflowSectionView.h>
#include <vantrokelui/utility/SDMLogging.h>
#include <vantrokelui/view/ShareForReviewScreenManager.h>

#include "vantrokelui/viewmodel/ViewModelWorldFixture.h"

namespace vantrokelui::view::testing {

class PanelFlowFixture : public viewmodel::testing::ViewModelWorldFixture {
protected:
    using ViewID = ShareForReviewViewID;

    void SetUp() override {
        ViewModelWorldFixture::SetUp();
        hostWindow = std::make_unique<QWidget>();
        hostWindow->setWindowTitle(QStringLiteral("Editor"));
        hostWindow->setGeometry(100, 80, 900, 560);
        auto* layout = new QVBoxLayout(hostWindow.get());
        headerShareButton = new QPushButton(QStringLiteral("Share"), hostWindow.get());
        headerShareButton->setFixedSize(90, 28);
        layout->addWidget(headerShareButton, 0, Qt::AlignRight | Qt::AlignTop);
        hostWindow->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(hostWindow.get()));
    }

    void TearDown() override {
        QApplication::setPalette(QApplication::style()->standardPalette());
        screens.reset();
        workflow.reset();
        anchor.reset();
        hostWindow.reset();
        SettlePanel();
        ViewModelWorldFixture::TearDown();
    }

    /// The host's wiring of the panel, made once the view model exists: the sequence icon, a
    /// popup workflow hanging from the header's Share button, the screen manager, and the
    /// button's click reporting itself and opening the panel.
    void MakePanel() {
        viewModel->SetAssetTypeIcon(
            sharedui::BindImageSupplyFunction("S_Sequence_16", &sharedui::GetResourceManager));
        workflow = CreatePopupWorkflow();
        // The popup holds its anchor weakly; the host keeps the node for the panel's life.
        anchor.reset(new kelui::ui::UI_HostWidgetNode(headerShareButton));
        workflow->SetAnchorNode(anchor);
        screens = CreateShareForReviewScreenManager(viewModel, workflow);
        const std::weak_ptr<viewmodel::ShareForReviewViewModel> weakModel = viewModel;
        QObject::connect(headerShareButton, &QPushButton::clicked, [weakModel] {
            utility::SDMLogging::LogUnifiedShareButtonClicked();
            if (const auto model = weakModel.lock()) {
                model->StartShareForReviewPopup();
            }
        });
        SettlePanel();
    }

    /// As StartWorldWithViewModel, then a stored token and the panel, opened by the header's
    /// button: the quiet sign-in takes the panel to the share screen. Then the location.
    void StartSignedInPanel() {
        StartWorldWithViewModel();
        StoreToken();
        MakePanel();
        ASSERT_TRUE(ClickWidget(headerShareButton));
        ASSERT_TRUE(PumpPanelUntil([&] {
            return View() == ViewID::ReviewInVantro && viewModel->GetUser()->GetID() != Guid();
        })) << "the quiet sign-in never reached the share screen; the panel shows view "
            << static_cast<int>(View());
        ChooseReviewsAsLocation();
    }

    /// The location step: a click on the share screen's location link opens the picker, and
    /// the picker's project row, folder row and Commit are done on the view model as the
    /// picker does them, since the picker's own screen is not built yet. Ends on the share
    /// screen with "Reviews" chosen.
    void ChooseReviewsAsLocation();

    /// Runs kelcore's queued main-thread tasks and Qt's posted events until neither has
    /// anything left.
    void SettlePanel() {
        for (int round = 0; round < 100; ++round) {
            QApplication::sendPostedEvents();
            QApplication::processEvents();
            if (queue->RunUntilEmpty() == 0) {
                break;
            }
        }
    }

    /// Settles the panel until `done` holds. Between rounds it waits for the next task posted
    /// to the main thread (a few milliseconds at most, since some conditions, such as a file on
    /// the server, announce themselves to nobody). Whether it held within the fixture's bound.
    bool PumpPanelUntil(const std::function<bool()>& done) {
        const auto deadline = std::chrono::steady_clock::now() + kWaitLimit;
        for (;;) {
            SettlePanel();
            if (done()) {
                return true;
            }
            if (std::chrono::steady_clock::now() >= deadline) {
                return false;
            }
            queue->PumpUntil(done, std::chrono::milliseconds(5));
        }
    }

    /// Waits until the view model names `id` and the screen manager has made its screen.
    ::testing::AssertionResult AwaitView(ViewID id) {
        if (!PumpPanelUntil([&] { return View() == id; })) {
            return ::testing::AssertionFailure()
                   << "the panel never showed view " << static_cast<int>(id) << "; it shows view "
                   << static_cast<int>(View());
        }
        SettlePanel();
        return ::testing::AssertionSuccess();
    }

    sharedui::PopupManager& Popup() const {
        return dynamic_cast<sharedui::PopupManager&>(*workflow);
    }
    /// The popup's window; null before the first show.
    QWidget* PopupWindow() const {
        const auto& container = Popup().GetPopupContainer();
        return container ? container->GetWidget() : nullptr;
    }
    bool PopupShown() const {
        const auto& container = Popup().GetPopupContainer();
        return container && container->IsPopupShown();
    }

    /// The screen in the screen manager's section, if it is a `T`.
    template <class T>
    boost::intrusive_ptr<T> Screen() const {
        for (const auto& child : Popup().GetMainView()->GetChildren()) {
            if (const auto section = kelui::ui::NodeCast<sharedui::WorkflowSectionView>(child)) {
                return kelui::ui::NodeCast<T>(section->GetContent());
            }
        }
        return nullptr;
    }

    /// Clicks the middle of `node`'s widget with the left button, as the user does, after
    /// checking that the user can: shown, enabled and wholly inside its window.
    static ::testing::AssertionResult Click(const boost::intrusive_ptr<kelui::ui::UI_Node>& node) {
        if (!node) {
            return ::testing::AssertionFailure() << "there is no such control";
        }
        return ClickWidget(node->GetWidget());
    }
    static ::testing::AssertionResult ClickWidget(QWidget* widget) {
        if (!widget) {
            return ::testing::AssertionFailure() << "the control has no widget";
        }
        const QString name = widget->accessibleName();
        if (!widget->isVisible()) {
            return ::testing::AssertionFailure() << "\"" << name.toStdString() << "\" is hidden";
        }
        if (!widget->isEnabled()) {
            return ::testing::AssertionFailure() << "\"" << name.toStdString() << "\" is disabled";
        }
        const QRect inWindow(widget->mapTo(widget->window(), QPoint(0, 0)), widget->size());
        if (!widget->window()->rect().contains(inWindow)) {
            return ::testing::AssertionFailure()
                   << "\"" << name.toStdString() << "\" is cut off by its window";
        }
        QTest::mouseClick(widget, Qt::LeftButton, {}, widget->rect().center());
        return ::testing::AssertionSuccess();
    }

    /// Esc in the popup, as a user closes it: the popup commits and the panel goes to view 0.
    ::testing::AssertionResult CloseWithEsc() {
        QWidget* window = PopupWindow();
        if (!window || !PopupShown()) {
            return ::testing::AssertionFailure() << "no popup is showing";
        }
        QWidget* focus = window->focusWidget();
        QTest::keyClick(focus ? focus : window, Qt::Key_Escape);
        if (!AwaitView(ViewID::None)) {
            return ::testing::AssertionFailure() << "Esc did not close the panel";
        }
        if (PopupShown()) {
            return ::testing::AssertionFailure() << "the panel closed but its popup stayed";
        }
        return ::testing::AssertionSuccess();
    }

    /// Renders the popup as it is now to flow-`step`.png (with "-dark" for a dark desktop, and
    /// "@2x" at ratio 2) under the test output and /tmp/keluiqt-shots/e2e/.
    void Shoot(const std::string& step, bool dark = false, int ratio = 1);

    /// GET `path` on the API as ann (a token of the test's own); fails the test unless 200.
    boost::json::value ApiGet(const std::string& path) {
        const auto reply = client.Get(Url(path), testsupport::Bearer(Token()));
        EXPECT_EQ(reply.status, 200) << path << ": " << reply.body;
        return reply.status == 200 ? boost::json::parse(reply.body) : boost::json::value();
    }
    /// The children of "Reviews" on the server.
    boost::json::array FolderChildren() {
        const auto children = ApiGet("/v2/assets/" + folder + "/children");
        return children.is_array() ? children.as_array() : boost::json::array();
    }

    /// Each usage event so far as "type/subtype".
    std::vector<std::string> UsageEvents() const {
        std::vector<std::string> names;
        for (const auto& event : events.Events()) {
            names.push_back(event.GetType() + "/" + event.GetSubtype());
        }
        return names;
    }

    kelappsupport::analytics::UsageEventsCapturedForTesting events;
    std::unique_ptr<QWidget> hostWindow;
    QPushButton* headerShareButton = nullptr;  // owned by hostWindow
    boost::intrusive_ptr<kelui::ui::UI_HostWidgetNode> anchor;
    std::shared_ptr<sharedui::WorkflowBase> workflow;
    std::shared_ptr<ShareForReviewScreenManager> screens;
};


/// Makes `account`'s storage in use `used` bytes in the service's database. The service never
/// lets the usage pass the limit itself; a plan lowered under the usage is what this stands for.
void SetStorageUsed(const std::filesystem::path& dataDir, const std::string& account,
                    std::uint64_t used);

/// The text of a JSON string value; empty for anything else.
std::string Text(const boost::json::value& value);

}  // namespace vantrokelui::view::testing
