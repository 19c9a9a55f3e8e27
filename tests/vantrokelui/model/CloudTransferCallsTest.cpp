#include <gtest/gtest.h>

#include <boost/json.hpp>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <kelcore/async/Executors.h>
#include <kelcore/async/Promise.h>
#include <kelcore/string/String.h>
#include <kelcore/threads/VirtualTime.h>
#include <kelcore/utility/Guid.h>
#include <vantrocommon/http/Transport.h>
#include <vantrokelui/model/CloudTransferCalls.h>
#include <vantrokelui/model/connector/SdkClient.h>
#include <vantrosdk/VantroClient.h>
#include <vantrosdk/VantroConfig.h>

#include "support/AwaitFuture.h"
#include "vantrokelui/support/CloudShareFixture.h"

namespace {

namespace model = vantrokelui::model;
namespace integration = vantrokelui::model::VantroConnectorIntegration;
using kelcore::string::StdToUTF16String;
using kelcore::string::UTF16toStdString;
using kelcore::utility::Guid;
using vantrokeluitest::Recorded;

struct Finished {
    bool ok = false;
    bool cancelled = false;
    Guid asset;
};

struct Progress {
    std::uint64_t sent = 0;
    std::uint64_t total = 0;
};

// Answers every request with a canned reply, completed on the default pool as a transport does.
class CannedTransport : public vantrocommon::http::Transport {
public:
    using Answer = std::function<vantrocommon::http::Reply(const vantrocommon::http::Request&)>;
    explicit CannedTransport(Answer answer) : answer(std::move(answer)) {}

    kelcore::async::Future<vantrocommon::http::Reply> Send(
        vantrocommon::http::Request request, vantrocommon::http::CancellationToken) override {
        auto promise = std::make_shared<kelcore::async::Promise<vantrocommon::http::Reply>>(
            kelcore::async::GetDefaultExecutor());
        auto future = promise->GetFuture();
        kelcore::async::GetDefaultExecutor()->Post(
            [promise, reply = answer(request)]() mutable { promise->SetValue(std::move(reply)); });
        return future;
    }

private:
    Answer answer;
};

// Runs every task at once, in the call that posts it: the stand-in for an answer that is already
// there when the continuation is attached.
class InlineExecutor : public kelcore::threads::AsyncExecutor {
public:
    void Post(std::function<void()> task) override { task(); }
    void PostAfterDelay(std::function<void()> task, std::uint64_t) override { task(); }
};

vantrocommon::http::Reply JsonReply(int status, boost::json::object body) {
    vantrocommon::http::Reply reply;
    reply.status = status;
    reply.headers["CONTENT-TYPE"] = "application/json";
    reply.body = boost::json::serialize(body);
    return reply;
}

class CloudTransferCallsTest : public vantrokeluitest::CloudShareFixture {
protected:
    // Started and signed in as the host's user, through a stored token.
    void SignedInWorld(std::vector<std::string> extra = {}) {
        StartWorld(std::move(extra));
        StoreToken();
        ASSERT_TRUE(SignInAndWait());
    }

    // A file of `size` pseudo-random bytes.
    std::string MediaFile(const std::string& name, std::uint64_t size) {
        const auto path = directory.Path() / name;
        std::ofstream out(path, std::ios::binary);
        std::mt19937_64 random(size);
        for (std::uint64_t written = 0; written < size; written += 8) {
            const std::uint64_t word = random();
            out.write(reinterpret_cast<const char*>(&word),
                      static_cast<std::streamsize>(std::min<std::uint64_t>(8, size - written)));
        }
        return path.string();
    }

    struct Upload {
        std::shared_ptr<Recorded<Progress>> progress = std::make_shared<Recorded<Progress>>();
        std::shared_ptr<Recorded<Finished>> finished = std::make_shared<Recorded<Finished>>();
        kelcore::string::string transferID;
        bool sent = false;
    };

    Upload StartUpload(const std::string& path, const Guid& stack) {
        Upload upload;
        upload.sent = model::UploadToFolder(
            StdToUTF16String(path), Guid(root), stack, upload.transferID,
            [progress = upload.progress](std::uint64_t sent, std::uint64_t total) {
                progress->Add({sent, total});
            },
            [finished = upload.finished](bool ok, bool cancelled, const Guid& asset) {
                finished->Add({ok, cancelled, asset});
            });
        return upload;
    }

    Finished AwaitFinished(const Upload& upload) {
        const auto finished = upload.finished->WaitFor(1);
        EXPECT_EQ(finished.size(), 1u) << "the upload never finished";
        return finished.empty() ? Finished() : finished.front();
    }

