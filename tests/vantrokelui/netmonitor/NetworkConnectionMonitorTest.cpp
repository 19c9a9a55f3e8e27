#include <vantrokelui/model/NetworkConnectionMonitor.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include <kelcore/messaging/Messaging.h>
#include <kelnet/ConnectionMonitor.h>

namespace {

using kelnet::ConnectionMonitor;
using kelnet::NetworkState;
using vantrokelui::model::NetworkConnectionMonitor;

constexpr const char* kLoopbackEndpoint = "http://127.0.0.1:8080";

struct UnrelatedMessage {
    bool isConnected = true;
};

// The values a callback received, for the test to read and wait on. Any thread.
class ReceivedValues {
public:
    std::function<void(bool)> Callback() {
        return [this](bool connected) {
            {
                std::lock_guard lock(mutex);
                values.push_back(connected);
            }
            changed.notify_all();
        };
    }

    std::vector<bool> Values() {
        std::lock_guard lock(mutex);
        return values;
    }

    // False only when a failing test waits in vain.
    bool WaitForCount(std::size_t count) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, std::chrono::seconds(20),
                                [&] { return values.size() >= count; });
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<bool> values;
};

class NetworkConnectionMonitorTest : public ::testing::Test {
protected:
    void SetUp() override { ConnectionMonitor::SetEndpoint(kLoopbackEndpoint); }
    void TearDown() override { ConnectionMonitor::SetEndpoint({}); }
};

TEST_F(NetworkConnectionMonitorTest, ConstructionStartsThePlatformMonitorAndJoinsItsStation) {
    ASSERT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Unknown);
    ASSERT_EQ(kelcore::messaging::CountRawListeners(ConnectionMonitor::GetStationID()), 0U);

    const auto monitor = std::make_shared<NetworkConnectionMonitor>();

    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Connected);
    EXPECT_EQ(kelcore::messaging::CountRawListeners(ConnectionMonitor::GetStationID()), 1U);
}

TEST_F(NetworkConnectionMonitorTest, IsConnectedFollowsTheNetworkState) {
    const auto monitor = std::make_shared<NetworkConnectionMonitor>();
    ReceivedValues received;
    monitor->SetConnectionChangedCallback(received.Callback());
    EXPECT_TRUE(monitor->IsConnected());

    ConnectionMonitor::SetEndpoint("http://nonexistent.invalid");
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Disconnected);
    EXPECT_FALSE(monitor->IsConnected());

    ConnectionMonitor::SetEndpoint(kLoopbackEndpoint);
    EXPECT_TRUE(monitor->IsConnected());
    // The platform monitor's own messages came through, on its thread, before SetEndpoint
    // returned.
    EXPECT_EQ(received.Values(), (std::vector<bool>{false, true}));
}

TEST_F(NetworkConnectionMonitorTest, IsNotConnectedWhenThePlatformMonitorIsNotRunning) {
    const auto monitor = std::make_shared<NetworkConnectionMonitor>();
    // Another user's extra Stop ends the platform monitor under it: Unknown is not connected.
    ConnectionMonitor::Stop();
    ASSERT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Unknown);
    EXPECT_FALSE(monitor->IsConnected());
    ConnectionMonitor::Start();  // for the monitor's own Stop
}

TEST_F(NetworkConnectionMonitorTest, AConnectionChangedMessageReachesTheCallbackWithItsValue) {
    const auto monitor = std::make_shared<NetworkConnectionMonitor>();
    ReceivedValues received;
    monitor->SetConnectionChangedCallback(received.Callback());

    kelcore::messaging::SendMessage(ConnectionMonitor::GetStationID(),
                                    ConnectionMonitor::ConnectionChangedMessage{false});
    kelcore::messaging::SendMessage(ConnectionMonitor::GetStationID(),
                                    ConnectionMonitor::ConnectionChangedMessage{true});

    EXPECT_EQ(received.Values(), (std::vector<bool>{false, true}));
}

