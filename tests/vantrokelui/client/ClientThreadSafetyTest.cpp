// The client nodes on real threads: the datastore completes its futures on the IO-bound pool, a
// second thread sends change messages as fast as it can and a third starts fetches and walks
// the children, while the test's thread lets half of the nodes go. A node may then die on the
// sending thread (inside its own receive) or on a pool thread (at the end of its fill). Meant
// for the ThreadSanitizer build, where a message reaching a half-destroyed node or an unordered
// access of a node's fields is reported; every build checks that the survivors hold their
// children, stay subscribed once each, and that every node dies in the end.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <kelcore/threads/AsyncExecutor.h>
#include <kelcore/threads/Executors.h>
#include <vantrokelui/model/client/VantroClientFolder.h>
#include <vantrokelui/model/client/VantroClientUser.h>

#include "FakeDatastore.h"
#include "ScopedDatastore.h"
#include "support/MainThreadFixture.h"

namespace {

using clienttest::FakeDatastore;
using kelcore::utility::Guid;
using vantro::VantroDatastore;
using vantrokelui::FetchChildrenState;
using vantrokelui::VantroNode;
namespace client = vantrokelui::model::VantroClientIntegration;

// Runs tasks on another executor and lets the test wait until none is queued or running. The
// test waits for idleness before this executor goes, so the raw `this` in a task stays valid.
class CountingExecutor final : public kelcore::threads::AsyncExecutor {
public:
    explicit CountingExecutor(std::shared_ptr<kelcore::threads::AsyncExecutor> inner)
        : inner(std::move(inner)) {}

    void Post(std::function<void()> task) override {
        Begin();
        inner->Post([this, task = std::move(task)] { Run(task); });
    }
    void PostAfterDelay(std::function<void()> task, std::uint64_t delayMilliseconds) override {
        Begin();
        inner->PostAfterDelay([this, task = std::move(task)] { Run(task); }, delayMilliseconds);
    }

    /// Waits until every task posted so far, and those they posted, has run.
    bool WaitIdle(std::chrono::seconds limit = std::chrono::seconds(60)) {
        std::unique_lock lock(mutex);
        return idle.wait_for(lock, limit, [this] { return pending == 0; });
    }

private:
    void Begin() {
        const std::lock_guard lock(mutex);
        ++pending;
    }
    void Run(const std::function<void()>& task) {
        task();
        const std::lock_guard lock(mutex);
        if (--pending == 0) {
            idle.notify_all();
        }
    }

    const std::shared_ptr<kelcore::threads::AsyncExecutor> inner;
    std::mutex mutex;
    std::condition_variable idle;
    std::size_t pending = 0;
};

class ClientThreadSafetyTest : public testsupport::MainThreadFixture {
protected:
    void TearDown() override {
        EXPECT_TRUE(executor->WaitIdle());
        MainThreadFixture::TearDown();
    }

