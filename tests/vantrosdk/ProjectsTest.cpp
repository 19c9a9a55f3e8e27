// Workspaces, projects and shared projects against the real server: the records, each
// project's root folder, and the page asked for.
#include <gtest/gtest.h>

#include <vantrocommon/Guid.h>
#include <vantrosdk/GetProjectsByWorkspaceRequest.h>
#include <vantrosdk/GetProjectsByWorkspaceResponse.h>
#include <vantrosdk/GetSharedProjectsRequest.h>
#include <vantrosdk/GetSharedProjectsResponse.h>
#include <vantrosdk/GetWorkspacesByAccountRequest.h>
#include <vantrosdk/GetWorkspacesByAccountResponse.h>
#include <vantrosdk/Projects.h>
#include <vantrosdk/Workspaces.h>

#include "SdkTestSupport.h"

namespace sdktest {
namespace {

using vantrocommon::Guid;

class ProjectsTest : public SdkWorldFixture {};

TEST_F(ProjectsTest, ListsTheWorkspacesOfAnAccount) {
    StartWorld();
    const auto client = Connect(Config());

    const auto response = Await(client->GetWorkspaces()->GetWorkspacesByAccount(
        vantrosdk::GetWorkspacesByAccountRequest(Guid(studio))));

    ASSERT_TRUE(response->IsSuccessful());
    ASSERT_EQ(response->GetWorkspaceList().size(), 1u);
    EXPECT_EQ(response->GetWorkspaceList()[0].id, Guid(editors));
    EXPECT_EQ(response->GetWorkspaceList()[0].name, "Editors");
    EXPECT_EQ(response->GetWorkspaceList()[0].accountId, Guid(studio));
    EXPECT_EQ(response->GetTotalPages(), 1);
}

TEST_F(ProjectsTest, ListsTheProjectsOfAWorkspaceWithTheirRootFolders) {
    StartWorld();
    const auto client = Connect(Config());

    const auto response = Await(client->GetProjects()->GetProjectsByWorkspace(
        vantrosdk::GetProjectsByWorkspaceRequest(Guid(editors))));

    ASSERT_TRUE(response->IsSuccessful());
    ASSERT_EQ(response->GetProjectList().size(), 1u);
    const auto& project = response->GetProjectList()[0];
    EXPECT_EQ(project.id, Guid(alpha));
    EXPECT_EQ(project.name, "Alpha");
    EXPECT_EQ(project.workspaceId, Guid(editors));
    EXPECT_EQ(project.accountId, Guid(studio));
    EXPECT_EQ(project.rootAsset.id, Guid(root));
    EXPECT_EQ(project.rootAsset.name, "Alpha");
    EXPECT_EQ(project.rootAsset.type, "folder");
    EXPECT_EQ(project.rootAsset.projectId, Guid(alpha));
}

TEST_F(ProjectsTest, ListsTheProjectsOfAnAccountSharedWithTheUser) {
    AddUser("bob", "pw-bob");
    const auto other = AdminId(
        {"account", "add", "--name", "Other", "--owner", "bob", "--storage-limit", "1000000"});
    const auto crew =
        AdminId({"team", "add", "--account", other, "--name", "Crew", "--member", "bob"});
    const auto shared = AdminId({"project", "add", "--team", crew, "--name", "Shared"});
    AdminId({"project", "add", "--team", crew, "--name", "Private"});
    StartWorld();
    Admin({"share", "project", "--project", shared, "--user", "ann"});
    const auto client = Connect(Config());
    vantrosdk::GetSharedProjectsRequest request;
    request.SetAccountId(Guid(other));

    const auto response = Await(client->GetProjects()->GetSharedProjects(request));

    ASSERT_TRUE(response->IsSuccessful());
    ASSERT_EQ(response->GetSharedProjectListObject().size(), 1u);
    EXPECT_EQ(response->GetSharedProjectListObject()[0].id, Guid(shared));
    EXPECT_EQ(response->GetSharedProjectListObject()[0].name, "Shared");
    EXPECT_EQ(response->GetSharedProjectListObject()[0].accountId, Guid(other));
}

TEST_F(ProjectsTest, AnswersAWorkspaceTheUserIsNotInWithA404) {
    StartWorld();
    const auto client = Connect(Config());

    const auto response = Await(client->GetProjects()->GetProjectsByWorkspace(
        vantrosdk::GetProjectsByWorkspaceRequest(Guid::CreateUnique())));

    EXPECT_EQ(response->GetHTTPStatusCode(), 404);
    EXPECT_TRUE(response->GetProjectList().empty());
}

}  // namespace
}  // namespace sdktest