    boost::json::value ApiGet(const std::string& path) {
        const auto reply = client.Get(Url(path), testsupport::Bearer(Token()));
        EXPECT_EQ(reply.status, 200) << path << ": " << reply.body;
        return boost::json::parse(reply.body);
    }

    std::string Token() {
        if (apiToken.empty()) {
            apiToken = SignIn(kUser, kPassword).access;
        }
        return apiToken;
    }

    // The answer of a create-link call, collected.
    std::tuple<bool, Guid, std::string> CreateLinkAndWait(const Guid& project,
                                                          const std::string& name) {
        auto answers = std::make_shared<Recorded<std::tuple<bool, Guid, std::string>>>();
        EXPECT_TRUE(model::CreateReviewLink(
            project, StdToUTF16String(name),
            [answers](bool ok, const Guid& link, const kelcore::string::string& url) {
                answers->Add({ok, link, UTF16toStdString(url)});
            }));
        const auto values = answers->WaitFor(1);
        EXPECT_EQ(values.size(), 1u);
        return values.empty() ? std::tuple<bool, Guid, std::string>() : values.front();
    }

    bool AddAndWait(const Guid& asset, const Guid& link) {
        auto answers = std::make_shared<Recorded<bool>>();
        EXPECT_TRUE(model::AddAssetToLink(asset, link, [answers](bool ok) { answers->Add(ok); }));
        const auto values = answers->WaitFor(1);
        EXPECT_EQ(values.size(), 1u);
        return !values.empty() && values.front();
    }

    // Points the library at a client whose every exchange `answer` makes up.
    void CannedClient(CannedTransport::Answer answer) {
        StartService();
        vantrosdk::VantroConfig config(kClientId);
        config.SetTransport(std::make_shared<CannedTransport>(std::move(answer)));
        ASSERT_TRUE(vantrosdk::VantroClient::Initialize(config, {}).IsSuccess());
        ASSERT_TRUE(vantrosdk::VantroClient::Get()->UpdateAccessToken("canned").IsSuccess());
        integration::SetClient(vantrosdk::VantroClient::Get());
    }

    void InjectFault(const boost::json::object& fault) {
        const auto reply = client.PostJson(Url("/test/faults"), fault);
        ASSERT_EQ(reply.status, 201) << reply.body;
    }

