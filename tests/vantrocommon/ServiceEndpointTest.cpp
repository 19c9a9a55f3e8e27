#include <gtest/gtest.h>

#include <kelcore/debug/DebugDatabase.h>

#include <vantrocommon/ServiceEndpoint.h>

#include "support/ScopedEnvironmentVariable.h"
#include "support/TemporaryDirectory.h"

namespace {

using testsupport::ScopedEnvironmentVariable;
using vantrocommon::ServiceEndpoint;

// Every source of configuration is cleared, and the debug database is a file of the test's.
class ServiceEndpointTest : public ::testing::Test {
protected:
    testsupport::TemporaryDirectory directory;
    ScopedEnvironmentVariable database{"KELCORE_DEBUG_DATABASE",
                                       (directory.Path() / "debug.conf").string()};
    ScopedEnvironmentVariable url{"VANTRO_SERVICE_URL", std::nullopt};
    ScopedEnvironmentVariable webUrl{"VANTRO_SERVICE_WEB_URL", std::nullopt};
    ScopedEnvironmentVariable caFile{"VANTRO_CA_FILE", std::nullopt};
    ScopedEnvironmentVariable debugUrl{
        kelcore::debug::DebugDatabase::EnvironmentName("Vantro.ServiceURL"), std::nullopt};
    ScopedEnvironmentVariable debugWebUrl{
        kelcore::debug::DebugDatabase::EnvironmentName("Vantro.ServiceWebURL"), std::nullopt};
    ScopedEnvironmentVariable debugCaFile{
        kelcore::debug::DebugDatabase::EnvironmentName("Vantro.CAFile"), std::nullopt};
};

TEST_F(ServiceEndpointTest, WithoutConfigurationIsTheLocalDefault) {
    const auto endpoint = ServiceEndpoint::Resolve();
    EXPECT_EQ(endpoint.apiBase, "http://127.0.0.1:8080");
    EXPECT_EQ(endpoint.webBase, "http://127.0.0.1:8080");
    EXPECT_EQ(endpoint.caFile, "");
}

TEST_F(ServiceEndpointTest, TheEnvironmentNamesTheServiceWithoutItsTrailingSlash) {
    ScopedEnvironmentVariable service("VANTRO_SERVICE_URL", "https://vantro.test:8443/");
    ScopedEnvironmentVariable ca("VANTRO_CA_FILE", "/tmp/ca.pem");
    const auto endpoint = ServiceEndpoint::Resolve();
    EXPECT_EQ(endpoint.apiBase, "https://vantro.test:8443");
    EXPECT_EQ(endpoint.webBase, "https://vantro.test:8443");
    EXPECT_EQ(endpoint.caFile, "/tmp/ca.pem");
}

TEST_F(ServiceEndpointTest, TheWebBaseMayDifferFromTheApiBase) {
    ScopedEnvironmentVariable service("VANTRO_SERVICE_URL", "https://api.vantro.test");
    ScopedEnvironmentVariable web("VANTRO_SERVICE_WEB_URL", "https://vantro.test/");
    const auto endpoint = ServiceEndpoint::Resolve();
    EXPECT_EQ(endpoint.apiBase, "https://api.vantro.test");
    EXPECT_EQ(endpoint.webBase, "https://vantro.test");
}

TEST_F(ServiceEndpointTest, TheDebugDatabaseIsReadAtEachCall) {
    directory.Write("debug.conf",
                    "Vantro.ServiceURL=http://127.0.0.1:9000/\n"
                    "Vantro.ServiceWebURL=http://127.0.0.1:9001\n"
                    "Vantro.CAFile=/etc/vantro/ca.pem\n");
    auto endpoint = ServiceEndpoint::Resolve();
    EXPECT_EQ(endpoint.apiBase, "http://127.0.0.1:9000");
    EXPECT_EQ(endpoint.webBase, "http://127.0.0.1:9001");
    EXPECT_EQ(endpoint.caFile, "/etc/vantro/ca.pem");

    directory.Write("debug.conf", "Vantro.ServiceURL=http://127.0.0.1:9002\n");
    endpoint = ServiceEndpoint::Resolve();
    EXPECT_EQ(endpoint.apiBase, "http://127.0.0.1:9002");
    EXPECT_EQ(endpoint.webBase, "http://127.0.0.1:9002");
    EXPECT_EQ(endpoint.caFile, "");
}

TEST_F(ServiceEndpointTest, TheEnvironmentWinsOverTheDebugDatabase) {
    directory.Write("debug.conf",
                    "Vantro.ServiceURL=http://127.0.0.1:9000\nVantro.CAFile=/from/database.pem\n");
    ScopedEnvironmentVariable service("VANTRO_SERVICE_URL", "http://127.0.0.1:7000");
    ScopedEnvironmentVariable ca("VANTRO_CA_FILE", "/from/environment.pem");
    const auto endpoint = ServiceEndpoint::Resolve();
    EXPECT_EQ(endpoint.apiBase, "http://127.0.0.1:7000");
    EXPECT_EQ(endpoint.caFile, "/from/environment.pem");
}

}  // namespace
