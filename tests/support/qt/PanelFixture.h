// The common ground of the panel's screen tests: the test's thread as the main thread (pumped),
// the service's address on loopback, an in-memory host sequence injected into the view model and
// the share pipeline, an encoder that records what it is asked to render and to cancel, a window
// with a drawing supplier for the screens, a cloud location tree made by hand, and the measuring
// the screen manager does. Each area's fixture adds what is its own (a connection monitor, a
// service stand-in, debug keys). Header-only; the test's thread, except where a member says
// otherwise.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <QTest>
#include <QWidget>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/debug/DebugDatabase.h>
#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>
#include <kelui/ui/UI_NodeManager.h>
#include <kelui/ui/UI_SubView.h>
#include <vantrokelui/model/EncoderPresetModel.h>
#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/model/ShareModel.h>
#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroProject.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/nodes/VantroWorkspace.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

#include "support/ScopedEnvironmentVariable.h"
#include "support/qt/QtMainThreadFixture.h"
#include "vantrokelui/support/FakeSequenceHost.h"

namespace kelcore::geom {

// Readable failures for the exact rectangles and sizes the layout tests compare.
template <class T>
void PrintTo(const RectT<T>& rect, std::ostream* out) {
    *out << "{" << rect.x << ", " << rect.y << ", " << rect.width << ", " << rect.height << "}";
}
template <class T>
void PrintTo(const PointT<T>& point, std::ostream* out) {
    *out << "{" << point.x << ", " << point.y << "}";
}

}  // namespace kelcore::geom

namespace vantrokelui::view::testing {

using kelcore::string::string;
using ViewID = ShareForReviewViewID;

/// A hand-made location tree: user "ann" / account / workspace / project / root folder /
/// folder. Nothing in it talks to a service.
struct LocalTree {
    std::shared_ptr<VantroUser> user;
    std::shared_ptr<VantroAccount> account;
    std::shared_ptr<VantroWorkspace> workspace;
    std::shared_ptr<VantroProject> project;
    std::shared_ptr<VantroFolder> root;
    std::shared_ptr<VantroFolder> folder;

    static LocalTree Make(const string& accountName = u"Studio",
                          const string& workspaceName = u"Editors",
                          const string& projectName = u"Alpha",
                          const string& folderName = u"Reviews") {
        LocalTree tree;
        tree.user = std::make_shared<VantroUser>();
        tree.user->SetID(kelcore::utility::Guid::CreateUnique());
        tree.user->SetName(u"ann");
        tree.account = std::make_shared<VantroAccount>(tree.user);
        tree.account->SetID(kelcore::utility::Guid::CreateUnique());
        tree.account->SetName(accountName);
        tree.workspace = std::make_shared<VantroWorkspace>(tree.account);
        tree.workspace->SetID(kelcore::utility::Guid::CreateUnique());
        tree.workspace->SetName(workspaceName);
        tree.project = std::make_shared<VantroProject>(tree.workspace);
        tree.project->SetID(kelcore::utility::Guid::CreateUnique());
        tree.project->SetName(projectName);
        tree.root = std::make_shared<VantroFolder>(tree.project);
        tree.root->SetID(kelcore::utility::Guid::CreateUnique());
        tree.root->SetName(u"root");
        tree.folder = std::make_shared<VantroFolder>(tree.root);
        tree.folder->SetID(kelcore::utility::Guid::CreateUnique());
        tree.folder->SetName(folderName);
        tree.root->SetFolders({tree.folder});
        tree.project->SetRootFolder(tree.root);
        tree.workspace->SetProjects({tree.project});
        tree.account->SetWorkspaces({tree.workspace});
        tree.user->SetAccounts({tree.account});
        return tree;
    }
};

/// One call of the host's render function. Any thread.
struct RenderRequest {
    string outputFilePath;
    string jobID;
    string presetPath;
};

class PanelFixture : public testsupport::QtMainThreadFixture {
protected:
    /// A window of 340 by `windowHeight` for the screens.
    explicit PanelFixture(int windowHeight = 300) : windowHeight(windowHeight) {}

