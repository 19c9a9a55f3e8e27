// The datastore against the real server: ann signed in through vantroauth (a token answer from
// the server's command line, as a headless host signs in), a small world made with the admin
// commands (account Studio, team Editors, project Alpha with its root folder), the test's
// thread as the main thread with a queue the test pumps, and a datastore whose transport counts
// what it sends. The test's thread.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <kelcore/async/Future.h>
#include <kelcore/threads/MainThreadQueue.h>
#include <kelcore/utility/Guid.h>
#include <vantroclient/ServiceDatastore.h>

#include "CountingTransport.h"
#include "MessageRecorder.h"
#include "support/SignInServiceFixture.h"

namespace vantroclienttest {

class DatastoreServiceFixture : public testsupport::SignInServiceFixture {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Starts the server with test hooks (plus `extra`), makes the world, signs ann in and makes
    /// the datastore with `options` (its transport replaced by a counting one).
    void StartWorld(std::vector<std::string> extra = {},
                    vantro::ServiceDatastoreOptions options = {});
    /// The first half of StartWorld: the server and the world, nobody signed in.
    void MakeWorld(std::vector<std::string> extra = {});
    /// Stops the server and serves the same data again with test hooks plus `extra`.
    void RestartServer(std::vector<std::string> extra);
    /// The second half: signs ann in through vantroauth and makes the datastore.
    void OpenDatastore(vantro::ServiceDatastoreOptions options = {});
    /// Makes `count` folders "Clip N" under `parent` through the API as ann (a client of its own).
    void AddFoldersThroughApi(const std::string& parent, int count);

    /// Pumps the main thread until `future` completes (a wall-clock bound for a failing test).
    template <class T>
    const kelcore::async::Future<T>& Await(
        const kelcore::async::Future<T>& future,
        std::chrono::milliseconds limit = std::chrono::seconds(30)) {
        EXPECT_TRUE(queue->PumpUntil([&] { return future.IsReady(); }, limit))
            << "the future did not complete";
        return future;
    }
    /// Pumps until `done` holds; false when it does not within `limit`.
    bool PumpUntil(const std::function<bool()>& done,
                   std::chrono::milliseconds limit = std::chrono::seconds(30)) {
        return queue->PumpUntil(done, limit);
    }
    /// Pumps until an event stream has handed over more than `bytesBefore` bytes.
    bool WaitForStream(std::size_t bytesBefore = 0) {
        return PumpUntil([&] { return transport->StreamedBytes() > bytesBefore; });
    }
    /// The names in an asset list, in its order.
    static std::vector<std::string> NamesOf(
        const kelcore::classref::InterfaceRef<vantro::VantroAssetList>& list);

    static kelcore::utility::Guid G(const std::string& id) {
        return kelcore::utility::Guid(std::string_view(id));
    }

    std::shared_ptr<kelcore::threads::MainThreadQueue> queue;
    std::shared_ptr<CountingTransport> transport;
    std::shared_ptr<vantro::VantroDatastore> datastore;
    std::unique_ptr<MessageRecorder> messages;
    std::string tokenAnswer;  ///< What ann was signed in with.
    std::string studio, editors, alpha, root;
};

}  // namespace vantroclienttest
