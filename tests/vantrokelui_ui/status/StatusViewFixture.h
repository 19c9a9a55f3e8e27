// The ground of the status screens' tests: the test's thread as the main thread (pumped), the
// debug database, the user's directories and the service's address moved into a temporary
// directory, an in-memory host sequence injected into the view model and the share pipeline, an
// encoder that records what it is asked to render, a connection monitor that reports online,
// and a window with a drawing supplier for the screen. The test's thread.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <QAccessible>
#include <QTest>
#include <QWidget>

#include <kelcore/config/Localizer.h>
#include <kelcore/debug/DebugDatabase.h>
#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>
#include <kelui/ui/QtConversions.h>
#include <kelui/ui/UI_NodeManager.h>
#include <kelui/ui/UI_SubView.h>
#include <vantrokelui/model/NetworkConnectionMonitorBase.h>
#include <vantrokelui/model/ShareModel.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

#include "support/ScopedEnvironmentVariable.h"
#include "support/TemporaryDirectory.h"
#include "support/qt/QtMainThreadFixture.h"
#include "vantrokelui/support/FakeSequenceHost.h"
#include "vantrokelui/support/UserOnlyDatastore.h"

namespace vantrokelui::view::testing {

using kelcore::geom::PointT;
using kelcore::geom::RectT;
using kelcore::string::string;
using ViewID = ShareForReviewViewID;

/// The service's address in every test, so the sign-in links have a known target.
inline constexpr const char* kServiceWebURL = "https://review.example";

/// Reports a connection state the test sets; tells nobody of changes.
class FixedNetworkMonitor final : public model::NetworkConnectionMonitorBase {
public:
    explicit FixedNetworkMonitor(bool connected) : connected(connected) {}
    bool IsConnected() override { return connected; }
    void SetConnectionChangedCallback(std::function<void(bool)>) override {}

private:
    bool connected;
};

/// The one user the datastore stand-in reports in this process: the older client library keeps
/// its first answer for the life of the process, so every test must agree on it.
inline const kelcore::utility::Guid& SignedInUserID() {
    static const kelcore::utility::Guid id = kelcore::utility::Guid::CreateUnique();
    return id;
}

/// The localised text of `keyWithDefault`, as the screens read it.
inline string Localized(const char* keyWithDefault) {
    return kelcore::config::Localizer::Get().GetString(keyWithDefault);
}

/// What a screen reader announces for `node`.
inline string AccessibleName(const boost::intrusive_ptr<kelui::ui::UI_Node>& node) {
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(node->GetWidget());
    if (!accessible) {
        return u"(no accessible interface)";
    }
    return kelui::ui::FromQString(accessible->text(QAccessible::Name));
}

/// One call of the host's render function.
struct RenderRequest {
    string outputFilePath;
    string jobID;
    string presetPath;
};

class StatusViewFixture : public testsupport::QtMainThreadFixture {
protected:
    void SetUp() override {
        QtMainThreadFixture::SetUp();
        const auto home = directory.Path();
        SetEnvironment("KELCORE_DEBUG_DATABASE", (home / "debug.conf").string());
        SetEnvironment("XDG_CONFIG_HOME", (home / "config").string());
        SetEnvironment("XDG_CACHE_HOME", (home / "cache").string());
        SetEnvironment("XDG_DATA_HOME", (home / "data").string());
        // On loopback: the connection monitor of the view model looks the address up.
        SetEnvironment("VANTRO_SERVICE_URL", "http://127.0.0.1:9");
        SetEnvironment("VANTRO_SERVICE_WEB_URL", kServiceWebURL);
        for (const char* key :
             {"VantroNative.UseVantroCppSdk", "VantroNative.SignIn.PolicyLabelVisible",
              "VantroNative.SignIn.AltSigninVisible",
              "UnifiedHeader.ShowVantroNativeShareButtonDebugView"}) {
            SetKey(key, std::nullopt);
        }

        guids = {kelcore::utility::Guid::CreateUnique(), kelcore::utility::Guid::CreateUnique()};
        host = model::testing::FakeSequenceHost::Create();
        host->SetActive(guids);
        model::SetAssetDataMethods(host->GetActiveSequenceFn(), host->GetSequenceValueFn(),
                                   host->SetSequenceValueFn(), host->ClearSequenceValueFn());
        auto log = renders;
        model::SetAssetProcessingMethod(
            [log](const string& output, const string& jobID, const string& presetPath) {
                const std::lock_guard lock(log->mutex);
                log->requests.push_back({output, jobID, presetPath});
            },
            [](const string&) {});

        viewModel = viewmodel::ShareForReviewViewModel::Create();
        viewModel->SetAssetDataMethods(host->GetActiveSequenceFn(), host->GetSequenceValueFn(),
                                       host->SetSequenceValueFn(), host->ClearSequenceValueFn());
        viewModel->SetAssetProcessorInstalledMethod([] { return true; });
        SetConnected(true);
        viewModel->SetActiveAssetName(u"Cut 1");

        root->UI_SetDrawSupplier(kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier());
        root->GetWidget()->setGeometry(100, 100, 340, 300);
        root->UI_Show(true);
        root->GetWidget()->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(root->GetWidget()));
        Pump();
    }

