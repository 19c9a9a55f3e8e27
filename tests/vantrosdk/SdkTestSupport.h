// What the SDK's tests share: waiting for a future without sleeping, a transport that records
// every exchange of a real one, a fake transport with canned answers, and a fixture with the
// real server holding one user, account, team and project, signed in. The test's thread.
//
//   class UploadTest : public sdktest::SdkWorldFixture {};
//   TEST_F(UploadTest, ...) { StartWorld(); auto client = Connect(Config()); ... Await(future); }
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <kelcore/async/Future.h>
#include <kelcore/config/ResultCode.h>
#include <kelcore/threads/AsyncExecutor.h>
#include <vantrocommon/http/Transport.h>
#include <vantrosdk/VantroClient.h>
#include <vantrosdk/VantroConfig.h>

#include "support/AwaitFuture.h"
#include "support/TemporaryDirectory.h"
#include "support/VantroServerFixture.h"

namespace sdktest {

using testsupport::Await;
using testsupport::AwaitResult;
using testsupport::WaitFor;

/// Waits until `condition` holds, checked each time `Notify` is called; at most `limit`.
class Signal {
public:
    void Notify() {
        std::lock_guard lock(mutex);
        ++count;
        changed.notify_all();
    }
    bool WaitUntil(const std::function<bool()>& condition,
                   std::chrono::seconds limit = std::chrono::seconds(60)) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, limit, [&] {
            lock.unlock();
            const bool holds = condition();
            lock.lock();
            return holds;
        });
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    int count = 0;
};

/// A transport that sends through another and records each exchange when it ends.
class RecordingTransport : public vantrocommon::http::Transport {
public:
    struct Exchange {
        std::string method;
        std::string url;
        int status = 0;  ///< 0 when the exchange failed.
        kelcore::config::ResultCode result = 0;
        std::string body;
    };

    explicit RecordingTransport(std::shared_ptr<vantrocommon::http::Transport> inner)
        : inner(std::move(inner)) {}

    kelcore::async::Future<vantrocommon::http::Reply> Send(
        vantrocommon::http::Request request, vantrocommon::http::CancellationToken cancel) override;

    std::vector<Exchange> Exchanges() const;
    /// Waits until `condition` holds for the exchanges recorded so far.
    bool WaitUntil(const std::function<bool(const std::vector<Exchange>&)>& condition,
                   std::chrono::seconds limit = std::chrono::seconds(60));

private:
    struct Log {
        mutable std::mutex mutex;
        std::vector<Exchange> exchanges;
        Signal signal;
    };
    std::shared_ptr<vantrocommon::http::Transport> inner;
    std::shared_ptr<Log> log = std::make_shared<Log>();
};

/// A transport without a network: each request is answered by `answer`, posted to `executor`.
/// Records the requests it was given.
class FakeTransport : public vantrocommon::http::Transport {
public:
    using Answer = std::function<vantrocommon::http::Reply(const vantrocommon::http::Request&)>;

    FakeTransport(std::shared_ptr<kelcore::threads::AsyncExecutor> executor, Answer answer)
        : executor(std::move(executor)), answer(std::move(answer)) {}

    kelcore::async::Future<vantrocommon::http::Reply> Send(
        vantrocommon::http::Request request, vantrocommon::http::CancellationToken cancel) override;

    std::vector<vantrocommon::http::Request> Requests() const;

private:
    std::shared_ptr<kelcore::threads::AsyncExecutor> executor;
    Answer answer;
    mutable std::mutex mutex;
    std::vector<vantrocommon::http::Request> requests;
};

/// A JWT-shaped token (unsigned) whose payload is `payloadJson`.
std::string MakeToken(const std::string& payloadJson);

class SdkWorldFixture : public testsupport::VantroServerFixture {
protected:
    void TearDown() override;

    /// ann in the account Studio (with `storageLimit`), the team Editors and its project Alpha;
    /// the server started with `serveArguments`; ann signed in.
    void StartWorld(std::vector<std::string> serveArguments = {"--enable-test-hooks"},
                    std::uint64_t storageLimit = std::uint64_t{1} << 30);

    /// A configuration pointing at the server; the client's id is the server's desktop client.
    vantrosdk::VantroConfig Config() const;
    /// Initialises the process's client with `config` and gives it ann's token; fails the test
    /// when either is refused.
    std::shared_ptr<vantrosdk::VantroClient> Connect(
        const vantrosdk::VantroConfig& config,
        std::function<void(const std::string&)> tokenRefreshRequested = {});
    /// A transport over the real one that records what the client sends.
    std::shared_ptr<RecordingTransport> Recorder() const;

    /// A file of `size` pseudo-random bytes in the test's directory.
    std::filesystem::path RandomFile(const std::string& name, std::uint64_t size) const;
    /// GET of an API path as ann, outside the SDK.
    testsupport::HttpClient::Reply ApiGet(const std::string& path);
    /// Injects a fault (see the server's test hooks); fails the test unless it is accepted.
    void InjectFault(const boost::json::object& fault);

    std::string ann, studio, editors, alpha, root, token;
    testsupport::TemporaryDirectory files;
};

}  // namespace sdktest
