// A small blocking HTTP client over libcurl for integration tests: one connection reused across
// requests (keep-alive), no redirects followed, header names lower-cased. One per test thread.
//
//   HttpClient client;
//   auto reply = client.Get(server.Url("/v2/me"), {{"Authorization", "Bearer " + token}});
//   EXPECT_EQ(reply.status, 200);
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <boost/json/value.hpp>

namespace testsupport {

class HttpClient {
public:
    using Headers = std::vector<std::pair<std::string, std::string>>;

    struct Reply {
        long status = 0;                             ///< 0 when no answer arrived.
        std::string transportError;                  ///< curl's message when the exchange failed.
        std::map<std::string, std::string> headers;  ///< Names lower-cased.
        std::string body;

        /// The header `name` (lower case), or empty.
        std::string Header(const std::string& name) const;
        /// The body parsed as JSON; throws when it is not.
        boost::json::value Json() const;
    };

    HttpClient();
    ~HttpClient();
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;

    Reply Get(const std::string& url, const Headers& headers = {});
    Reply Delete(const std::string& url, const Headers& headers = {});
    Reply Post(const std::string& url, const std::string& body, const std::string& contentType,
               const Headers& headers = {});
    Reply PostJson(const std::string& url, const boost::json::value& body,
                   const Headers& headers = {});
    /// `fields` form-encoded as application/x-www-form-urlencoded.
    Reply PostForm(const std::string& url, const Headers& fields, const Headers& headers = {});
    /// Any method and body, for the odd cases (a wrong method, an oversized body).
    Reply Send(const std::string& method, const std::string& url, const std::string& body,
               const Headers& headers);

    /// Percent-encodes `text` for a query or form value.
    static std::string Escape(const std::string& text);
    /// Accept a self-signed server certificate (TLS tests).
    void TrustAnyCertificate(bool trust) { insecure = trust; }

private:
    struct Handle;
    std::unique_ptr<Handle> handle;
    bool insecure = false;
};

/// `{"Authorization": "Bearer <token>"}`.
HttpClient::Headers Bearer(const std::string& token);

}  // namespace testsupport
