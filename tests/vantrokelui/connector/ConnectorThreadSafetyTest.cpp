// Listings of several folders in flight on real threads while nodes die: the queue pumps on the
// IO-bound pool, the SDK completes its futures there too (over the in-memory service), the test
// and a second thread start listings and walk the tree, and half of the folders are dropped
// while their records wait or fly. Meant for the ThreadSanitizer build, where any unordered
// access of the queue's or the nodes' fields is reported; in the other builds it checks that
// the survivors get every child and that every node, and the queue, die in the end.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include <kelcore/threads/Executors.h>
#include <vantrokelui/model/connector/FetchFolderChildrenQueue.h>
#include <vantrokelui/model/connector/VantroSdkFolder.h>
#include <vantrokelui/nodes/VantroFile.h>
#include <vantrokelui/nodes/VantroVersionStack.h>

#include "ConnectorTestSupport.h"
#include "support/AwaitFuture.h"
#include "support/MainThreadFixture.h"

namespace {

using connectortest::FakeService;
using vantrokelui::FetchChildrenState;
using vantrokelui::VantroNode;
namespace integration = vantrokelui::model::VantroConnectorIntegration;

class ConnectorThreadSafetyTest : public testsupport::MainThreadFixture {
protected:
    void SetUp() override {
        MainThreadFixture::SetUp();
        ASSERT_TRUE(
            connectortest::ConnectFakeClient(service, kelcore::threads::GetIOBoundExecutor()));
    }
    void TearDown() override {
        connectortest::DisconnectClient();
        MainThreadFixture::TearDown();
    }

    static std::size_t ChildCount(const std::shared_ptr<integration::VantroSdkFolder>& folder) {
        return folder->GetFolders().size() + folder->GetFiles().size() +
               folder->GetVersionStacks().size();
    }

    std::shared_ptr<FakeService> service = std::make_shared<FakeService>();
};

TEST_F(ConnectorThreadSafetyTest, ListingsOfSeveralFoldersInFlightWhileNodesDie) {
    constexpr int kFolders = 16;
    constexpr int kChildren = 150;  // two pages of the service's 100
    std::vector<std::shared_ptr<integration::VantroSdkFolder>> survivors;
    std::vector<std::shared_ptr<integration::VantroSdkFolder>> doomed;
    for (int index = 0; index < kFolders; ++index) {
        const auto id = service->AddFolderWithChildren(0);
        for (int child = 0; child < kChildren; ++child) {
            static const char* const kTypes[] = {"file", "folder", "version_stack", "bundle"};
            service->AddChild(id, "Item " + std::to_string(child), kTypes[child % 4]);
        }
        vantrosdk::Asset asset;
        asset.id = id;
        asset.name = "Reel " + std::to_string(index);
        asset.type = "folder";
        auto folder =
            std::make_shared<integration::VantroSdkFolder>(asset, std::weak_ptr<VantroNode>());
        (index % 2 == 0 ? survivors : doomed).push_back(std::move(folder));
    }
    const std::weak_ptr<integration::FetchFolderChildrenQueue> queue =
        integration::FetchFolderChildrenQueue::GetInstance();

    // A second thread starts the survivors' listings and walks their children while the test's
    // thread starts the doomed ones' twice and lets them go.
    std::atomic<bool> walking{true};
    std::thread other([&] {
        for (const auto& folder : survivors) {
            folder->FetchChildren();
        }
        while (walking.load()) {
            for (const auto& folder : survivors) {
                for (const auto& child : folder->GetChildren()) {
                    (void)child->GetName();
                }
                (void)folder->FindNode(kelcore::utility::Guid::CreateUnique());
            }
            std::this_thread::yield();
        }
    });
    for (const auto& folder : doomed) {
        folder->FetchChildren();
    }
    for (std::size_t index = 0; index < doomed.size(); ++index) {
        doomed[index]->FetchChildren();
        if (index % 2 == 1) {
            doomed[index - 1].reset();
            doomed[index].reset();
        }
    }

    // Every fourth child, from the fourth on, is a "bundle" and is dropped.
    const std::size_t expected = kChildren - kChildren / 4;
    PumpUntil(
        [&] {
            for (const auto& folder : survivors) {
                if (ChildCount(folder) != expected) {
                    return false;
                }
            }
            return true;
        },
        std::chrono::seconds(120));
    walking.store(false);
    other.join();
    for (const auto& folder : survivors) {
        EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetched);
        EXPECT_EQ(ChildCount(folder), expected);
    }

    // Once the last node has gone, nothing holds the queue: handlers in flight held their nodes
    // and let them go on the SDK's threads, and deliveries still queued for the main thread
    // hold the lists they carry until they have run. Nothing announces the last release.
    survivors.clear();
    EXPECT_TRUE(testsupport::WaitUntil([&] {
        Pump();
        return queue.expired();
    })) << "a node, or the queue, outlived every holder";
}

}  // namespace
