// The ground of the location picker's tests: the test's thread as the main thread (pumped), an
// in-memory host sequence injected into the view model and the share pipeline, a window with a
// drawing supplier, and a cloud location tree made by hand with two accounts, three workspaces
// (one of them "Shared Projects") and several projects, each with a root folder and one folder
// below it. Nothing talks to a service. The test's thread.
#pragma once

#include <memory>
#include <vector>

#include <QTest>
#include <QWidget>

#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>
#include <kelui/ui/UI_NodeManager.h>
#include <kelui/ui/UI_SubView.h>
#include <vantrokelui/model/ShareModel.h>
#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroProject.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/nodes/VantroWorkspace.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

#include "support/qt/QtMainThreadFixture.h"
#include "vantrokelui/support/FakeSequenceHost.h"

namespace vantrokelui::view::testing {

using kelcore::string::string;
using ViewID = ShareForReviewViewID;

template <class Node, class Parent>
std::shared_ptr<Node> MakeNode(const std::shared_ptr<Parent>& parent, const string& name) {
    auto node = std::make_shared<Node>(parent);
    node->SetID(kelcore::utility::Guid::CreateUnique());
    node->SetName(name);
    return node;
}

/// A project with its root folder and one folder "Cuts" below the root.
struct LocalProject {
    std::shared_ptr<VantroProject> project;
    std::shared_ptr<VantroFolder> root;
    std::shared_ptr<VantroFolder> folder;

    static LocalProject Make(const std::shared_ptr<VantroWorkspace>& workspace,
                             const string& name) {
        LocalProject made;
        made.project = MakeNode<VantroProject>(workspace, name);
        made.root = MakeNode<VantroFolder>(made.project, u"root");
        made.folder = MakeNode<VantroFolder>(made.root, u"Cuts");
        made.root->SetFolders({made.folder});
        made.project->SetRootFolder(made.root);
        return made;
    }
};

/// User "ann" with two accounts:
///   Riverside Studio / Editors: Spring Campaign, Autumn Promo, Documentary
///   Riverside Studio / Shared Projects: Client Teaser
///   Northlight Post / Colour: Feature Grade
/// Lists are given out of order on purpose: the node setters sort them.
struct LocalTree {
    std::shared_ptr<VantroUser> user;
    std::shared_ptr<VantroAccount> studio;
    std::shared_ptr<VantroAccount> northlight;
    std::shared_ptr<VantroWorkspace> editors;
    std::shared_ptr<VantroWorkspace> shared;
    std::shared_ptr<VantroWorkspace> colour;
    LocalProject spring;
    LocalProject autumn;
    LocalProject documentary;
    LocalProject teaser;
    LocalProject feature;

    static LocalTree Make() {
        LocalTree tree;
        tree.user = std::make_shared<VantroUser>();
        tree.user->SetID(kelcore::utility::Guid::CreateUnique());
        tree.user->SetName(u"ann");
        tree.studio = MakeNode<VantroAccount>(tree.user, u"Riverside Studio");
        tree.northlight = MakeNode<VantroAccount>(tree.user, u"Northlight Post");
        tree.editors = MakeNode<VantroWorkspace>(tree.studio, u"Editors");
        tree.shared = MakeNode<VantroWorkspace>(tree.studio, u"Shared Projects");
        tree.colour = MakeNode<VantroWorkspace>(tree.northlight, u"Colour");
        tree.spring = LocalProject::Make(tree.editors, u"Spring Campaign");
        tree.autumn = LocalProject::Make(tree.editors, u"Autumn Promo");
        tree.documentary = LocalProject::Make(tree.editors, u"Documentary");
        tree.teaser = LocalProject::Make(tree.shared, u"Client Teaser");
        tree.feature = LocalProject::Make(tree.colour, u"Feature Grade");
        tree.editors->SetProjects(
            {tree.spring.project, tree.autumn.project, tree.documentary.project});
        tree.shared->SetProjects({tree.teaser.project});
        tree.colour->SetProjects({tree.feature.project});
        tree.studio->SetWorkspaces({tree.shared, tree.editors});
        tree.northlight->SetWorkspaces({tree.colour});
        tree.user->SetAccounts({tree.studio, tree.northlight});
        return tree;
    }
};

class LocationPickerFixture : public testsupport::QtMainThreadFixture {
protected:
    void SetUp() override {
        QtMainThreadFixture::SetUp();
        guids = {kelcore::utility::Guid::CreateUnique(), kelcore::utility::Guid::CreateUnique()};
        host = model::testing::FakeSequenceHost::Create();
        host->SetActive(guids);
        model::SetAssetDataMethods(host->GetActiveSequenceFn(), host->GetSequenceValueFn(),
                                   host->SetSequenceValueFn(), host->ClearSequenceValueFn());
        viewModel = viewmodel::ShareForReviewViewModel::Create();
        viewModel->SetAssetDataMethods(host->GetActiveSequenceFn(), host->GetSequenceValueFn(),
                                       host->SetSequenceValueFn(), host->ClearSequenceValueFn());
        viewModel->SetActiveAssetName(u"Cut 1");
        viewModel->SetCurrentViewID(ViewID::SelectProject);
        tree = LocalTree::Make();
        viewModel->SetUser(tree.user);

        root->UI_SetDrawSupplier(kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier());
        root->GetWidget()->setGeometry(100, 100, 340, 392);
        root->UI_Show(true);
        root->GetWidget()->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(root->GetWidget()));
        Pump();
    }

    void TearDown() override {
        for (const auto& child : std::vector(root->GetChildren())) {
            root->ChildRemove(child);
        }
        root->GetWidget()->hide();
        root.reset();
        viewModel.reset();
        Pump();
        QtMainThreadFixture::TearDown();
    }

    /// `node` in the window at (0, 0) and `size`, with every delivery of its bindings done.
    template <class Node>
    boost::intrusive_ptr<Node> Place(boost::intrusive_ptr<Node> node, float width, float height) {
        root->ChildPushBack(node);
        Pump();
        node->UI_SetLocalRectF({0.0f, 0.0f, width, height});
        Pump();
        return node;
    }

    ViewID View() const { return viewModel->GetCurrentViewID(); }

    model::ProcessingGuids guids;
    std::shared_ptr<model::testing::FakeSequenceHost> host;
    std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel;
    LocalTree tree;
    boost::intrusive_ptr<kelui::ui::UI_SubView> root{new kelui::ui::UI_SubView};
};

}  // namespace vantrokelui::view::testing
