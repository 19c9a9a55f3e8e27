// Uploads through the transfer manager against the real server: progress, version stacks,
// empty and missing files, the storage limit, parts refused by injected faults (retried,
// resumed, given up on), and cancelling.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>

#include <vantrocommon/Guid.h>
#include <vantrocommon/ResultCodes.h>
#include <vantrosdk/TransferManager.h>
#include <vantrosdk/UploadRequest.h>
#include <vantrosdk/UploadResponse.h>

#include "SdkTestSupport.h"
#include "support/PartUploader.h"

namespace sdktest {
namespace {

using vantrocommon::Guid;
using vantrosdk::UploadRequest;

constexpr std::uint64_t kMiB = 1024 * 1024;

/// What the progress function was given, in order.
class ProgressLog {
public:
    UploadRequest::ProgressFunction Function() {
        return [this](std::uint64_t sent, std::uint64_t total) {
            {
                std::lock_guard lock(mutex);
                calls.emplace_back(sent, total);
            }
            signal.Notify();
        };
    }
    std::vector<std::pair<std::uint64_t, std::uint64_t>> Calls() const {
        std::lock_guard lock(mutex);
        return calls;
    }
    /// Waits for a call that reports some bytes sent.
    bool WaitForSomeSent() {
        return signal.WaitUntil([this] {
            const auto seen = Calls();
            return std::any_of(seen.begin(), seen.end(),
                               [](const auto& call) { return call.first > 0; });
        });
    }

private:
    mutable std::mutex mutex;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> calls;
    Signal signal;
};

void ExpectMonotonicEndingAt(const std::vector<std::pair<std::uint64_t, std::uint64_t>>& calls,
                             std::uint64_t total) {
    ASSERT_FALSE(calls.empty());
    for (std::size_t i = 0; i < calls.size(); ++i) {
        EXPECT_EQ(calls[i].second, total);
        EXPECT_LE(calls[i].first, total);
        if (i > 0) {
            EXPECT_GE(calls[i].first, calls[i - 1].first) << "call " << i;
        }
    }
    EXPECT_EQ(calls.back(), std::make_pair(total, total));
}

class TransferManagerTest : public SdkWorldFixture {
protected:
    /// A configuration with 5 MiB parts and quick retries.
    vantrosdk::VantroConfig UploadConfig(int maxAttempts = 3) const {
        auto config = Config();
        config.SetTransferPartSize(5 * kMiB);
        vantrocommon::RetryPolicy policy;
        policy.maxAttempts = maxAttempts;
        policy.initialDelay = std::chrono::milliseconds(1);
        policy.maxDelay = std::chrono::milliseconds(20);
        config.SetRetryPolicy(policy);
        return config;
    }

    /// The names of the children of `folder`, as the server lists them.
    std::vector<std::string> ChildNames(const std::string& folder) {
        const auto reply = ApiGet("/v2/assets/" + folder + "/children");
        EXPECT_EQ(reply.status, 200) << reply.body;
        std::vector<std::string> names;
        const auto children = reply.Json();
        for (const auto& child : children.as_array()) {
            names.emplace_back(child.at("name").as_string());
        }
        return names;
    }

    /// The upload id the server gave, from the recorded creation.
    static std::string UploadIdIn(const std::vector<RecordingTransport::Exchange>& exchanges) {
        for (const auto& exchange : exchanges) {
            if (exchange.method == "POST" && exchange.status == 201 &&
                exchange.url.find("/uploads") != std::string::npos) {
                return std::string(boost::json::parse(exchange.body).at("upload_id").as_string());
            }
        }
        return {};
    }

