#include "SdkTestSupport.h"

#include <fstream>
#include <random>
#include <stdexcept>
#include <utility>

#include <kelcore/threads/Executors.h>
#include <vantrocommon/http/CurlTransport.h>

namespace sdktest {

using kelcore::async::Future;
using vantrocommon::http::Reply;
using vantrocommon::http::Request;

Future<Reply> RecordingTransport::Send(Request request,
                                       vantrocommon::http::CancellationToken cancel) {
    Exchange started{request.method, request.url, 0, 0, {}};
    return inner->Send(std::move(request), std::move(cancel))
        .Then([log = log, started](const Future<Reply>& answer) {
            Exchange done = started;
            done.result = kelcore::async::ResultOf(answer);
            if (done.result == 0) {
                done.status = answer.Get().status;
                done.body = answer.Get().body;
            }
            {
                std::lock_guard lock(log->mutex);
                log->exchanges.push_back(std::move(done));
            }
            log->signal.Notify();
            return answer.Get();
        });
}

std::vector<RecordingTransport::Exchange> RecordingTransport::Exchanges() const {
    std::lock_guard lock(log->mutex);
    return log->exchanges;
}

bool RecordingTransport::WaitUntil(
    const std::function<bool(const std::vector<Exchange>&)>& condition,
    std::chrono::seconds limit) {
    return log->signal.WaitUntil([&] { return condition(Exchanges()); }, limit);
}

Future<Reply> FakeTransport::Send(Request request, vantrocommon::http::CancellationToken) {
    {
        std::lock_guard lock(mutex);
        requests.push_back(request);
    }
    auto promise = std::make_shared<kelcore::async::Promise<Reply>>(executor);
    auto future = promise->GetFuture();
    executor->Post([promise, answer = answer, request = std::move(request)] {
        promise->SetValue(answer(request));
    });
    return future;
}

std::vector<Request> FakeTransport::Requests() const {
    std::lock_guard lock(mutex);
    return requests;
}

std::string MakeToken(const std::string& payloadJson) {
    static constexpr char kAlphabet[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
    auto encode = [](const std::string& text) {
        std::string out;
        std::uint32_t buffer = 0;
        int bits = 0;
        for (const unsigned char c : text) {
            buffer = (buffer << 8) | c;
            bits += 8;
            while (bits >= 6) {
                bits -= 6;
                out += kAlphabet[(buffer >> bits) & 0x3F];
            }
        }
        if (bits > 0) {
            out += kAlphabet[(buffer << (6 - bits)) & 0x3F];
        }
        return out;
    };
    return encode(R"({"alg":"HS256","typ":"JWT"})") + "." + encode(payloadJson) + ".c2ln";
}

void SdkWorldFixture::TearDown() {
    vantrosdk::VantroClient::ResetForTesting();
    VantroServerFixture::TearDown();
}

void SdkWorldFixture::StartWorld(std::vector<std::string> serveArguments,
                                 std::uint64_t storageLimit) {
    ann = AddUser("ann", "pw-ann");
    studio = AdminId({"account", "add", "--name", "Studio", "--owner", "ann", "--storage-limit",
                      std::to_string(storageLimit)});
    editors = AdminId({"team", "add", "--account", studio, "--name", "Editors", "--member", "ann"});
    const auto ids = IdsIn(Admin({"project", "add", "--team", editors, "--name", "Alpha"}));
    if (ids.size() < 2) {
        throw std::runtime_error("project add printed no project and folder id");
    }
    alpha = ids[0];
    root = ids[1];
    StartServer(std::move(serveArguments));
    token = SignIn("ann", "pw-ann").access;
}

vantrosdk::VantroConfig SdkWorldFixture::Config() const {
    vantrosdk::VantroConfig config(kClientId);
    vantrocommon::ServiceEndpoint endpoint;
    endpoint.apiBase = Url("");
    endpoint.webBase = Url("");
    config.SetEndpoint(endpoint);
    return config;
}

std::shared_ptr<vantrosdk::VantroClient> SdkWorldFixture::Connect(
    const vantrosdk::VantroConfig& config,
    std::function<void(const std::string&)> tokenRefreshRequested) {
    const auto initialized =
        vantrosdk::VantroClient::Initialize(config, std::move(tokenRefreshRequested));
    EXPECT_TRUE(initialized.IsSuccess()) << initialized.GetMessage();
    auto client = vantrosdk::VantroClient::Get();
    EXPECT_NE(client, nullptr);
    if (client) {
        EXPECT_TRUE(client->UpdateAccessToken(token).IsSuccess());
    }
    return client;
}

std::shared_ptr<RecordingTransport> SdkWorldFixture::Recorder() const {
    vantrocommon::http::CurlTransport::Options options;
    options.executor = kelcore::threads::GetIOBoundExecutor();
    return std::make_shared<RecordingTransport>(
        vantrocommon::http::CurlTransport::Create(std::move(options)));
}

std::filesystem::path SdkWorldFixture::RandomFile(const std::string& name,
                                                  std::uint64_t size) const {
    const auto path = files.Path() / name;
    std::mt19937_64 random(size);
    std::ofstream out(path, std::ios::binary);
    std::vector<std::uint64_t> block(1 << 16);
    for (std::uint64_t written = 0; written < size;) {
        for (auto& word : block) {
            word = random();
        }
        const auto count =
            std::min<std::uint64_t>(size - written, block.size() * sizeof(std::uint64_t));
        out.write(reinterpret_cast<const char*>(block.data()), static_cast<std::streamsize>(count));
        written += count;
    }
    return path;
}

testsupport::HttpClient::Reply SdkWorldFixture::ApiGet(const std::string& path) {
    return client.Get(Url(path), testsupport::Bearer(token));
}

void SdkWorldFixture::InjectFault(const boost::json::object& fault) {
    const auto reply = client.PostJson(Url("/test/faults"), fault);
    ASSERT_EQ(reply.status, 201) << reply.body;
}

}  // namespace sdktest