    void SetUp() override {
        QtMainThreadFixture::SetUp();
        // On loopback: the connection monitor of the view model looks the address up.
        SetEnvironment("VANTRO_SERVICE_URL", "http://127.0.0.1:9");
        guids = {kelcore::utility::Guid::CreateUnique(), kelcore::utility::Guid::CreateUnique()};
        host = model::testing::FakeSequenceHost::Create();
        host->SetActive(guids);
        model::SetAssetDataMethods(host->GetActiveSequenceFn(), host->GetSequenceValueFn(),
                                   host->SetSequenceValueFn(), host->ClearSequenceValueFn());
        auto log = encoder;
        model::SetAssetProcessingMethod(
            [log](const string& output, const string& jobID, const string& presetPath) {
                const std::lock_guard lock(log->mutex);
                log->renders.push_back({output, jobID, presetPath});
            },
            [log](const string& jobID) {
                const std::lock_guard lock(log->mutex);
                log->cancels.push_back(jobID);
            });
        viewModel = viewmodel::ShareForReviewViewModel::Create();
        viewModel->SetAssetDataMethods(host->GetActiveSequenceFn(), host->GetSequenceValueFn(),
                                       host->SetSequenceValueFn(), host->ClearSequenceValueFn());
        ConfigureViewModel();
        viewModel->SetActiveAssetName(u"Cut 1");

        root->UI_SetDrawSupplier(kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier());
        root->GetWidget()->setGeometry(100, 100, 340, windowHeight);
        root->UI_Show(true);
        root->GetWidget()->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(root->GetWidget()));
        Pump();
    }

    /// Takes every screen out of the window and lets the view model go; the environment set
    /// through SetEnvironment comes back when the fixture ends.
    void TearDown() override {
        for (const auto& child : std::vector(root->GetChildren())) {
            root->ChildRemove(child);
        }
        root.reset();
        viewModel.reset();
        Pump();
        ReleaseServices();
        QtMainThreadFixture::TearDown();
    }

    /// The area's own setup of the new view model (its connection monitor, say), before the
    /// sequence's name is set and the window shown.
    virtual void ConfigureViewModel() {}
    /// Lets go of what the area handed the back end, once the screens and view model are gone
    /// and before the main thread's queue is.
    virtual void ReleaseServices() {}

    /// Puts `view` in the window, delivers its bindings and gives it its recommended size.
    void PutInWindow(const boost::intrusive_ptr<kelui::ui::UI_Node>& view) {
        root->ChildPushBack(view);
        Pump();
        Resize(view);
    }

    /// What the screen manager does when a screen asks for a new size: measures it and sets it.
    static void Resize(const boost::intrusive_ptr<kelui::ui::UI_Node>& view) {
        const auto size = sharedui::GetRecommendedSize(view);
        view->UI_SetLocalRectF({0.0f, 0.0f, size.x, size.y});
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

    static std::shared_ptr<EncoderPresetModel> Preset(const string& name, const string& path,
                                                      const string& extension = u"mp4") {
        auto preset = EncoderPresetModel::Create();
        preset->SetPresetName(name);
        preset->SetPresetPath(path);
        preset->SetExtension(extension);
        return preset;
    }

    /// What a share already made stores with the sequence: the folder, its project and the
    /// link, so that a new share goes straight to the encoder.
    void StoreShare(const kelcore::utility::Guid& folderID, const kelcore::utility::Guid& projectID,
                    kelcore::string::string_view link) {
        const auto set = host->SetSequenceValueFn();
        model::SetSequenceGuid(set, guids.projectGuid, guids.sequenceGuid,
                               model::kUploadFolderGuidKey, folderID);
        model::SetSequenceGuid(set, guids.projectGuid, guids.sequenceGuid,
                               model::kUploadFolderParentProjGuidKey, projectID);
        model::SetSequenceGuid(set, guids.projectGuid, guids.sequenceGuid,
                               model::kReviewLinkGuidKey, kelcore::utility::Guid::CreateUnique());
        model::SetSequenceString(set, guids.projectGuid, guids.sequenceGuid,
                                 model::kReviewLinkURLKey, string(link));
    }

    std::vector<RenderRequest> Renders() const {
        const std::lock_guard lock(encoder->mutex);
        return encoder->renders;
    }
    std::vector<string> Cancels() const {
        const std::lock_guard lock(encoder->mutex);
        return encoder->cancels;
    }

    std::optional<string> Stored(kelcore::string::string_view key) const {
        return host->Find(guids, key);
    }

    ViewID View() const { return viewModel->GetCurrentViewID(); }

    struct EncoderLog {
        std::mutex mutex;
        std::vector<RenderRequest> renders;
        std::vector<string> cancels;
    };

    std::vector<std::unique_ptr<testsupport::ScopedEnvironmentVariable>> environment;
    model::ProcessingGuids guids;
    std::shared_ptr<model::testing::FakeSequenceHost> host;
    std::shared_ptr<EncoderLog> encoder = std::make_shared<EncoderLog>();
    std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel;
    boost::intrusive_ptr<kelui::ui::UI_SubView> root{new kelui::ui::UI_SubView};

private:
    int windowHeight;
};

}  // namespace vantrokelui::view::testing
