// The tree as the back ends use it: lists written from their threads while the main thread
// walks the tree and receives deliveries, and nodes dying on whichever thread drops them last.
// Meant for the ThreadSanitizer and AddressSanitizer builds as much as for its assertions.
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/string/CaseInsensitive.h>
#include <kelcore/string/String.h>
#include <support/MainThreadFixture.h>
#include <vantrokelui/nodes/NodeFunctions.h>
#include <vantrokelui/nodes/SelectionFunctions.h>
#include <vantrokelui/utility/DataBinding.h>

#include "TestTree.h"

namespace vantrokelui::testing {
namespace {

constexpr int kWriters = 3;
constexpr int kRounds = 150;

class NodeConcurrencyTest : public testsupport::MainThreadFixture {};

bool SortedByName(const std::vector<string>& names) {
    return std::is_sorted(names.begin(), names.end(), [](const string& a, const string& b) {
        return kelcore::string::CaseInsensitive::NaturalStringLessThan(a, b);
    });
}

TEST_F(NodeConcurrencyTest, SdkThreadsReplaceTheTreeWhileTheMainThreadWalksIt) {
    std::shared_ptr<VantroUser> user;
    std::shared_ptr<VantroFolder> shared;
    {
        StudioTree tree;
        user = tree.user;
        shared = tree.cuts;
    }

    std::vector<std::string> paths;
    std::vector<std::vector<string>> folderLists;
    std::vector<std::shared_ptr<utility::DataBinding>> bindings;
    bindings.push_back(user->AddSelectionPathBinding(
        [&](const string& path) { paths.push_back(kelcore::string::UTF16toStdString(path)); }));
    bindings.push_back(
        shared->AddFoldersBinding([&](const utility::SharedPtrVector<VantroFolder>& folders) {
            folderLists.push_back(Names(folders));
        }));

    std::atomic<int> finished{0};
    std::vector<std::thread> writers;
    for (int writer = 0; writer < kWriters; ++writer) {
        writers.emplace_back([&, writer] {
            std::mt19937 random(static_cast<unsigned>(writer));
            for (int round = 0; round < kRounds; ++round) {
                // A whole new account below the user, as a re-fetch brings: the old accounts
                // and everything below them die when the last holder lets go.
                auto account = MakeNode<VantroAccount>(user, u"Studio");
                auto workspace = MakeNode<VantroWorkspace>(account, u"Team");
                auto project = MakeNode<VantroProject>(workspace, u"Promo");
                auto root = MakeNode<VantroFolder>(project, u"Promo");
                auto cuts = MakeNode<VantroFolder>(root, u"Cuts");
                root->SetFolders(List({cuts}));
                project->SetRootFolder(root);
                workspace->SetProjects(List({project}));
                account->SetWorkspaces(List({workspace}));
                user->SetAccounts(List({account}));
                user->SetSelection(cuts);

                utility::SharedPtrVector<VantroFolder> children;
                for (int i = 0; i < 8; ++i) {
                    children.push_back(MakeNode<VantroFolder>(
                        shared,
                        u"Shot " + std::u16string(1, static_cast<char16_t>(u'A' + random() % 26))));
                }
                shared->SetFolders(children);
                shared->SetFiles(List({MakeNode<VantroFile>(shared, u"take.mov")}));
            }
            finished.fetch_add(1);
        });
    }

    std::size_t walks = 0;
    while (finished.load() < kWriters) {
        Pump();
        const std::string path =
            kelcore::string::UTF16toStdString(MakeSelectionPath(user->GetSelection()));
        EXPECT_TRUE(path == "Studio/Team/Promo/Cuts" || path == "/") << path;
        for (const auto& account : user->GetChildren()) {
            static_cast<void>(user->FindNode(account->GetID()));
            static_cast<void>(GetProject(account));
        }
        EXPECT_LE(shared->GetChildren().size(), 9u);
        ++walks;
        std::this_thread::yield();
    }
    for (std::thread& thread : writers) {
        thread.join();
    }
    Pump();

    EXPECT_GT(walks, 0u);
    ASSERT_FALSE(paths.empty());
    for (const std::string& path : paths) {
        // "/" when another writer's new accounts had already replaced the selection's.
        EXPECT_TRUE(path.empty() || path == "Studio/Team/Promo/Cuts" || path == "/") << path;
    }
    ASSERT_GT(folderLists.size(), 1u);
    for (const std::vector<string>& names : folderLists) {
        EXPECT_TRUE(names.empty() || names.size() == 8u);
        EXPECT_TRUE(SortedByName(names));
    }
    EXPECT_EQ(user->GetAccounts().size(), 1u);
    EXPECT_EQ(shared->GetFolders().size(), 8u);
}

TEST_F(NodeConcurrencyTest, RenamesOnAnotherThreadDuringSortsAreHarmless) {
    auto folder = std::make_shared<VantroFolder>(std::weak_ptr<VantroNode>());
    utility::SharedPtrVector<VantroFolder> children;
    for (int i = 0; i < 64; ++i) {
        children.push_back(MakeNode<VantroFolder>(
            folder, u"Clip " + std::u16string(1, static_cast<char16_t>(u'0' + i % 10))));
    }

    std::atomic<bool> stop{false};
    std::thread renamer([&] {
        std::mt19937 random(7);
        while (!stop.load()) {
            auto& child = children[random() % children.size()];
            child->SetName(string(u"clip ") + static_cast<char16_t>(u'0' + random() % 10));
        }
    });
    std::thread sorter([&] {
        std::mt19937 random(11);
        utility::SharedPtrVector<VantroFolder> order = children;
        for (int round = 0; round < 300; ++round) {
            std::shuffle(order.begin(), order.end(), random);
            folder->SetFolders(order);
            EXPECT_EQ(folder->GetFolders().size(), children.size());
        }
        stop.store(true);
    });
    while (!stop.load()) {
        Pump();
        std::this_thread::yield();
    }
    sorter.join();
    renamer.join();

    // With the names still, a write sorts them fully.
    std::vector<std::shared_ptr<VantroFolder>> reversed(children.rbegin(), children.rend());
    folder->SetFolders(utility::SharedPtrVector<VantroFolder>(reversed.begin(), reversed.end()));
    const auto stored = folder->GetFolders();
    ASSERT_EQ(stored.size(), children.size());
    EXPECT_TRUE(SortedByName(Names(stored)));
    for (const auto& child : children) {
        EXPECT_NE(std::find(stored.begin(), stored.end(), child), stored.end());
    }
}

}  // namespace
}  // namespace vantrokelui::testing
