// The ground of the pipeline's end-to-end tests: the real vantro-server on loopback with ann's
// Studio / Editors / Alpha (CloudShareFixture), the library signed in as the host's user, a
// folder "Reviews" made in Alpha and chosen for the host's active sequence "Cut 1" (with the first
// preset stored), the test's thread as the main thread with a queue it pumps, and a TestShareHost
// injected into the library. The cache directory (where the pipeline puts its temporary files) is a
// fresh directory per test. Each test runs in its own process, so the library's singleton starts
// empty. The test's thread.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <boost/json/value.hpp>

#include <kelcore/threads/MainThreadQueue.h>
#include <kelcore/utility/Guid.h>
#include <vantrokelui/model/ProcessingGuids.h>
#include <vantrokelui/model/ShareJob.h>

#include "vantrokelui/support/CloudShareFixture.h"
#include "vantrokelui/support/TestShareHost.h"

namespace vantrokeluitest {

class SharePipelineFixture : public CloudShareFixture {
protected:
    using Guid = kelcore::utility::Guid;
    using ViewID = vantrokelui::ShareForReviewViewID;

    void SetUp() override;
    void TearDown() override;

    /// Starts the server, signs the library in, makes the folder, installs the host, opens the
    /// sequence and chooses the folder; the panel shows the share screen (view 4).
    void StartSignedInWorld();

    /// A token of ann's own for the test's checks (signed in through the form).
    std::string Token();
    /// GET `path` on the API as ann (a token of the test's own); fails the test unless 200.
    boost::json::value ApiGet(const std::string& path);
    /// GET of an absolute URL (the review page, its media), without a token.
    testsupport::HttpClient::Reply PageGet(const std::string& url);
    /// Adds a fault through the server's test hook.
    void InjectFault(const boost::json::object& fault);

    /// Regular files in the pipeline's cache directory.
    std::vector<std::filesystem::path> CacheFiles() const;
    std::filesystem::path CacheDir() const;
    /// Files of uploads the server holds (created and not completed or deleted).
    std::vector<std::filesystem::path> PendingUploadsOnServer() const;
    /// Waits until the server holds no pending upload; whether it came to that.
    bool AwaitNoPendingUploadOnServer();
    /// The children of the chosen folder on the server.
    boost::json::array FolderChildren();

    /// Waits until no job is filed under `jobID`; whether it came to that.
    static bool AwaitJobGone(const kelcore::string::string& jobID);
    /// The job filed under `jobID`, or null.
    static std::shared_ptr<vantrokelui::model::ShareJob> Job(const kelcore::string::string& jobID);

    /// Checks what every failed or cancelled share must leave: the sequence's values exactly
    /// `expected`, and no temporary file in the cache directory.
    void ExpectNothingLost(const std::map<std::string, std::string>& expected);

    std::shared_ptr<kelcore::threads::MainThreadQueue> queue;
    std::unique_ptr<vantrokelui::model::testing::TestShareHost> host;
    vantrokelui::model::ProcessingGuids sequence;
    std::string folder;
    std::string apiToken;
};

/// A key of the values stored with a sequence, in UTF-8 (as TestShareHost::StoredValues has it).
std::string KeyText(kelcore::string::string_view key);

}  // namespace vantrokeluitest