    std::string apiToken;
};

TEST_F(CloudTransferCallsTest, WithoutAClientNothingIsSentAndNoCallbackEverRuns) {
    kelcore::threads::VirtualTime time;
    bool called = false;
    kelcore::string::string transferID;

    EXPECT_FALSE(model::UploadToFolder(
        u"/tmp/clip.mp4", Guid::CreateUnique(), Guid::CreateUnique(), transferID,
        [&](std::uint64_t, std::uint64_t) { called = true; },
        [&](bool, bool, const Guid&) { called = true; }));
    EXPECT_FALSE(model::CreateReviewLink(
        Guid::CreateUnique(), u"Cut 1",
        [&](bool, const Guid&, const kelcore::string::string&) { called = true; }));
    EXPECT_FALSE(model::AddAssetToLink(Guid::CreateUnique(), Guid::CreateUnique(),
                                       [&](bool) { called = true; }));
    EXPECT_FALSE(model::CancelUploadByID(u"5b0e2a8e-6f43-4e8e-9d55-2f1c3e1a0b7d"));
    time.RunUntilIdle();

    EXPECT_FALSE(called);
    EXPECT_TRUE(transferID.empty());
    EXPECT_EQ(time.PendingCount(), 0u);
}

TEST_F(CloudTransferCallsTest, AnUploadReportsAcknowledgedBytesAndEndsWithTheNewFile) {
    SignedInWorld();
    const std::uint64_t size = 21 * 1024 * 1024 + 7;  // three parts, the last one short
    const Guid stack = Guid::CreateUnique();

    const Upload upload = StartUpload(MediaFile("clip.mp4", size), stack);

    ASSERT_TRUE(upload.sent);
    EXPECT_FALSE(Guid(UTF16toStdString(upload.transferID)).IsNil());
    const Finished finished = AwaitFinished(upload);
    EXPECT_TRUE(finished.ok);
    EXPECT_FALSE(finished.cancelled);
    ASSERT_FALSE(finished.asset.IsNil());
    const auto progress = upload.progress->Values();
    ASSERT_FALSE(progress.empty());
    for (std::size_t i = 0; i < progress.size(); ++i) {
        EXPECT_EQ(progress[i].total, size);
        if (i > 0) {
            EXPECT_GE(progress[i].sent, progress[i - 1].sent);
        }
    }
    EXPECT_EQ(progress.back().sent, size);
    const auto asset = ApiGet("/v2/assets/" + finished.asset.AsStdString()).as_object();
    EXPECT_EQ(asset.at("filesize").as_int64(), static_cast<std::int64_t>(size));
    EXPECT_EQ(asset.at("parent_id").as_string(), stack.AsStdString());
}

TEST_F(CloudTransferCallsTest, ASecondUploadToTheSameStackBecomesItsNextVersion) {
    SignedInWorld();
    const Guid stack = Guid::CreateUnique();
    ASSERT_TRUE(AwaitFinished(StartUpload(MediaFile("cut1.mp4", 1024), stack)).ok);

    const Finished second = AwaitFinished(StartUpload(MediaFile("cut2.mp4", 2048), stack));

    ASSERT_TRUE(second.ok);
    const auto versions = ApiGet("/v2/assets/" + stack.AsStdString() + "/children").as_array();
    ASSERT_EQ(versions.size(), 2u);
    const auto asset = ApiGet("/v2/assets/" + second.asset.AsStdString()).as_object();
    EXPECT_EQ(asset.at("version").as_int64(), 2);
}

TEST_F(CloudTransferCallsTest, ACancelledUploadEndsAsCancelledWithNothingLeftOnTheService) {
    SignedInWorld();
    // Parts hang at the service until the client gives up on them.
    InjectFault({{"route", "/v2/uploads/*/parts/*"}, {"count", 100}, {"delay_ms", 60000}});
    Upload upload = StartUpload(MediaFile("long.mp4", 12 * 1024 * 1024), Guid::CreateUnique());
    ASSERT_TRUE(upload.sent);

    EXPECT_TRUE(model::CancelUploadByID(upload.transferID));

    const Finished finished = AwaitFinished(upload);
    EXPECT_FALSE(finished.ok);
    EXPECT_TRUE(finished.cancelled);
    EXPECT_TRUE(finished.asset.IsNil());
    EXPECT_FALSE(model::CancelUploadByID(upload.transferID));
    EXPECT_TRUE(ApiGet("/v2/assets/" + root + "/children").as_array().empty());
}

TEST_F(CloudTransferCallsTest, CancellingAnUnknownTransferAnswersFalse) {
    SignedInWorld();

    EXPECT_FALSE(model::CancelUploadByID(u"5b0e2a8e-6f43-4e8e-9d55-2f1c3e1a0b7d"));
    EXPECT_FALSE(model::CancelUploadByID(u"not an id"));
}

TEST_F(CloudTransferCallsTest, AServiceThatDropsEveryPartEndsAsAFailureAfterTheRetries) {
    SignedInWorld();
    InjectFault({{"route", "/v2/uploads/*/parts/*"}, {"count", 100000}, {"drop", true}});

    const Finished finished =
        AwaitFinished(StartUpload(MediaFile("clip.mp4", 4096), Guid::CreateUnique()));

    EXPECT_FALSE(finished.ok);
    EXPECT_FALSE(finished.cancelled);
    EXPECT_TRUE(finished.asset.IsNil());
}

TEST_F(CloudTransferCallsTest, APartThatFailsOnceIsSentAgainAndTheUploadCompletes) {
    SignedInWorld();
    InjectFault({{"route", "/v2/uploads/*/parts/*"}, {"count", 1}, {"drop", true}});

    const Finished finished =
        AwaitFinished(StartUpload(MediaFile("clip.mp4", 18 * 1024 * 1024), Guid::CreateUnique()));

    ASSERT_TRUE(finished.ok);
    EXPECT_EQ(ApiGet("/v2/assets/" + finished.asset.AsStdString()).at("filesize").as_int64(),
              18 * 1024 * 1024);
}

TEST_F(CloudTransferCallsTest, ALinkIsCreatedAndTheUploadedFileAddedToIt) {
    SignedInWorld();
    const Finished uploaded =
        AwaitFinished(StartUpload(MediaFile("clip.mp4", 4096), Guid::CreateUnique()));
    ASSERT_TRUE(uploaded.ok);

    const auto [created, link, url] = CreateLinkAndWait(Guid(alpha), "Alpha — cut 1");

    ASSERT_TRUE(created);
    EXPECT_FALSE(link.IsNil());
    EXPECT_EQ(url.rfind(Url("/r/"), 0), 0u) << url;
    EXPECT_TRUE(AddAndWait(uploaded.asset, link));
    const auto read = ApiGet("/v2/review_links/" + link.AsStdString()).as_object();
    EXPECT_EQ(read.at("name").as_string(), "Alpha — cut 1");
    ASSERT_EQ(read.at("items").as_array().size(), 1u);
    EXPECT_EQ(read.at("items").as_array()[0].at("asset_id").as_string(),
              uploaded.asset.AsStdString());
}

TEST_F(CloudTransferCallsTest, ALinkInAProjectTheUserCannotSeeIsRefused) {
    SignedInWorld();

    const auto [created, link, url] = CreateLinkAndWait(Guid::CreateUnique(), "Nowhere");

    EXPECT_FALSE(created);
    EXPECT_TRUE(link.IsNil());
    EXPECT_TRUE(url.empty());
}

TEST_F(CloudTransferCallsTest, AddingAFolderToALinkIsRefused) {
    SignedInWorld();
    const auto [created, link, url] = CreateLinkAndWait(Guid(alpha), "Folders");
    ASSERT_TRUE(created);

    EXPECT_FALSE(AddAndWait(Guid(root), link));
}

TEST_F(CloudTransferCallsTest, AnUploadAnswerWithoutAnAssetIdIsAFailure) {
    CannedClient([](const vantrocommon::http::Request& request) {
        if (request.url.ends_with("/uploads")) {
            return JsonReply(201, {{"upload_id", "0f5b8c1e-1a2b-4c3d-8e9f-00112233aabb"},
                                   {"part_size", 8388608},
                                   {"part_count", 1},
                                   {"filesize", 4096}});
        }
        if (request.url.ends_with("/complete")) {
            return JsonReply(201, {{"name", "clip.mp4"}, {"type", "file"}, {"filesize", 4096}});
        }
        std::string digest;
        for (const auto& [name, value] : request.headers) {
            if (name == "X-Content-SHA256")
                digest = value;
        }
        return JsonReply(200, {{"part", 1}, {"size", 4096}, {"sha256", digest}});
    });

    const Finished finished =
        AwaitFinished(StartUpload(MediaFile("clip.mp4", 4096), Guid::CreateUnique()));

    EXPECT_FALSE(finished.ok);
    EXPECT_FALSE(finished.cancelled);
    EXPECT_TRUE(finished.asset.IsNil());
}

TEST_F(CloudTransferCallsTest, ALinkAnswerWithAnIdButNoUrlIsAFailure) {
    CannedClient([](const vantrocommon::http::Request&) {
        return JsonReply(
            201,
            {{"id", "0f5b8c1e-1a2b-4c3d-8e9f-00112233aabb"}, {"name", "Cut 1"}, {"item_count", 0}});
    });

    const auto [created, link, url] = CreateLinkAndWait(Guid::CreateUnique(), "Cut 1");

    EXPECT_FALSE(created);
    EXPECT_TRUE(link.IsNil());
    EXPECT_TRUE(url.empty());
}

TEST_F(CloudTransferCallsTest, AnAnswerAlreadyThereFindsTheTransferIdFilledIn) {
    StartService();
    vantrosdk::VantroConfig config(kClientId);
    config.SetExecutor(std::make_shared<InlineExecutor>());
    ASSERT_TRUE(vantrosdk::VantroClient::Initialize(config, {}).IsSuccess());
    ASSERT_TRUE(vantrosdk::VantroClient::Get()->UpdateAccessToken("any").IsSuccess());
    integration::SetClient(vantrosdk::VantroClient::Get());
    kelcore::string::string transferID;
    kelcore::string::string seenByCallback;
    bool finishedDuringCall = false;

    // A missing file fails inside the call, on the inline executor.
    const bool sent = model::UploadToFolder(
        StdToUTF16String((directory.Path() / "missing.mp4").string()), Guid::CreateUnique(),
        Guid::CreateUnique(), transferID, {}, [&](bool ok, bool cancelled, const Guid& asset) {
            finishedDuringCall = true;
            seenByCallback = transferID;
            EXPECT_FALSE(ok);
            EXPECT_FALSE(cancelled);
            EXPECT_TRUE(asset.IsNil());
        });

    EXPECT_TRUE(sent);
    EXPECT_TRUE(finishedDuringCall);
    EXPECT_FALSE(seenByCallback.empty());
    EXPECT_EQ(seenByCallback, transferID);
}

}  // namespace
