// The small world of ServerWorldFixture, signed in as ann, with what review link tests share:
// making links, adding assets, and putting files with real bytes into Alpha's root folder
// (loose or as versions of a stack). Stacks and their versions are made through the store
// beside the running server, the bytes written where the server keeps media.
#pragma once

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "ServerWorldFixture.h"
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

    /// A file of `bytes` in `parent` (a folder or a version stack); returns its id.
    std::string AddFile(const std::string& parent, const std::string& name,
                        const std::string& bytes) {
        const auto file =
            Store()->Assets().AddFile(parent, name, static_cast<std::int64_t>(bytes.size()));
        std::ofstream out(server.DataDir() / "media" / file.id, std::ios::binary);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return file.id;
    }

    /// A version stack in Alpha's root folder; returns its id.
    std::string AddStack(const std::string& name) {
        return Store()->Assets().CreateVersionStack(alphaRoot, name).id;
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