TEST_F(NetworkConnectionMonitorTest, AnotherMessageTypeIsIgnored) {
    const auto monitor = std::make_shared<NetworkConnectionMonitor>();
    ReceivedValues received;
    monitor->SetConnectionChangedCallback(received.Callback());

    kelcore::messaging::SendMessage(ConnectionMonitor::GetStationID(), UnrelatedMessage{});
    kelcore::messaging::SendMessage(ConnectionMonitor::GetStationID(), true);

    EXPECT_TRUE(received.Values().empty());
}

TEST_F(NetworkConnectionMonitorTest, WithoutACallbackTheSenderGetsBadFunctionCall) {
    const auto monitor = std::make_shared<NetworkConnectionMonitor>();
    EXPECT_THROW(kelcore::messaging::SendMessage(ConnectionMonitor::GetStationID(),
                                                 ConnectionMonitor::ConnectionChangedMessage{true}),
                 std::bad_function_call);
}

TEST_F(NetworkConnectionMonitorTest, DestructionLeavesTheStationAndStopsThePlatformMonitor) {
    auto monitor = std::make_shared<NetworkConnectionMonitor>();
    ReceivedValues received;
    monitor->SetConnectionChangedCallback(received.Callback());

    monitor.reset();

    EXPECT_EQ(kelcore::messaging::CountRawListeners(ConnectionMonitor::GetStationID()), 0U);
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Unknown);
    kelcore::messaging::SendMessage(ConnectionMonitor::GetStationID(),
                                    ConnectionMonitor::ConnectionChangedMessage{false});
    EXPECT_TRUE(received.Values().empty());
}

TEST_F(NetworkConnectionMonitorTest, DestructionLeavesAnotherUsersPlatformMonitorRunning) {
    ConnectionMonitor::Start();
    auto monitor = std::make_shared<NetworkConnectionMonitor>();
    monitor.reset();
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Connected);
    ConnectionMonitor::Stop();
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Unknown);
}

// Messages keep coming from two threads (a sender of its own and the platform monitor's thread,
// driven by endpoint changes) while the monitor is destroyed: a callback that starts after the
// destructor returned would see the flag set.
TEST_F(NetworkConnectionMonitorTest, NoCallbackRunsAfterDestructionWhileMessagesAreSent) {
    auto monitor = std::make_shared<NetworkConnectionMonitor>();
    std::atomic<bool> destroyed{false};
    std::atomic<bool> calledAfterDestruction{false};
    std::atomic<int> calls{0};
    monitor->SetConnectionChangedCallback([&](bool) {
        if (destroyed.load()) {
            calledAfterDestruction = true;
        }
        ++calls;
    });

    std::mutex mutex;
    std::condition_variable progressed;
    std::atomic<bool> stopSending{false};
    std::atomic<int> sends{0};
    std::thread sender([&] {
        while (!stopSending.load()) {
            kelcore::messaging::SendMessage(ConnectionMonitor::GetStationID(),
                                            ConnectionMonitor::ConnectionChangedMessage{true});
            ++sends;
            progressed.notify_all();
        }
    });
    std::thread endpointChanger([&] {
        bool reachable = false;
        while (!stopSending.load()) {
            ConnectionMonitor::SetEndpoint(reachable ? kLoopbackEndpoint
                                                     : "http://nonexistent.invalid");
            reachable = !reachable;
        }
    });
    auto waitForSends = [&](int count) {
        std::unique_lock lock(mutex);
        return progressed.wait_for(lock, std::chrono::seconds(20),
                                   [&] { return sends.load() >= count; });
    };

    ASSERT_TRUE(waitForSends(100));
    ASSERT_GT(calls.load(), 0);
    monitor.reset();
    destroyed = true;
    const int sendsAtDestruction = sends.load();
    const bool sentAfterwards = waitForSends(sendsAtDestruction + 100);
    stopSending = true;
    sender.join();
    endpointChanger.join();

    EXPECT_TRUE(sentAfterwards);
    EXPECT_FALSE(calledAfterDestruction.load());
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Unknown);
}

}  // namespace
