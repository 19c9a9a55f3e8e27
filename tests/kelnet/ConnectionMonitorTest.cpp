#include <kelnet/ConnectionMonitor.h>

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include <kelcore/messaging/Messaging.h>

#include "MessageRecorder.h"
#include "support/ScopedEnvironmentVariable.h"

namespace {

using kelnet::ConnectionMonitor;
using kelnet::NetworkState;

constexpr const char* kLoopbackEndpoint = "http://127.0.0.1:8080";

// Each test runs in its own process; still, leave the monitor stopped and the endpoint at its
// default, whatever the test did.
class ConnectionMonitorTest : public ::testing::Test {
protected:
    void TearDown() override {
        while (ConnectionMonitor::GetNetworkState() != NetworkState::Unknown) {
            ConnectionMonitor::Stop();
        }
        ConnectionMonitor::SetEndpoint({});
    }
};

TEST_F(ConnectionMonitorTest, IsUnknownBeforeStart) {
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Unknown);
}

TEST_F(ConnectionMonitorTest, ALoopbackEndpointIsConnectedAfterStart) {
    ConnectionMonitor::SetEndpoint(kLoopbackEndpoint);
    ConnectionMonitor::Start();
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Connected);
    ConnectionMonitor::Stop();
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Unknown);
}

TEST_F(ConnectionMonitorTest, WithoutAnEndpointTheConfiguredServiceDecides) {
    {
        const testsupport::ScopedEnvironmentVariable service("VANTRO_SERVICE_URL",
                                                             "http://127.0.0.1:9");
        ConnectionMonitor::Start();
        EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Connected);
        ConnectionMonitor::Stop();
    }
    const testsupport::ScopedEnvironmentVariable service("VANTRO_SERVICE_URL",
                                                         "http://nonexistent.invalid");
    ConnectionMonitor::Start();
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Disconnected);
    ConnectionMonitor::Stop();
}

TEST_F(ConnectionMonitorTest, StartAndStopAreCounted) {
    ConnectionMonitor::SetEndpoint(kLoopbackEndpoint);
    ConnectionMonitor::Start();
    ConnectionMonitor::Start();
    ConnectionMonitor::Stop();
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Connected);
    ConnectionMonitor::Stop();
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Unknown);
    ConnectionMonitor::Stop();  // one more than started: nothing
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Unknown);
    ConnectionMonitor::Start();
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Connected);
    ConnectionMonitor::Stop();
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Unknown);
}

TEST_F(ConnectionMonitorTest, AnUnresolvableHostIsDisconnected) {
    ConnectionMonitor::SetEndpoint("http://nonexistent.invalid");
    ConnectionMonitor::Start();
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Disconnected);
    ConnectionMonitor::Stop();
}

TEST_F(ConnectionMonitorTest, ANameIsResolved) {
    ConnectionMonitor::SetEndpoint("http://localhost:8080");
    ConnectionMonitor::Start();
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Connected);
    ConnectionMonitor::Stop();
}

TEST_F(ConnectionMonitorTest, AnIpv6LoopbackEndpointIsConnected) {
    ConnectionMonitor::SetEndpoint("http://[::1]:8080");
    ConnectionMonitor::Start();
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Connected);
    ConnectionMonitor::Stop();
}

TEST_F(ConnectionMonitorTest, SetEndpointWhileRunningJudgesAgainAndSendsEachChange) {
    ConnectionMonitor::SetEndpoint(kLoopbackEndpoint);
    ConnectionMonitor::Start();
    kelnettest::MessageRecorder recorder;

    // Judged and sent before SetEndpoint returns.
    ConnectionMonitor::SetEndpoint("http://nonexistent.invalid");
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Disconnected);
    EXPECT_EQ(recorder.Messages(), std::vector<bool>{false});

    ConnectionMonitor::SetEndpoint("http://127.0.0.2:8080");
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Connected);
    EXPECT_EQ(recorder.Messages(), (std::vector<bool>{false, true}));

    // Still connected: no message.
    ConnectionMonitor::SetEndpoint(kLoopbackEndpoint);
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Connected);
    EXPECT_EQ(recorder.Messages(), (std::vector<bool>{false, true}));
    ConnectionMonitor::Stop();
}

TEST_F(ConnectionMonitorTest, SetEndpointWhileStoppedTakesEffectAtTheNextStart) {
    ConnectionMonitor::SetEndpoint("http://nonexistent.invalid");
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Unknown);
    ConnectionMonitor::Start();
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Disconnected);
    ConnectionMonitor::Stop();
}

TEST_F(ConnectionMonitorTest, StartSendsNoMessage) {
    kelnettest::MessageRecorder recorder;
    ConnectionMonitor::SetEndpoint(kLoopbackEndpoint);
    ConnectionMonitor::Start();
    ConnectionMonitor::Stop();
    EXPECT_TRUE(recorder.Messages().empty());
}

TEST_F(ConnectionMonitorTest, AListenerThatThrowsDoesNotEndTheMonitor) {
    ConnectionMonitor::SetEndpoint(kLoopbackEndpoint);
    ConnectionMonitor::Start();
    kelnettest::MessageRecorder recorder;
    recorder.SetBeforeKeeping([] { throw std::runtime_error("listener failure"); });

    ConnectionMonitor::SetEndpoint("http://nonexistent.invalid");
    ConnectionMonitor::SetEndpoint(kLoopbackEndpoint);

    // The second message came from the same thread after the first one's exception.
    EXPECT_EQ(recorder.Messages(), (std::vector<bool>{false, true}));
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Connected);
    ConnectionMonitor::Stop();
}

TEST_F(ConnectionMonitorTest, AListenerMayStopTheMonitorFromItsThread) {
    ConnectionMonitor::SetEndpoint(kLoopbackEndpoint);
    ConnectionMonitor::Start();
    kelnettest::MessageRecorder recorder;
    recorder.SetBeforeKeeping([] { ConnectionMonitor::Stop(); });

    ConnectionMonitor::SetEndpoint("http://nonexistent.invalid");
    EXPECT_EQ(recorder.Messages(), std::vector<bool>{false});
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Unknown);

    // A new run starts cleanly after the old thread ended on its own.
    ConnectionMonitor::Start();
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Disconnected);
    ConnectionMonitor::Stop();
}

TEST_F(ConnectionMonitorTest, StartAndStopFromManyThreadsStayBalanced) {
    ConnectionMonitor::SetEndpoint(kLoopbackEndpoint);
    std::atomic<bool> sawAnotherState{false};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 25; ++i) {
                ConnectionMonitor::Start();
                // This thread's count keeps it running here.
                if (ConnectionMonitor::GetNetworkState() != NetworkState::Connected) {
                    sawAnotherState = true;
                }
                ConnectionMonitor::Stop();
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_FALSE(sawAnotherState.load());
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Unknown);
    ConnectionMonitor::Start();
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Connected);
    ConnectionMonitor::Stop();
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Unknown);
}

TEST_F(ConnectionMonitorTest, HasItsOwnStation) {
    EXPECT_EQ(std::string(ConnectionMonitor::GetStationID().c_str()), "kelnet.ConnectionMonitor");
}

}  // namespace
