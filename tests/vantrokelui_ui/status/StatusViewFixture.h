// The ground of the status screens' tests, over the panel's common fixture: the debug database,
// the user's directories and the service's web address moved into a temporary directory, the
// encoder reported installed, a connection monitor that reports what the test sets (online at
// first), and the older client library's datastore when a test asks for it. The test's thread.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include <QAccessible>

#include <kelcore/config/Localizer.h>
#include <kelcore/string/String.h>
#include <kelui/ui/QtConversions.h>
#include <kelui/ui/UI_SubView.h>
#include <vantrokelui/model/NetworkConnectionMonitorBase.h>
#include <vantrokelui/nodes/VantroUser.h>

#include "support/TemporaryDirectory.h"
#include "support/qt/PanelFixture.h"
#include "vantrokelui/support/UserOnlyDatastore.h"

namespace vantrokelui::view::testing {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

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

class StatusViewFixture : public PanelFixture {
protected:
    void SetUp() override {
        const auto home = directory.Path();
        SetEnvironment("KELCORE_DEBUG_DATABASE", (home / "debug.conf").string());
        SetEnvironment("XDG_CONFIG_HOME", (home / "config").string());
        SetEnvironment("XDG_CACHE_HOME", (home / "cache").string());
        SetEnvironment("XDG_DATA_HOME", (home / "data").string());
        SetEnvironment("VANTRO_SERVICE_WEB_URL", kServiceWebURL);
        for (const char* key :
             {"VantroNative.UseVantroCppSdk", "VantroNative.SignIn.PolicyLabelVisible",
              "VantroNative.SignIn.AltSigninVisible",
              "UnifiedHeader.ShowVantroNativeShareButtonDebugView"}) {
            SetKey(key, std::nullopt);
        }
        PanelFixture::SetUp();
    }

    void ConfigureViewModel() override {
        viewModel->SetAssetProcessorInstalledMethod([] { return true; });
        SetConnected(true);
    }

    void TearDown() override {
        if (view) {
            root->ChildRemove(view);
            view.reset();
        }
        PanelFixture::TearDown();
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
        PutInWindow(view);
        Pump();
        return made;
    }

    testsupport::TemporaryDirectory directory;
    std::shared_ptr<vantrokeluitest::UserOnlyDatastore> datastore;
    std::unique_ptr<vantrokeluitest::UserOnlyDatastore::Installation> installation;
    boost::intrusive_ptr<kelui::ui::UI_SubView> view;
};

}  // namespace vantrokelui::view::testing