    void TearDown() override {
        if (view) {
            root->ChildRemove(view);
            view.reset();
        }
        root.reset();
        viewModel.reset();
        Pump();
        QtMainThreadFixture::TearDown();
        installation.reset();
        environment.clear();
    }

    /// Signs in and out through the older client library from here on, with a stand-in for its
    /// datastore that reports SignedInUserID as "ann": no browser opens.
    void UseTheDatastore() {
        datastore = std::make_shared<vantrokeluitest::UserOnlyDatastore>();
        datastore->SetCurrentUser(SignedInUserID(), "ann");
        installation =
            std::make_unique<vantrokeluitest::UserOnlyDatastore::Installation>(datastore);
        SetKey("VantroNative.UseVantroCppSdk", "false");
    }

    /// Sets an environment variable for the rest of the test (nullopt unsets it).
    void SetEnvironment(const std::string& name, std::optional<std::string> value) {
        environment.push_back(
            std::make_unique<testsupport::ScopedEnvironmentVariable>(name, std::move(value)));
    }
    /// Sets a debug-database key for the rest of the test (nullopt removes it).
    void SetKey(std::string_view key, std::optional<std::string> value) {
        SetEnvironment(kelcore::debug::DebugDatabase::EnvironmentName(key), std::move(value));
    }

    /// Installs a monitor that reports `connected`, as the platform would.
    void SetConnected(bool connected) {
        viewModel->SetNetworkConnectionMonitor(
            [connected] { return std::make_shared<FixedNetworkMonitor>(connected); });
    }

    /// The screen `View`, made now with the view model as it stands, in the window at its
    /// recommended size, with every delivery of its bindings done.
    template <class View>
    boost::intrusive_ptr<View> MakeView() {
        if (view) {
            root->ChildRemove(view);
        }
        boost::intrusive_ptr<View> made(new View(viewModel));
        view = made;
        root->ChildPushBack(view);
        Pump();
        const auto size = sharedui::GetRecommendedSize(view);
        view->UI_SetLocalRectF({0.0f, 0.0f, size.x, size.y});
        Pump();
        return made;
    }

    std::vector<RenderRequest> Renders() const {
        const std::lock_guard lock(renders->mutex);
        return renders->requests;
    }

    ViewID View() const { return viewModel->GetCurrentViewID(); }

    struct RenderLog {
        std::mutex mutex;
        std::vector<RenderRequest> requests;
    };

    testsupport::TemporaryDirectory directory;
    std::vector<std::unique_ptr<testsupport::ScopedEnvironmentVariable>> environment;
    model::ProcessingGuids guids;
    std::shared_ptr<model::testing::FakeSequenceHost> host;
    std::shared_ptr<RenderLog> renders = std::make_shared<RenderLog>();
    std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel;
    std::shared_ptr<vantrokeluitest::UserOnlyDatastore> datastore;
    std::unique_ptr<vantrokeluitest::UserOnlyDatastore::Installation> installation;
    boost::intrusive_ptr<kelui::ui::UI_SubView> root{new kelui::ui::UI_SubView};
    boost::intrusive_ptr<kelui::ui::UI_SubView> view;
};

}  // namespace vantrokelui::view::testing