    std::shared_ptr<CountingExecutor> executor =
        std::make_shared<CountingExecutor>(kelcore::threads::GetIOBoundExecutor());
    std::shared_ptr<FakeDatastore> fake = std::make_shared<FakeDatastore>(executor);
    clienttest::ScopedDatastore installed{fake};
};

TEST_F(ClientThreadSafetyTest, FoldersDieWhileFillsAndMessagesAreInFlight) {
    constexpr int kSurvivors = 8;
    constexpr int kWaves = 12;
    constexpr int kDoomedPerWave = 16;
    constexpr int kChildren = 20;  // a quarter of them bundles, which are skipped
    const auto makeFolder = [this] {
        auto folder = std::make_shared<client::VantroClientFolder>(std::weak_ptr<VantroNode>());
        folder->SetID(Guid::CreateUnique());
        std::vector<clienttest::InterfaceRef<vantro::VantroAsset>> children;
        for (int child = 0; child < kChildren; ++child) {
            static const char* const kTypes[] = {"file", "folder", "version_stack", "bundle"};
            children.push_back(
                clienttest::MakeAsset(kTypes[child % 4], "Item " + std::to_string(child)));
        }
        fake->SetAssets(folder->GetID(), children);
        folder->FetchChildren();
        return folder;
    };
    std::vector<std::shared_ptr<client::VantroClientFolder>> survivors;
    for (int index = 0; index < kSurvivors; ++index) {
        survivors.push_back(makeFolder());
    }
    std::vector<std::weak_ptr<client::VantroClientFolder>> all(survivors.begin(), survivors.end());

    // In each wave a second thread sends messages to every folder without pause and a third
    // starts the survivors' fetches and walks their children, while the test's thread lets the
    // wave's folders go one by one.
    for (int wave = 0; wave < kWaves; ++wave) {
        std::vector<std::shared_ptr<client::VantroClientFolder>> doomed;
        std::vector<Guid> ids;
        for (const auto& folder : survivors) {
            ids.push_back(folder->GetID());
        }
        for (int index = 0; index < kDoomedPerWave; ++index) {
            doomed.push_back(makeFolder());
            ids.push_back(doomed.back()->GetID());
            all.push_back(doomed.back());
        }
        ASSERT_TRUE(executor->WaitIdle());
        ASSERT_EQ(fake->CountListeners(), survivors.size() + doomed.size());

        std::atomic<bool> sending{true};
        std::promise<void> firstRoundSent;
        std::thread sender([&] {
            for (bool first = true; sending.load(); first = false) {
                for (const Guid& id : ids) {
                    fake->Send(VantroDatastore::AssetListChanged{id});
                }
                if (first) {
                    firstRoundSent.set_value();
                }
            }
        });
        std::thread walker([&] {
            for (int round = 0; round < 10; ++round) {
                for (const auto& folder : survivors) {
                    folder->FetchChildren();
                    for (const auto& child : folder->GetChildren()) {
                        static_cast<void>(child->GetName());
                    }
                }
            }
        });
        firstRoundSent.get_future().wait();
        while (!doomed.empty()) {
            doomed.pop_back();
        }
        sending = false;
        sender.join();
        walker.join();
        ASSERT_TRUE(executor->WaitIdle());
        Pump();
    }
    ASSERT_TRUE(executor->WaitIdle());
    Pump();

    for (const auto& folder : survivors) {
        EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetched);
        EXPECT_EQ(folder->GetChildren().size(), static_cast<std::size_t>(kChildren * 3 / 4));
    }
    EXPECT_EQ(fake->CountListeners(), survivors.size());
    survivors.clear();
    Pump();
    for (const auto& weak : all) {
        EXPECT_TRUE(weak.expired());
    }
    EXPECT_EQ(fake->CountListeners(), 0u);
}

TEST_F(ClientThreadSafetyTest, AUserDiesWhileItsTreeIsFillingOnThePool) {
    constexpr int kAccounts = 6;
    std::vector<clienttest::InterfaceRef<vantro::VantroAccount>> accounts;
    for (int account = 0; account < kAccounts; ++account) {
        const Guid accountId = Guid::CreateUnique();
        accounts.push_back(
            clienttest::MakeAccount("Account " + std::to_string(account), accountId));
        std::vector<clienttest::InterfaceRef<vantro::VantroTeam>> teams;
        for (int team = 0; team < 3; ++team) {
            const Guid teamId = Guid::CreateUnique();
            teams.push_back(clienttest::MakeTeam("Team " + std::to_string(team), teamId));
            fake->SetProjects(teamId,
                              {clienttest::MakeProject("P1"), clienttest::MakeProject("P2")});
        }
        fake->SetTeams(accountId, teams);
    }
    fake->SetAccounts(accounts);

    for (int attempt = 0; attempt < 20; ++attempt) {
        auto user = std::make_shared<client::VantroClientUser>();
        const std::weak_ptr<client::VantroClientUser> weak = user;
        user->FetchChildren();
        // Messages to whoever is subscribed by now, from another thread, while the user goes.
        std::thread sender([this] {
            for (int round = 0; round < 20; ++round) {
                fake->Send(VantroDatastore::AccountListChanged{Guid()});
            }
        });
        user.reset();
        sender.join();
        ASSERT_TRUE(executor->WaitIdle());
        Pump();
        EXPECT_TRUE(weak.expired());
        EXPECT_EQ(fake->CountListeners(), 0u);
    }
}

}  // namespace
