// The small world of ServerWorldFixture, signed in as ann, with what review link tests share:
// making links, adding assets, and uploading files with real bytes through the upload API,
// loose or as versions of a stack (autoversion). What the API cannot make (an empty stack, a
// file where ann may not upload) is made through the store beside the running server.
#pragma once

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "ServerWorldFixture.h"
#include "security/Digest.h"
#include "security/Encoding.h"
#include "security/Random.h"
#include "store/DataDirectory.h"

namespace servertest {

class ReviewLinkFixture : public ServerWorldFixture {
protected:
    void SetUp() override {
        BuildWorld();
        StartServer(extraServeArgs);
        token = SignIn("ann", "pw-ann").access;
        alphaRoot = RootOf(token, editors, alpha);
    }

    testsupport::HttpClient::Reply CreateLink(const std::string& project, const std::string& name,
                                              const std::string& as = {}) {
        return client.PostJson(Url("/v2/projects/" + project + "/review_links"),
                               boost::json::object{{"name", name}},
                               testsupport::Bearer(as.empty() ? token : as));
    }

    /// Creates a link in Alpha and returns its JSON; fails the test otherwise.
    boost::json::object NewLink(const std::string& name = "Cut") {
        const auto reply = CreateLink(alpha, name);
        EXPECT_EQ(reply.status, 201) << reply.body;
        return reply.status == 201 ? reply.Json().as_object() : boost::json::object{};
    }

    testsupport::HttpClient::Reply AddAssets(const std::string& linkId,
                                             const std::vector<std::string>& ids,
                                             const std::string& as = {}) {
        boost::json::array array;
        for (const auto& id : ids) {
            array.emplace_back(id);
        }
        return client.PostJson(Url("/v2/review_links/" + linkId + "/assets"),
                               boost::json::object{{"asset_ids", array}},
                               testsupport::Bearer(as.empty() ? token : as));
    }

    std::shared_ptr<vantroserver::store::Store> Store() {
        if (!store) {
            vantroserver::store::StoreOptions options;
            options.passwordIterations = 1000;
            store = vantroserver::store::DataDirectory::Open(server.DataDir(), options).GetStore();
        }
        return store;
    }

    /// Uploads `bytes` as ann through the upload API (one part) into `folder`, as the next
    /// version of the stack `stackId` when given; returns the new file's id, or empty (with a
    /// test failure) when a step is refused.
    std::string Upload(const std::string& folder, const std::string& name, const std::string& bytes,
                       const std::string& stackId = {}) {
        boost::json::object request{{"name", name},
                                    {"filesize", static_cast<std::int64_t>(bytes.size())}};
        if (!stackId.empty()) {
            request["autoversion_id"] = stackId;
        }
        const auto created = client.PostJson(Url("/v2/assets/" + folder + "/uploads"), request,
                                             testsupport::Bearer(token));
        EXPECT_EQ(created.status, 201) << created.body;
        if (created.status != 201) {
            return {};
        }
        const std::string uploadId(created.Json().at("upload_id").as_string());
        const std::string digest =
            vantroserver::security::HexEncode(vantroserver::security::Sha256(bytes));
        const auto part =
            client.Send("PUT", Url("/v2/uploads/" + uploadId + "/parts/1"), bytes,
                        {{"Authorization", "Bearer " + token}, {"X-Content-SHA256", digest}});
        EXPECT_EQ(part.status, 200) << part.body;
        const auto completed =
            client.PostJson(Url("/v2/uploads/" + uploadId + "/complete"),
                            boost::json::object{{"sha256", digest}}, testsupport::Bearer(token));
        EXPECT_EQ(completed.status, 201) << completed.body;
        return completed.status == 201 ? std::string(completed.Json().at("id").as_string())
                                       : std::string{};
    }

    /// A file uploaded into `folder`.
    std::string AddFile(const std::string& folder, const std::string& name,
                        const std::string& bytes) {
        return Upload(folder, name, bytes);
    }

    /// The id of a version stack that the first AddVersion makes in Alpha's root folder.
    static std::string AddStack(const std::string&) { return vantroserver::security::NewId(); }

    /// The next version of the stack `stackId`, uploaded into Alpha's root folder.
    std::string AddVersion(const std::string& stackId, const std::string& name,
                           const std::string& bytes) {
        return Upload(alphaRoot, name, bytes, stackId);
    }

    /// A version stack with no version yet, made through the store.
    std::string EmptyStack(const std::string& name) {
        return Store()->Assets().CreateVersionStack(alphaRoot, name).id;
    }

    /// A file of `bytes` in `parent` made through the store beside the server, for places ann
    /// cannot upload to; its bytes go where the server keeps media.
    std::string StoreFile(const std::string& parent, const std::string& name,
                          const std::string& bytes) {
        const auto file =
            Store()->Assets().AddFile(parent, name, static_cast<std::int64_t>(bytes.size()));
        std::ofstream out(server.DataDir() / "media" / file.id, std::ios::binary);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return file.id;
    }

    /// `size` bytes that differ from one call to the next.
    static std::string Bytes(std::size_t size, char seed) {
        std::string bytes(size, '\0');
        for (std::size_t i = 0; i < size; ++i) {
            bytes[i] = static_cast<char>((i * 31 + static_cast<std::size_t>(seed)) & 0xFF);
        }
        return bytes;
    }

    std::vector<std::string> extraServeArgs;
    std::string token;
    std::string alphaRoot;
    std::shared_ptr<vantroserver::store::Store> store;
};

}  // namespace servertest
