#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "support/VantroServerFixture.h"

namespace {

using testsupport::Bearer;
using testsupport::HttpClient;

/// A plain TCP connection for what curl will not send: broken requests, several on one socket.
class RawConnection {
public:
    explicit RawConnection(unsigned short port) : fd(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
            ADD_FAILURE() << "connect failed";
        }
    }
    ~RawConnection() { close(fd); }

    void Send(const std::string& text) {
        ASSERT_EQ(send(fd, text.data(), text.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(text.size()));
    }

    /// Reads one response (headers and a Content-Length body); empty when the peer closed.
    std::string ReadResponse() {
        while (true) {
            const auto headerEnd = pending.find("\r\n\r\n");
            if (headerEnd != std::string::npos) {
                std::size_t length = 0;
                const auto at = Lower(pending.substr(0, headerEnd)).find("content-length: ");
                if (at != std::string::npos) {
                    length = std::stoul(pending.substr(at + 16));
                }
                if (pending.size() >= headerEnd + 4 + length) {
                    std::string response = pending.substr(0, headerEnd + 4 + length);
                    pending.erase(0, response.size());
                    return response;
                }
            }
            char chunk[4096];
            const ssize_t n = recv(fd, chunk, sizeof chunk, 0);
            if (n <= 0) {
                return {};
            }
            pending.append(chunk, static_cast<std::size_t>(n));
        }
    }

private:
    static std::string Lower(std::string text) {
        for (char& c : text) {
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
        return text;
    }

    int fd;
    std::string pending;
};

class ProtocolTest : public testsupport::VantroServerFixture {
protected:
    void SetUp() override {
        AddUser("ann", "pw");
        std::filesystem::create_directories(server.DataDir() / "static");
        std::ofstream(server.DataDir() / "static" / "hello.txt") << "hello, static";
        StartServer();
        token = SignIn("ann", "pw").access;
    }

    std::string token;
};

TEST_F(ProtocolTest, UnknownRoutesAre404AndWrongMethods405) {
    const auto missing = client.Get(Url("/v3/nothing"));
    EXPECT_EQ(missing.status, 404);
    EXPECT_EQ(missing.Header("content-type"), "application/json");
    EXPECT_EQ(missing.Json().at("error").as_string(), "not_found");

    const auto wrong = client.Send("PUT", Url("/v2/me"), "{}", Bearer(token));
    EXPECT_EQ(wrong.status, 405);
    EXPECT_EQ(wrong.Json().at("error").as_string(), "method_not_allowed");
    EXPECT_EQ(wrong.Header("allow"), "GET, HEAD");
    EXPECT_EQ(client.Send("DELETE", Url("/oauth/token"), "", {}).status, 405);
}

TEST_F(ProtocolTest, BodiesOverOneMebibyteAre413) {
    const std::string big(2 * 1024 * 1024, 'x');
    const auto waited =
        client.Post(Url("/v2/assets/x/children"), big, "application/json", Bearer(token));
    EXPECT_EQ(waited.status, 413);
    EXPECT_EQ(waited.Json().at("error").as_string(), "request_too_large");

    // Without "Expect: 100-continue" the whole body comes at once; the answer is the same.
    HttpClient fresh;
    auto headers = Bearer(token);
    headers.emplace_back("Expect", "");
    const auto pushed = fresh.Post(Url("/v2/assets/x/children"), big, "application/json", headers);
    EXPECT_EQ(pushed.status, 413);

    // The server is still there.
    EXPECT_EQ(client.Get(Url("/v2/me"), Bearer(token)).status, 200);
}

TEST_F(ProtocolTest, MalformedRequestsAre400) {
    RawConnection garbage(server.Port());
    garbage.Send("THIS IS NOT HTTP\r\n\r\n");
    EXPECT_EQ(garbage.ReadResponse().rfind("HTTP/1.1 400", 0), 0u);

    RawConnection badTarget(server.Port());
    badTarget.Send("GET /v2/%zz HTTP/1.1\r\nHost: x\r\n\r\n");
    const auto response = badTarget.ReadResponse();
    EXPECT_EQ(response.rfind("HTTP/1.1 400", 0), 0u) << response;
}

TEST_F(ProtocolTest, ConnectionsStayOpenAcrossRequests) {
    RawConnection connection(server.Port());
    for (int i = 0; i < 3; ++i) {
        connection.Send("GET /v2/me HTTP/1.1\r\nHost: x\r\nAuthorization: Bearer " + token +
                        "\r\n\r\n");
        const auto response = connection.ReadResponse();
        ASSERT_EQ(response.rfind("HTTP/1.1 200", 0), 0u) << response;
        EXPECT_NE(response.find("\"username\":\"ann\""), std::string::npos);
    }
    connection.Send("GET /v2/me HTTP/1.1\r\nHost: x\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(connection.ReadResponse().rfind("HTTP/1.1 401", 0), 0u);
    EXPECT_EQ(connection.ReadResponse(), "");  // Closed after the answer, as asked.
}

TEST_F(ProtocolTest, StaticFilesAreServedFromTheDataDirectory) {
    const auto file = client.Get(Url("/static/hello.txt"));
    EXPECT_EQ(file.status, 200);
    EXPECT_EQ(file.body, "hello, static");
    EXPECT_EQ(file.Header("content-type"), "text/plain; charset=utf-8");
    const auto head = client.Send("HEAD", Url("/static/hello.txt"), "", {});
    EXPECT_EQ(head.status, 200);
    EXPECT_EQ(head.Header("content-length"), "13");
    EXPECT_TRUE(head.body.empty());

    for (const char* path :
         {"/static/missing.txt", "/static/..%2Fvantro.db", "/static/.hidden", "/static/%2e%2e"}) {
        EXPECT_EQ(client.Get(Url(path)).status, 404) << path;
    }
}

/// Writes a self-signed certificate for 127.0.0.1 and its key as PEM files.
void WriteSelfSignedCertificate(const std::filesystem::path& cert,
                                const std::filesystem::path& key) {
    EVP_PKEY* pkey = EVP_EC_gen("P-256");
    ASSERT_NE(pkey, nullptr);
    X509* x509 = X509_new();
    ASN1_INTEGER_set(X509_get_serialNumber(x509), 1);
    X509_gmtime_adj(X509_getm_notBefore(x509), 0);
    X509_gmtime_adj(X509_getm_notAfter(x509), 3600);
    X509_set_pubkey(x509, pkey);
    X509_NAME* name = X509_get_subject_name(x509);
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>("127.0.0.1"), -1, -1, 0);
    X509_set_issuer_name(x509, name);
    ASSERT_GT(X509_sign(x509, pkey, EVP_sha256()), 0);
    FILE* certFile = std::fopen(cert.c_str(), "w");
    PEM_write_X509(certFile, x509);
    std::fclose(certFile);
    FILE* keyFile = std::fopen(key.c_str(), "w");
    PEM_write_PrivateKey(keyFile, pkey, nullptr, nullptr, 0, nullptr, nullptr);
    std::fclose(keyFile);
    X509_free(x509);
    EVP_PKEY_free(pkey);
}

class TlsTest : public testsupport::VantroServerFixture {};

TEST_F(TlsTest, ServesOverTlsWhenGivenACertificate) {
    AddUser("ann", "pw");
    const auto cert = server.DataDir() / "cert.pem";
    const auto key = server.DataDir() / "key.pem";
    WriteSelfSignedCertificate(cert, key);
    StartServer({"--tls-cert", cert.string(), "--tls-key", key.string()});
    EXPECT_EQ(server.ListeningLine().rfind("listening on https://127.0.0.1:", 0), 0u);
    client.TrustAnyCertificate(true);
    const auto tokens = SignIn("ann", "pw");
    const auto me = client.Get(Url("/v2/me"), Bearer(tokens.access));
    EXPECT_EQ(me.status, 200);
    EXPECT_EQ(me.Json().at("username").as_string(), "ann");
}

}  // namespace
