// Feeds arbitrary bytes to the server's request handling as a connection would: the HTTP/1.1
// parser with the server's limits, then the dispatcher with every route of a real service over a
// fresh data directory (routing, query and form parsing, token checks, paging, JSON bodies,
// folder creation, the sign-in pages, static files, the test hooks). The first byte chooses
// whether the request carries a valid bearer token, so the signed-in routes are reached too.
// Nothing may crash or throw; every answer must serialise.
#include <unistd.h>

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/http/write.hpp>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include "api/Service.h"
#include "events/EventSubscription.h"
#include "hooks/FaultInjector.h"
#include "http/JsonBody.h"
#include "http/ServeOptions.h"
#include "store/DataDirectory.h"

namespace {

namespace beast = boost::beast;
namespace beasthttp = boost::beast::http;
using namespace vantroserver;

struct World {
    std::filesystem::path directory;
    std::unique_ptr<api::Service> service;
    std::string token;

    World() {
        char pattern[] = "/tmp/vantro-fuzz-XXXXXX";
        directory = mkdtemp(pattern);
        store::StoreOptions storeOptions;
        storeOptions.passwordIterations = 1;  // Sign-in attempts must not dominate the run.
        auto data = store::DataDirectory::Initialize(directory / "data", storeOptions);
        auto store = data.GetStore();
        const auto user = store->Users().Add({"fuzz", "fuzz", "", ""});
        const auto account = store->Accounts().Add("Fuzz", user.id, 1 << 20);
        const auto team = store->Teams().Add(account.id, "Team", {user.id});
        const auto project = store->Projects().Add(team.id, "Project");
        store->Assets().CreateFolder(project.rootAssetId, "folder");
        std::filesystem::create_directories(data.StaticDirectory());
        std::ofstream(data.StaticDirectory() / "index.html") << "<p>static</p>";

        http::ServeOptions options;
        options.dataDir = directory / "data";
        options.enableTestHooks = true;
        options.rateLimit = http::RateLimit{1'000'000'000, std::chrono::milliseconds(1)};
        service = std::make_unique<api::Service>(data, options);
        token = service->Tokens()->Issue(user.id, "vantrokelui-desktop", "");
        // Logged failures (500s) would flood the fuzzer's output; they are not crashes.
        std::cerr.setstate(std::ios::failbit);
    }
};

World* sWorld = nullptr;

World& TheWorld() {
    if (!sWorld) {
        // Never destroyed (other threads of the store may outlive main); only its directory
        // goes when the fuzzer exits.
        sWorld = new World();
        std::atexit([] {
            std::error_code ignored;
            std::filesystem::remove_all(sWorld->directory, ignored);
        });
    }
    return *sWorld;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) {
        return 0;
    }
    World& world = TheWorld();
    const bool withToken = (data[0] & 1) != 0;
    const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);

    // JSON bodies as the fault hook reads them.
    std::string error;
    if (const auto object = http::JsonBody::ParseObjectText(text, error)) {
        hooks::FaultInjector::Parse(*object, error);
    }

    beasthttp::request_parser<beasthttp::string_body> parser;
    parser.body_limit(1024 * 1024);
    parser.header_limit(16 * 1024);
    parser.eager(true);
    beast::error_code code;
    std::size_t offset = 0;
    while (!parser.is_done() && offset < text.size()) {
        const std::size_t used =
            parser.put(boost::asio::buffer(text.data() + offset, text.size() - offset), code);
        if (code == beasthttp::error::need_more && used == 0) {
            break;
        }
        if (code && code != beasthttp::error::need_more) {
            return 0;
        }
        offset += used;
    }
    if (!parser.is_done()) {
        // The connection sees end of stream here; with nothing read it just closes.
        if (!parser.got_some()) {
            return 0;
        }
        parser.put_eof(code);
        if (code || !parser.is_done()) {
            return 0;
        }
    }
    auto request = parser.release();
    if (withToken) {
        request.set(beasthttp::field::authorization, "Bearer " + world.token);
    }
    const auto& dispatcher = world.service->GetDispatcher();
    const auto fault = dispatcher->TakeFault(request);
    http::Response response = dispatcher->Dispatch(request, fault);
    if (response.IsFile()) {
        return 0;
    }
    auto& message = response.AsString();
    message.prepare_payload();
    std::ostringstream out;
    out << message;
    if (out.str().empty()) {
        std::abort();
    }
    return 0;
}
