// The ground of the folder step's tests: the test's thread as the main thread (pumped), the
// debug database and user directories in a temporary directory, a connection monitor that
// reports online, a view model whose user owns a small local tree (account "Studio", workspace
// "Editors", project "Alpha" and its root folder), and a window with a drawing supplier. The
// tests fill folders as a back end would: Folders first, then FetchChildrenState Fetched.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QTest>
#include <QWidget>

#include <kelcore/debug/DebugDatabase.h>
#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>
#include <kelui/ui/UI_NodeManager.h>
#include <kelui/ui/UI_SubView.h>
#include <vantrokelui/model/NetworkConnectionMonitorBase.h>
#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroProject.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/nodes/VantroWorkspace.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/view/FolderPickerView.h>
#include <vantrokelui/view/FolderPickerViewImpl.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

#include "support/ScopedEnvironmentVariable.h"
#include "support/TemporaryDirectory.h"
#include "support/qt/QtMainThreadFixture.h"

namespace vantrokelui::view::testing {

using kelcore::geom::PointT;
using kelcore::geom::RectT;
using kelcore::string::string;
using kelui::controls::UI_TreeRow;

/// A folder of a back end that only counts its fetches; the test answers them.
class CountingFolder final : public VantroFolder {
public:
    using VantroFolder::VantroFolder;
    void FetchChildren() override {
        ++fetches;
        VantroFolder::FetchChildren();
    }
    int fetches = 0;
};

class OnlineMonitor final : public model::NetworkConnectionMonitorBase {
public:
    bool IsConnected() override { return true; }
    void SetConnectionChangedCallback(std::function<void(bool)>) override {}
};

class FolderPickerFixture : public testsupport::QtMainThreadFixture {
protected:
    void SetUp() override {
        QtMainThreadFixture::SetUp();
        const auto home = directory.Path();
        SetEnvironment("KELCORE_DEBUG_DATABASE", (home / "debug.conf").string());
        SetEnvironment("XDG_CONFIG_HOME", (home / "config").string());
        SetEnvironment("XDG_CACHE_HOME", (home / "cache").string());
        SetEnvironment("XDG_DATA_HOME", (home / "data").string());
        SetEnvironment("VANTRO_SERVICE_URL", "http://127.0.0.1:9");

        viewModel = viewmodel::ShareForReviewViewModel::Create();
        viewModel->SetNetworkConnectionMonitor([] { return std::make_shared<OnlineMonitor>(); });

        user = std::make_shared<VantroUser>();
        user->SetID(kelcore::utility::Guid::CreateUnique());
        user->SetName(u"ann");
        account = std::make_shared<VantroAccount>(user);
        account->SetID(kelcore::utility::Guid::CreateUnique());
        account->SetName(u"Studio");
        workspace = std::make_shared<VantroWorkspace>(account);
        workspace->SetID(kelcore::utility::Guid::CreateUnique());
        workspace->SetName(u"Editors");
        project = std::make_shared<VantroProject>(workspace);
        project->SetID(kelcore::utility::Guid::CreateUnique());
        project->SetName(u"Alpha");
        root = std::make_shared<CountingFolder>(project);
        root->SetID(kelcore::utility::Guid::CreateUnique());
        root->SetName(u"Alpha");
        project->SetRootFolder(root);
        workspace->SetProjects({project});
        account->SetWorkspaces({workspace});
        user->SetAccounts({account});
        viewModel->SetUser(user);

        window->UI_SetDrawSupplier(kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier());
        window->GetWidget()->setGeometry(100, 100, 340, 315);
        window->UI_Show(true);
        window->GetWidget()->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window->GetWidget()));
        Pump();
    }

    void TearDown() override {
        if (picker) {
            window->ChildRemove(picker);
            picker.reset();
        }
        window.reset();
        Pump();
        viewModel.reset();
        Pump();
        QtMainThreadFixture::TearDown();
        environment.clear();
    }

    void SetEnvironment(const std::string& name, std::optional<std::string> value) {
        environment.push_back(
            std::make_unique<testsupport::ScopedEnvironmentVariable>(name, std::move(value)));
    }

    /// A folder named `name` under `parent`, not yet in any list.
    static std::shared_ptr<CountingFolder> MakeFolder(const std::shared_ptr<VantroNode>& parent,
                                                      const string& name) {
        auto folder = std::make_shared<CountingFolder>(parent);
        folder->SetID(kelcore::utility::Guid::CreateUnique());
        folder->SetName(name);
        return folder;
    }

    /// Answers a fetch of `folder` as a back end does: the list, then the state.
    static void Fill(const std::shared_ptr<VantroFolder>& folder,
                     const std::vector<std::shared_ptr<CountingFolder>>& children) {
        utility::SharedPtrVector<VantroFolder> list;
        for (const auto& child : children) {
            list.push_back(child);
        }
        folder->SetFolders(list);
        folder->SetFetchChildrenState(FetchChildrenState::Fetched);
    }

    /// The folder step, made and shown in the window at its recommended size, settled.
    boost::intrusive_ptr<FolderPickerViewImpl> ShowPicker() {
        auto made = FolderPickerView::Create(viewModel);
        picker.reset(dynamic_cast<FolderPickerViewImpl*>(made.get()));
        window->ChildPushBack(picker);
        const auto size = sharedui::GetRecommendedSize(picker);
        picker->UI_SetLocalRectF({0.0f, 0.0f, size.x, size.y});
        picker->UI_Show(true);
        Pump();
        return picker;
    }

    /// The folders shown under `row`, in order, by name.
    std::vector<string> ChildNames(UI_TreeRow* row) const {
        std::vector<string> names;
        for (UI_TreeRow* child : row->GetChildRows()) {
            names.push_back(picker->GetFolderForRow(child)->GetName());
        }
        return names;
    }

    testsupport::TemporaryDirectory directory;
    std::vector<std::unique_ptr<testsupport::ScopedEnvironmentVariable>> environment;
    std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel;
    std::shared_ptr<VantroUser> user;
    std::shared_ptr<VantroAccount> account;
    std::shared_ptr<VantroWorkspace> workspace;
    std::shared_ptr<VantroProject> project;
    std::shared_ptr<CountingFolder> root;
    boost::intrusive_ptr<kelui::ui::UI_SubView> window{new kelui::ui::UI_SubView};
    boost::intrusive_ptr<FolderPickerViewImpl> picker;
};

}  // namespace vantrokelui::view::testing
