// A throwaway certificate authority and a server certificate it signed for 127.0.0.1
// (subjectAltName IP:127.0.0.1), written as PEM files, for TLS tests of the transport. Made
// fresh by each test that needs them; valid for an hour. The test's thread.
//
//   const auto certificates = TestCertificates::Make(directory.Path());
//   StartServer({"--tls-cert", certificates.serverCertificate, "--tls-key", ...});
#pragma once

#include <filesystem>

namespace vantrocommontest {

struct TestCertificates {
    std::filesystem::path authorityCertificate;
    std::filesystem::path serverCertificate;
    std::filesystem::path serverKey;

    /// Writes ca.pem, server.pem and server-key.pem into `directory`; throws
    /// std::runtime_error when OpenSSL refuses a step.
    static TestCertificates Make(const std::filesystem::path& directory);
};

}  // namespace vantrocommontest