    static std::size_t Count(const std::vector<RecordingTransport::Exchange>& exchanges,
                             const std::string& method, const std::string& urlPart) {
        return static_cast<std::size_t>(
            std::count_if(exchanges.begin(), exchanges.end(), [&](const auto& exchange) {
                return exchange.method == method && exchange.url.find(urlPart) != std::string::npos;
            }));
    }
};

TEST_F(TransferManagerTest, UploadsAFileInPartsWithProgressEndingAtItsSize) {
    StartWorld();
    const auto client = Connect(UploadConfig());
    const std::uint64_t size = 12 * kMiB + 12345;
    const auto file = RandomFile("cut.mov", size);
    ProgressLog progress;
    Guid transfer;

    const auto answer = client->GetTransferManager()->Upload(
        UploadRequest(Guid(root), file.string(), progress.Function()), transfer);

    EXPECT_FALSE(transfer.IsNil());
    const auto response = Await(answer);
    ASSERT_TRUE(response->IsSuccessful()) << response->GetHTTPStatusCode();
    EXPECT_EQ(response->GetHTTPStatusCode(), 201);
    const auto& asset = response->GetAssetObject();
    ASSERT_TRUE(asset.id.has_value());
    EXPECT_EQ(asset.name, "cut.mov");
    EXPECT_EQ(asset.type, "file");
    EXPECT_EQ(asset.filesize, size);
    EXPECT_EQ(asset.parentId, Guid(root));
    ExpectMonotonicEndingAt(progress.Calls(), size);
    // The bytes the server keeps are the file's.
    const auto content = ApiGet("/v2/assets/" + asset.id->AsString() + "/content");
    ASSERT_EQ(content.status, 200);
    EXPECT_EQ(testsupport::PartUploader::Sha256(content.body),
              testsupport::PartUploader::Sha256OfFile(file, 0, size));
    // Finished: nothing left to cancel.
    EXPECT_EQ(client->GetTransferManager()->UploadCancel(transfer).GetResult(),
              vantrocommon::kResultInvalidArgument);
}

TEST_F(TransferManagerTest, UsesTheNameGivenInTheRequest) {
    StartWorld();
    const auto client = Connect(UploadConfig());
    const auto file = RandomFile("local.bin", 1000);
    UploadRequest request(Guid(root), file.string(), {});
    request.SetName("Final cut.mov");
    Guid transfer;

    const auto response = Await(client->GetTransferManager()->Upload(request, transfer));

    ASSERT_TRUE(response->IsSuccessful());
    EXPECT_EQ(response->GetAssetObject().name, "Final cut.mov");
    EXPECT_EQ(ChildNames(root), std::vector<std::string>{"Final cut.mov"});
}

TEST_F(TransferManagerTest, MakesVersionOneThenTwoOfANewVersionStack) {
    StartWorld();
    const auto client = Connect(UploadConfig());
    const Guid stack = Guid::CreateUnique();
    Guid transfer;
    UploadRequest first(Guid(root), RandomFile("v1.mov", 3000).string(), {});
    first.SetAutoversionId(stack);
    UploadRequest second(Guid(root), RandomFile("v2.mov", 4000).string(), {});
    second.SetAutoversionId(stack);

    const auto one = Await(client->GetTransferManager()->Upload(first, transfer));
    const auto two = Await(client->GetTransferManager()->Upload(second, transfer));

    ASSERT_TRUE(one->IsSuccessful());
    ASSERT_TRUE(two->IsSuccessful());
    EXPECT_EQ(one->GetAssetObject().version, 1);
    EXPECT_EQ(two->GetAssetObject().version, 2);
    EXPECT_EQ(one->GetAssetObject().parentId, stack);
    EXPECT_EQ(two->GetAssetObject().parentId, stack);
    EXPECT_EQ(ChildNames(stack.AsString()).size(), 2u);
}

TEST_F(TransferManagerTest, UploadsAnEmptyFileAsOneEmptyPart) {
    StartWorld();
    const auto client = Connect(UploadConfig());
    ProgressLog progress;
    Guid transfer;

    const auto response = Await(client->GetTransferManager()->Upload(
        UploadRequest(Guid(root), RandomFile("empty.mov", 0).string(), progress.Function()),
        transfer));

    ASSERT_TRUE(response->IsSuccessful());
    EXPECT_EQ(response->GetAssetObject().filesize, 0u);
    EXPECT_EQ(progress.Calls(), (std::vector<std::pair<std::uint64_t, std::uint64_t>>{{0, 0}}));
}

TEST_F(TransferManagerTest, FailsAMissingFileWithAFileError) {
    StartWorld();
    const auto client = Connect(UploadConfig());
    Guid transfer;

    const auto answer = client->GetTransferManager()->Upload(
        UploadRequest(Guid(root), (files.Path() / "missing.mov").string(), {}), transfer);

    EXPECT_EQ(AwaitResult(answer), vantrocommon::kResultFileError);
    EXPECT_TRUE(ChildNames(root).empty());
}

TEST_F(TransferManagerTest, AnswersTheStorageLimitWithA403Response) {
    StartWorld({"--enable-test-hooks"}, 1000);
    const auto client = Connect(UploadConfig());
    ProgressLog progress;
    Guid transfer;

    const auto response = Await(client->GetTransferManager()->Upload(
        UploadRequest(Guid(root), RandomFile("big.mov", 5000).string(), progress.Function()),
        transfer));

    EXPECT_EQ(response->GetHTTPStatusCode(), 403);
    EXPECT_FALSE(response->IsSuccessful());
    EXPECT_FALSE(response->GetAssetObject().id.has_value());
    EXPECT_TRUE(progress.Calls().empty());
}

TEST_F(TransferManagerTest, RetriesAPartRefusedOnce) {
    StartWorld();
    const auto recorder = Recorder();
    auto config = UploadConfig();
    config.SetTransport(recorder);
    const auto client = Connect(config);
    InjectFault({{"route", "/v2/uploads/*/parts/*"}, {"status", 500}, {"count", 1}});
    const std::uint64_t size = 11 * kMiB;
    ProgressLog progress;
    Guid transfer;

    const auto response = Await(client->GetTransferManager()->Upload(
        UploadRequest(Guid(root), RandomFile("cut.mov", size).string(), progress.Function()),
        transfer));

    ASSERT_TRUE(response->IsSuccessful());
    EXPECT_EQ(ChildNames(root), std::vector<std::string>{"cut.mov"});
    const auto exchanges = recorder->Exchanges();
    EXPECT_EQ(Count(exchanges, "PUT", "/parts/"), 4u) << "three parts, one of them twice";
    EXPECT_EQ(Count(exchanges, "GET", "/v2/uploads/"), 0u) << "no resume was needed";
    ExpectMonotonicEndingAt(progress.Calls(), size);
}

TEST_F(TransferManagerTest, RetriesAPartWhoseConnectionDropped) {
    StartWorld();
    const auto client = Connect(UploadConfig());
    InjectFault({{"route", "/v2/uploads/*/parts/*"}, {"drop", true}, {"count", 1}});
    Guid transfer;

    const auto response = Await(client->GetTransferManager()->Upload(
        UploadRequest(Guid(root), RandomFile("cut.mov", 7 * kMiB).string(), {}), transfer));

    ASSERT_TRUE(response->IsSuccessful());
    EXPECT_EQ(ChildNames(root), std::vector<std::string>{"cut.mov"});
}

TEST_F(TransferManagerTest, ACompletionWhoseAnswerWasLostSucceedsWithTheFileItMade) {
    StartWorld();
    const auto client = Connect(UploadConfig());
    InjectFault({{"route", "/v2/uploads/*/complete"}, {"drop_answer", true}, {"count", 1}});
    const Guid stack = Guid::CreateUnique();
    UploadRequest request(Guid(root), RandomFile("lost.mov", 6 * kMiB).string(), {});
    request.SetAutoversionId(stack);
    Guid transfer;

    const auto response = Await(client->GetTransferManager()->Upload(request, transfer));

    ASSERT_TRUE(response->IsSuccessful()) << response->GetHTTPStatusCode();
    ASSERT_TRUE(response->GetAssetObject().id.has_value());
    EXPECT_EQ(response->GetAssetObject().parentId, stack);
    EXPECT_EQ(ChildNames(stack.AsString()), std::vector<std::string>{"lost.mov"})
        << "the retried completion made nothing new";
}

TEST_F(TransferManagerTest, ResumesFromTheUploadsStatusWhenAPartsRetriesAreSpent) {
    StartWorld();
    const auto recorder = Recorder();
    auto config = UploadConfig(2);
    config.SetTransport(recorder);
    config.SetTransferPartsInFlight(1);  // The first part takes both faults.
    const auto client = Connect(config);
    InjectFault({{"route", "/v2/uploads/*/parts/*"}, {"status", 500}, {"count", 2}});
    const std::uint64_t size = 11 * kMiB;
    ProgressLog progress;
    Guid transfer;

    const auto response = Await(client->GetTransferManager()->Upload(
        UploadRequest(Guid(root), RandomFile("cut.mov", size).string(), progress.Function()),
        transfer));

    ASSERT_TRUE(response->IsSuccessful()) << response->GetHTTPStatusCode();
    const auto exchanges = recorder->Exchanges();
    const std::string upload = UploadIdIn(exchanges);
    ASSERT_FALSE(upload.empty());
    EXPECT_EQ(Count(exchanges, "GET", "/v2/uploads/" + upload), 1u);
    EXPECT_EQ(Count(exchanges, "PUT", "/parts/1"), 3u);
    EXPECT_EQ(Count(exchanges, "PUT", "/parts/2"), 1u);
    EXPECT_EQ(Count(exchanges, "PUT", "/parts/3"), 1u);
    EXPECT_EQ(ChildNames(root), std::vector<std::string>{"cut.mov"});
    ExpectMonotonicEndingAt(progress.Calls(), size);
}

TEST_F(TransferManagerTest, ResumesSendingOnlyThePartsTheServerLacks) {
    StartWorld();
    const auto recorder = Recorder();
    auto config = UploadConfig(2);
    config.SetTransport(recorder);
    config.SetTransferPartsInFlight(1);
    const auto client = Connect(config);
    // The first part goes through; the second fails twice, which spends its budget.
    InjectFault({{"route", "/v2/uploads/*/parts/2"}, {"status", 500}, {"count", 2}});
    Guid transfer;

    const auto response = Await(client->GetTransferManager()->Upload(
        UploadRequest(Guid(root), RandomFile("cut.mov", 11 * kMiB).string(), {}), transfer));

    ASSERT_TRUE(response->IsSuccessful());
    const auto exchanges = recorder->Exchanges();
    EXPECT_EQ(Count(exchanges, "GET", "/v2/uploads/"), 1u);
    EXPECT_EQ(Count(exchanges, "PUT", "/parts/1"), 1u) << "part 1 was held already";
    EXPECT_EQ(Count(exchanges, "PUT", "/parts/2"), 3u);
    EXPECT_EQ(Count(exchanges, "PUT", "/parts/3"), 1u);
}

TEST_F(TransferManagerTest, GivesUpWhenTheServerDropsEveryPart) {
    StartWorld();
    const auto recorder = Recorder();
    auto config = UploadConfig(2);
    config.SetTransport(recorder);
    const auto client = Connect(config);
    InjectFault({{"route", "/v2/uploads/*/parts/*"}, {"drop", true}, {"count", 100000}});
    ProgressLog progress;
    Guid transfer;

    const auto answer = client->GetTransferManager()->Upload(
        UploadRequest(Guid(root), RandomFile("cut.mov", 11 * kMiB).string(), progress.Function()),
        transfer);

    EXPECT_EQ(AwaitResult(answer), vantrocommon::kResultNetworkFailure);
    EXPECT_TRUE(progress.Calls().empty());
    EXPECT_TRUE(ChildNames(root).empty());
    // Given up, the upload is deleted at the server.
    const std::string upload = UploadIdIn(recorder->Exchanges());
    ASSERT_FALSE(upload.empty());
    ASSERT_TRUE(recorder->WaitUntil(
        [](const auto& exchanges) { return Count(exchanges, "DELETE", "/v2/uploads/") == 1; }));
    EXPECT_EQ(ApiGet("/v2/uploads/" + upload).status, 404);
    EXPECT_EQ(client->GetTransferManager()->UploadCancel(transfer).GetResult(),
              vantrocommon::kResultInvalidArgument);
}

TEST_F(TransferManagerTest, CancelStopsAnUploadMidWayAndDeletesItAtTheServer) {
    StartWorld();
    const auto recorder = Recorder();
    auto config = UploadConfig();
    config.SetTransport(recorder);
    const auto client = Connect(config);
    // One part hangs at the server, so the upload is surely under way when it is cancelled.
    InjectFault({{"route", "/v2/uploads/*/parts/*"}, {"delay_ms", 20000}, {"count", 1}});
    ProgressLog progress;
    Guid transfer;
    const auto answer = client->GetTransferManager()->Upload(
        UploadRequest(Guid(root), RandomFile("cut.mov", 11 * kMiB).string(), progress.Function()),
        transfer);
    ASSERT_TRUE(progress.WaitForSomeSent());

    const auto cancelled = client->GetTransferManager()->UploadCancel(transfer);
    const auto callsAtCancel = progress.Calls().size();

    EXPECT_TRUE(cancelled.IsSuccess()) << cancelled.GetMessage();
    EXPECT_EQ(AwaitResult(answer), vantrocommon::kResultCancelled);
    const std::string upload = UploadIdIn(recorder->Exchanges());
    ASSERT_FALSE(upload.empty());
    ASSERT_TRUE(recorder->WaitUntil(
        [](const auto& exchanges) { return Count(exchanges, "DELETE", "/v2/uploads/") == 1; }));
    EXPECT_EQ(ApiGet("/v2/uploads/" + upload).status, 404);
    EXPECT_TRUE(ChildNames(root).empty());
    EXPECT_EQ(progress.Calls().size(), callsAtCancel) << "progress after the cancel";
    EXPECT_EQ(client->GetTransferManager()->UploadCancel(transfer).GetResult(),
              vantrocommon::kResultInvalidArgument);
}

TEST_F(TransferManagerTest, CancelOfAnUnknownTransferFails) {
    StartWorld();
    const auto client = Connect(UploadConfig());

    const auto cancelled = client->GetTransferManager()->UploadCancel(Guid::CreateUnique());

    EXPECT_EQ(cancelled.GetResult(), vantrocommon::kResultInvalidArgument);
}

TEST_F(TransferManagerTest, FillsTheTransferIdBeforeAnythingAnswers) {
    StartWorld();
    const auto client = Connect(UploadConfig());
    Guid transfer;
    Guid seenInContinuation;

    const auto answer = client->GetTransferManager()->Upload(
        UploadRequest(Guid(root), (files.Path() / "missing.mov").string(), {}), transfer);
    const auto observed = answer.Then(
        [&transfer, &seenInContinuation](const auto&) { seenInContinuation = transfer; });

    ASSERT_TRUE(WaitFor(observed));
    EXPECT_FALSE(transfer.IsNil());
    EXPECT_EQ(seenInContinuation, transfer);
}

}  // namespace
}  // namespace sdktest
