#include <kelnet/ConnectionMonitor.h>

#include <gtest/gtest.h>

#include <kelcore/messaging/Messaging.h>

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

TEST_F(ConnectionMonitorTest, TheConfiguredLoopbackServiceIsConnected) {
    // The configured service defaults to a loopback address.
    ConnectionMonitor::Start();
    EXPECT_EQ(ConnectionMonitor::GetNetworkState(), NetworkState::Connected);
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

TEST_F(ConnectionMonitorTest, HasItsOwnStation) {
    EXPECT_EQ(std::string(ConnectionMonitor::GetStationID().c_str()), "kelnet.ConnectionMonitor");
}

}  // namespace
