// The upload API against the real server: parts in parallel, a corrupted part, a client that
// goes away, resuming from the status, completion, ranged download, version stacks, storage,
// abort and the refusals.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <boost/json/parse.hpp>
#include <fstream>
#include <random>
#include <set>

#include "ServerWorldFixture.h"
#include "support/EventStreamClient.h"
#include "support/PartUploader.h"

namespace servertest {
namespace {

using testsupport::Bearer;
using testsupport::HttpClient;
using testsupport::PartUploader;

constexpr std::int64_t kMiB = 1024 * 1024;

class UploadTest : public ServerWorldFixture {
protected:
    void StartWorld(std::int64_t storageLimit = 1024 * kMiB) {
        ann = AddUser("ann", "pw-ann");
        bob = AddUser("bob", "pw-bob");
        studio = AdminId({"account", "add", "--name", "Studio", "--owner", "ann", "--storage-limit",
                          std::to_string(storageLimit)});
        Admin({"account", "member", "add", "--account", studio, "--user", "bob"});
        editors =
            AdminId({"team", "add", "--account", studio, "--name", "Editors", "--member", "ann"});
        hidden =
            AdminId({"team", "add", "--account", studio, "--name", "Hidden", "--member", "bob"});
        alpha = AdminId({"project", "add", "--team", editors, "--name", "Alpha"});
        secret = AdminId({"project", "add", "--team", hidden, "--name", "Secret"});
        StartServer({"--enable-test-hooks"});
        annToken = SignIn("ann", "pw-ann").access;
        bobToken = SignIn("bob", "pw-bob").access;
        root = RootOf(annToken, editors, alpha);
        secretRoot = RootOf(bobToken, hidden, secret);
    }

    /// A file of `size` random bytes in the test's directory.
    std::filesystem::path RandomFile(const std::string& name, std::int64_t size) {
        const auto path = files.Path() / name;
        std::mt19937_64 random(static_cast<std::uint64_t>(size));
        std::ofstream out(path, std::ios::binary);
        std::vector<std::uint64_t> block(1 << 16);
        for (std::int64_t written = 0; written < size;) {
            for (auto& word : block) {
                word = random();
            }
            const auto count = std::min<std::int64_t>(
                size - written, static_cast<std::int64_t>(block.size() * sizeof(std::uint64_t)));
            out.write(reinterpret_cast<const char*>(block.data()), count);
            written += count;
        }
        return path;
    }

    HttpClient::Reply CreateUpload(const boost::json::object& body,
                                   const std::string& folder = {}) {
        return client.PostJson(Url("/v2/assets/" + (folder.empty() ? root : folder) + "/uploads"),
                               body, Bearer(annToken));
    }

    /// Creates an upload for `file`; fails the test unless it is 201.
    boost::json::object Create(const std::filesystem::path& file, std::int64_t partSize = 0,
                               const std::string& autoversion = {}) {
        boost::json::object body{{"name", file.filename().string()},
                                 {"filesize", std::filesystem::file_size(file)}};
        if (partSize > 0) {
            body["part_size"] = partSize;
        }
        if (!autoversion.empty()) {
            body["autoversion_id"] = autoversion;
        }
        const auto reply = CreateUpload(body);
        EXPECT_EQ(reply.status, 201) << reply.body;
        return reply.status == 201 ? reply.Json().as_object() : boost::json::object{};
    }

    PartUploader::Part PartOf(const boost::json::object& upload, const std::filesystem::path& file,
                              std::int64_t number) {
        const std::int64_t partSize = upload.at("part_size").as_int64();
        const std::int64_t filesize = upload.at("filesize").as_int64();
        const std::int64_t offset = partSize * (number - 1);
        const std::int64_t size = std::min(partSize, filesize - offset);
        PartUploader::Part part;
        part.url = PartUrl(upload, number);
        part.source = file;
        part.offset = static_cast<std::uint64_t>(offset);
        part.size = static_cast<std::uint64_t>(size);
        part.sha256 = PartUploader::Sha256OfFile(file, part.offset, part.size);
        return part;
    }

    std::string PartUrl(const boost::json::object& upload, std::int64_t number) const {
        return Url("/v2/uploads/" + std::string(upload.at("upload_id").as_string()) + "/parts/" +
                   std::to_string(number));
    }

    std::string UploadUrl(const boost::json::object& upload, const std::string& tail = {}) const {
        return Url("/v2/uploads/" + std::string(upload.at("upload_id").as_string()) + tail);
    }

    /// Sends every part in `numbers` in parallel and expects 200 for each.
    void SendParts(const boost::json::object& upload, const std::filesystem::path& file,
                   const std::vector<std::int64_t>& numbers) {
        std::vector<PartUploader::Part> parts;
        for (const auto number : numbers) {
            parts.push_back(PartOf(upload, file, number));
        }
        const auto replies = PartUploader(annToken).PutAll(parts);
        for (std::size_t i = 0; i < replies.size(); ++i) {
            EXPECT_EQ(replies[i].status, 200)
                << "part " << numbers[i] << ": " << replies[i].body << replies[i].transportError;
        }
    }

    HttpClient::Reply Complete(const boost::json::object& upload, const std::string& sha256) {
        return client.PostJson(UploadUrl(upload, "/complete"), {{"sha256", sha256}},
                               Bearer(annToken));
    }

    /// Uploads a whole small file in one part and completes it; the completion's answer.
    HttpClient::Reply UploadWhole(const std::filesystem::path& file,
                                  const std::string& autoversion = {}) {
        const auto upload = Create(file, 0, autoversion);
        SendParts(upload, file, {1});
        return Complete(upload,
                        PartUploader::Sha256OfFile(file, 0, std::filesystem::file_size(file)));
    }

    std::string FileBytes(const std::filesystem::path& file, std::uint64_t offset,
                          std::uint64_t size) {
        std::ifstream in(file, std::ios::binary);
        in.seekg(static_cast<std::streamoff>(offset));
        std::string bytes(size, '\0');
        in.read(bytes.data(), static_cast<std::streamsize>(size));
        return bytes;
    }

    /// A fresh id of the server's form, for autoversion ids that do not exist yet.
    static std::string NewId() {
        std::random_device device;
        std::mt19937_64 random(device());
        static constexpr char kDigits[] = "0123456789abcdef";
        std::string id;
        for (int i = 0; i < 32; ++i) {
            if (i == 8 || i == 12 || i == 16 || i == 20) {
                id.push_back('-');
            }
            id.push_back(kDigits[random() % 16]);
        }
        return id;
    }

    testsupport::TemporaryDirectory files;
    std::string studio, annToken, bobToken, root, secretRoot;
};

TEST_F(UploadTest, ABigFileSurvivesACorruptPartAndADroppedClientAndDownloadsIntact) {
    StartWorld();
    const std::int64_t size = 200 * kMiB + 12345;
    const auto file = RandomFile("big.mov", size);
    const auto upload = Create(file);
    ASSERT_EQ(upload.at("part_size").as_int64(), 8 * kMiB);
    const std::int64_t count = upload.at("part_count").as_int64();
    ASSERT_EQ(count, 26);

    // Parts 1-8 in parallel, part 3 with a checksum that does not fit its bytes.
    std::vector<PartUploader::Part> first;
    for (std::int64_t n = 1; n <= 8; ++n) {
        first.push_back(PartOf(upload, file, n));
    }
    first[2].sha256 = PartUploader::Sha256("something else");
    auto replies = PartUploader(annToken).PutAll(first);
    for (std::size_t i = 0; i < replies.size(); ++i) {
        if (i == 2) {
            EXPECT_EQ(replies[i].status, 422) << replies[i].body;
            EXPECT_EQ(boost::json::parse(replies[i].body).at("error").as_string(),
                      "checksum_mismatch");
        } else {
            ASSERT_EQ(replies[i].status, 200) << replies[i].body << replies[i].transportError;
            const auto answer = boost::json::parse(replies[i].body).as_object();
            EXPECT_EQ(answer.at("part").as_int64(), static_cast<std::int64_t>(i + 1));
            EXPECT_EQ(answer.at("sha256").as_string(), first[i].sha256);
        }
    }

    // The client goes away half-way through parts 9-12.
    std::vector<PartUploader::Part> dropped;
    for (std::int64_t n = 9; n <= 12; ++n) {
        dropped.push_back(PartOf(upload, file, n));
        dropped.back().abortAfter = dropped.back().size / 2;
    }
    for (const auto& reply : PartUploader(annToken).PutAll(dropped)) {
        EXPECT_EQ(reply.status, 0);
        EXPECT_FALSE(reply.transportError.empty());
    }

    // The status lists exactly what arrived whole, in order.
    const auto status = client.Get(UploadUrl(upload), Bearer(annToken));
    ASSERT_EQ(status.status, 200) << status.body;
    std::vector<std::int64_t> arrived;
    const auto listed = status.Json();
    for (const auto& part : listed.at("parts").as_array()) {
        arrived.push_back(part.at("part").as_int64());
        EXPECT_EQ(part.at("size").as_int64(), 8 * kMiB);
        EXPECT_EQ(part.at("sha256").as_string(),
                  first[static_cast<std::size_t>(arrived.back() - 1)].sha256);
    }
    EXPECT_EQ(arrived, (std::vector<std::int64_t>{1, 2, 4, 5, 6, 7, 8}));

    const auto early = Complete(upload, PartUploader::Sha256OfFile(file, 0, size));
    EXPECT_EQ(early.status, 409);
    EXPECT_EQ(early.Json().at("error").as_string(), "upload_incomplete");
    EXPECT_EQ(early.Json().at("missing_parts").as_array().size(), 19u);

    // The rest, four at a time, the corrupted part among them.
    std::vector<std::int64_t> rest{3};
    for (std::int64_t n = 9; n <= count; ++n) {
        rest.push_back(n);
    }
    for (std::size_t i = 0; i < rest.size(); i += 4) {
        SendParts(upload, file,
                  std::vector<std::int64_t>(
                      rest.begin() + static_cast<std::ptrdiff_t>(i),
                      rest.begin() + static_cast<std::ptrdiff_t>(std::min(i + 4, rest.size()))));
    }

    const auto wrong = Complete(upload, PartUploader::Sha256("not the file"));
    EXPECT_EQ(wrong.status, 422);
    EXPECT_EQ(wrong.Json().at("error").as_string(), "checksum_mismatch");

    const auto done = Complete(upload, PartUploader::Sha256OfFile(file, 0, size));
    ASSERT_EQ(done.status, 201) << done.body;
    const auto asset = done.Json().as_object();
    EXPECT_EQ(asset.at("type").as_string(), "file");
    EXPECT_EQ(asset.at("filesize").as_int64(), size);
    EXPECT_EQ(asset.at("parent_id").as_string(), root);
    EXPECT_FALSE(asset.contains("version"));
    EXPECT_FALSE(asset.contains("version_stack_id"));
    EXPECT_EQ(client.Get(UploadUrl(upload), Bearer(annToken)).status, 404);
    EXPECT_TRUE(std::filesystem::is_empty(server.DataDir() / "uploads"));

    // Downloaded in ranges that cover every byte, then the edges.
    const std::string content =
        Url("/v2/assets/" + std::string(asset.at("id").as_string()) + "/content");
    const std::uint64_t total = static_cast<std::uint64_t>(size);
    const std::uint64_t step = 48 * kMiB;
    for (std::uint64_t offset = 0; offset < total; offset += step) {
        const std::uint64_t last = std::min(offset + step, total) - 1;
        auto headers = Bearer(annToken);
        headers.emplace_back("Range",
                             "bytes=" + std::to_string(offset) + "-" + std::to_string(last));
        const auto piece = client.Get(content, headers);
        ASSERT_EQ(piece.status, 206);
        EXPECT_EQ(piece.Header("content-range"), "bytes " + std::to_string(offset) + "-" +
                                                     std::to_string(last) + "/" +
                                                     std::to_string(total));
        ASSERT_TRUE(piece.body == FileBytes(file, offset, last - offset + 1))
            << "bytes from " << offset << " differ";
    }
    auto lastByte = Bearer(annToken);
    lastByte.emplace_back("Range", "bytes=" + std::to_string(total - 1) + "-");
    const auto tail = client.Get(content, lastByte);
    EXPECT_EQ(tail.status, 206);
    EXPECT_EQ(tail.body, FileBytes(file, total - 1, 1));
    auto suffix = Bearer(annToken);
    suffix.emplace_back("Range", "bytes=-5000");
    const auto end = client.Get(content, suffix);
    EXPECT_EQ(end.status, 206);
    EXPECT_EQ(end.body, FileBytes(file, total - 5000, 5000));
    EXPECT_EQ(end.Header("content-type"), "video/quicktime");
}

TEST_F(UploadTest, AutoversionMakesTheStackThenAddsTheNextVersionToIt) {
    StartWorld();
    const std::string stack = NewId();
    const auto v1 = UploadWhole(RandomFile("cut.mp4", 1000), stack);
    ASSERT_EQ(v1.status, 201) << v1.body;
    EXPECT_EQ(v1.Json().at("version").as_int64(), 1);
    EXPECT_EQ(v1.Json().at("version_stack_id").as_string(), stack);
    EXPECT_EQ(v1.Json().at("parent_id").as_string(), stack);

    const auto v2 = UploadWhole(RandomFile("cut-2.mp4", 2000), stack);
    ASSERT_EQ(v2.status, 201) << v2.body;
    EXPECT_EQ(v2.Json().at("version").as_int64(), 2);
    EXPECT_EQ(v2.Json().at("version_stack_id").as_string(), stack);

    const auto children =
        client.Get(Url("/v2/assets/" + root + "/children"), Bearer(annToken)).Json();
    ASSERT_EQ(children.as_array().size(), 1u);
    const auto& made = children.as_array()[0];
    EXPECT_EQ(made.at("id").as_string(), stack);
    EXPECT_EQ(made.at("type").as_string(), "version_stack");
    EXPECT_EQ(made.at("name").as_string(), "cut.mp4");
    EXPECT_EQ(made.at("filesize").as_int64(), 2000);
    const auto versions =
        client.Get(Url("/v2/assets/" + stack + "/children"), Bearer(annToken)).Json();
    EXPECT_EQ(versions.as_array().size(), 2u);
}

TEST_F(UploadTest, TwoUploadsCompletingIntoOneNewStackMakeOneStack) {
    StartWorld();
    const std::string stack = NewId();
    const auto a = RandomFile("a.mp4", 300);
    const auto b = RandomFile("b.mp4", 400);
    const auto first = Create(a, 0, stack);
    const auto second = Create(b, 0, stack);
    SendParts(first, a, {1});
    SendParts(second, b, {1});
    EXPECT_EQ(
        Complete(second, PartUploader::Sha256OfFile(b, 0, 400)).Json().at("version").as_int64(), 1);
    EXPECT_EQ(
        Complete(first, PartUploader::Sha256OfFile(a, 0, 300)).Json().at("version").as_int64(), 2);
    const auto children = client.Get(Url("/v2/assets/" + root + "/children"), Bearer(annToken));
    EXPECT_EQ(children.Json().as_array().size(), 1u);
}

TEST_F(UploadTest, AnAutoversionIdOfAnotherKindOrOutOfSightIsRefused) {
    StartWorld();
    const auto folder = client.PostJson(Url("/v2/assets/" + root + "/children"),
                                        {{"name", "f"}, {"type", "folder"}}, Bearer(annToken));
    const std::string folderId(folder.Json().at("id").as_string());
    const auto conflict =
        CreateUpload({{"name", "x.mp4"}, {"filesize", 10}, {"autoversion_id", folderId}});
    EXPECT_EQ(conflict.status, 409);
    EXPECT_EQ(conflict.Json().at("error").as_string(), "autoversion_conflict");

    // Bob's folder: ann cannot see it, so it is not found whatever its kind.
    const auto hiddenStack = AdminId({"folder", "add", "--parent", secretRoot, "--name", "h"});
    EXPECT_EQ(
        CreateUpload({{"name", "x.mp4"}, {"filesize", 10}, {"autoversion_id", hiddenStack}}).status,
        404);
    EXPECT_EQ(
        CreateUpload({{"name", "x.mp4"}, {"filesize", 10}, {"autoversion_id", "nope"}}).status,
        400);
}

TEST_F(UploadTest, TheStorageLimitCountsPendingUploadsAndRefusesWith403) {
    StartWorld(20 * kMiB);
    const auto tooBig = CreateUpload({{"name", "x.mov"}, {"filesize", 20 * kMiB + 1}});
    EXPECT_EQ(tooBig.status, 403);
    EXPECT_EQ(tooBig.Json().at("error").as_string(), "storage_limit_exceeded");

    const auto first = CreateUpload({{"name", "a.mov"}, {"filesize", 12 * kMiB}});
    ASSERT_EQ(first.status, 201);
    const auto second = CreateUpload({{"name", "b.mov"}, {"filesize", 12 * kMiB}});
    EXPECT_EQ(second.status, 403);
    ASSERT_EQ(client.Delete(UploadUrl(first.Json().as_object()), Bearer(annToken)).status, 204);
    EXPECT_EQ(CreateUpload({{"name", "b.mov"}, {"filesize", 12 * kMiB}}).status, 201);
}

TEST_F(UploadTest, CompletionCountsTheFileInTheAccountsStorage) {
    StartWorld();
    ASSERT_EQ(UploadWhole(RandomFile("s.mov", 4321)).status, 201);
    const auto account = client.Get(Url("/v2/accounts/" + studio), Bearer(annToken));
    EXPECT_EQ(account.Json().at("storage_used").as_int64(), 4321);
}

TEST_F(UploadTest, AbortRemovesTheUploadAndItsBytes) {
    StartWorld();
    const auto file = RandomFile("gone.mov", 6 * kMiB);
    const auto upload = Create(file, 5 * kMiB);
    SendParts(upload, file, {2});
    const auto bytes =
        server.DataDir() / "uploads" / std::string(upload.at("upload_id").as_string());
    EXPECT_TRUE(std::filesystem::exists(bytes));
    EXPECT_EQ(client.Delete(UploadUrl(upload), Bearer(annToken)).status, 204);
    EXPECT_FALSE(std::filesystem::exists(bytes));
    EXPECT_EQ(client.Get(UploadUrl(upload), Bearer(annToken)).status, 404);
    EXPECT_EQ(client.Delete(UploadUrl(upload), Bearer(annToken)).status, 404);
}

TEST_F(UploadTest, PartsOfTheWrongSizeOrWithoutChecksumAreRefusedAndNotKept) {
    StartWorld();
    const auto file = RandomFile("p.mov", 6 * kMiB);
    const auto upload = Create(file, 5 * kMiB);
    const std::string part2 = FileBytes(file, 5 * kMiB, kMiB);
    auto headers = Bearer(annToken);
    headers.emplace_back("X-Content-SHA256", PartUploader::Sha256(part2));

    const auto shorter = client.Send("PUT", PartUrl(upload, 2), part2.substr(1), headers);
    EXPECT_EQ(shorter.status, 400) << shorter.body;
    HttpClient fresh;
    const auto longer = fresh.Send("PUT", PartUrl(upload, 2), part2 + "x", headers);
    EXPECT_EQ(longer.status, 413) << longer.body;
    HttpClient third;
    const auto unchecked = third.Send("PUT", PartUrl(upload, 2), part2, Bearer(annToken));
    EXPECT_EQ(unchecked.status, 400);
    EXPECT_TRUE(
        client.Get(UploadUrl(upload), Bearer(annToken)).Json().at("parts").as_array().empty());

    HttpClient fourth;
    EXPECT_EQ(fourth.Send("PUT", PartUrl(upload, 2), part2, headers).status, 200);
}

TEST_F(UploadTest, PartNumbersOutsideTheUploadAre400) {
    StartWorld();
    const auto upload = CreateUpload({{"name", "n.mov"}, {"filesize", 10}}).Json().as_object();
    auto headers = Bearer(annToken);
    headers.emplace_back("X-Content-SHA256", PartUploader::Sha256("0123456789"));
    for (const std::string number : {"0", "2", "-1", "x", "01x"}) {
        HttpClient fresh;
        const auto reply =
            fresh.Send("PUT", UploadUrl(upload, "/parts/" + number), "0123456789", headers);
        EXPECT_EQ(reply.status, 400) << number;
    }
}

TEST_F(UploadTest, AnotherUsersUploadIsNotFound) {
    StartWorld();
    const auto upload = CreateUpload({{"name", "mine.mov"}, {"filesize", 10}}).Json().as_object();
    EXPECT_EQ(client.Get(UploadUrl(upload), Bearer(bobToken)).status, 404);
    EXPECT_EQ(client.Delete(UploadUrl(upload), Bearer(bobToken)).status, 404);
    auto headers = Bearer(bobToken);
    headers.emplace_back("X-Content-SHA256", PartUploader::Sha256("0123456789"));
    EXPECT_EQ(client.Send("PUT", PartUrl(upload, 1), "0123456789", headers).status, 404);
    EXPECT_EQ(client
                  .PostJson(UploadUrl(upload, "/complete"),
                            {{"sha256", PartUploader::Sha256("0123456789")}}, Bearer(bobToken))
                  .status,
              404);
    // Nor may anyone upload into a folder they cannot see.
    EXPECT_EQ(client
                  .PostJson(Url("/v2/assets/" + secretRoot + "/uploads"),
                            {{"name", "x.mov"}, {"filesize", 1}}, Bearer(annToken))
                  .status,
              404);
}

TEST_F(UploadTest, AskingAgainAfterACompletionGetsTheSameFileAndOnlyWithTheSameDigest) {
    StartWorld();
    const auto file = RandomFile("again.mov", 1000);
    const auto upload = Create(file, 0, NewId());
    SendParts(upload, file, {1});
    const auto digest = PartUploader::Sha256OfFile(file, 0, 1000);
    const auto first = Complete(upload, digest);
    ASSERT_EQ(first.status, 201) << first.body;
    const auto again = Complete(upload, digest);
    ASSERT_EQ(again.status, 201) << again.body;
    EXPECT_EQ(again.Json().at("id"), first.Json().at("id"));
    EXPECT_EQ(again.Json().at("version_stack_id"), first.Json().at("version_stack_id"));
    EXPECT_EQ(Complete(upload, PartUploader::Sha256("something else")).status, 404);
    EXPECT_EQ(
        client.PostJson(UploadUrl(upload, "/complete"), {{"sha256", digest}}, Bearer(bobToken))
            .status,
        404);
    // Still one file: the repeat made nothing.
    const auto stack = std::string(first.Json().at("version_stack_id").as_string());
    EXPECT_EQ(client.Get(Url("/v2/assets/" + stack + "/children"), Bearer(annToken))
                  .Json()
                  .as_array()
                  .size(),
              1u);
}

TEST_F(UploadTest, AnAnswerDroppedAfterTheRouteRanLeavesItsWorkDone) {
    StartWorld();
    const auto file = RandomFile("lost.mov", 1000);
    const auto upload = Create(file);
    SendParts(upload, file, {1});
    ASSERT_EQ(client
                  .PostJson(Url("/test/faults"),
                            {{"route", "/v2/uploads/*/complete"}, {"drop_answer", true}})
                  .status,
              201);
    const auto digest = PartUploader::Sha256OfFile(file, 0, 1000);
    // A fresh connection: on a reused one, curl itself would quietly send the request again.
    testsupport::HttpClient fresh;
    const auto lost =
        fresh.PostJson(UploadUrl(upload, "/complete"), {{"sha256", digest}}, Bearer(annToken));
    EXPECT_EQ(lost.status, 0) << lost.body;
    EXPECT_FALSE(lost.transportError.empty());
    const auto again = Complete(upload, digest);
    ASSERT_EQ(again.status, 201) << again.body;
    EXPECT_EQ(again.Json().at("name").as_string(), "lost.mov");
}

TEST_F(UploadTest, AnEmptyFileIsOneEmptyPart) {
    StartWorld();
    const auto upload = CreateUpload({{"name", "empty.txt"}, {"filesize", 0}}).Json().as_object();
    EXPECT_EQ(upload.at("part_count").as_int64(), 1);
    auto headers = Bearer(annToken);
    headers.emplace_back("X-Content-SHA256", PartUploader::Sha256(""));
    EXPECT_EQ(client.Send("PUT", PartUrl(upload, 1), "", headers).status, 200);
    const auto done = Complete(upload, PartUploader::Sha256(""));
    ASSERT_EQ(done.status, 201) << done.body;
    EXPECT_EQ(done.Json().at("filesize").as_int64(), 0);
    const std::string content =
        Url("/v2/assets/" + std::string(done.Json().at("id").as_string()) + "/content");
    const auto whole = client.Get(content, Bearer(annToken));
    EXPECT_EQ(whole.status, 200);
    EXPECT_TRUE(whole.body.empty());
    auto range = Bearer(annToken);
    range.emplace_back("Range", "bytes=0-");
    EXPECT_EQ(client.Get(content, range).status, 416);
}

TEST_F(UploadTest, PartSizesOutOfRangeAndBadBodiesAre400) {
    StartWorld();
    EXPECT_EQ(
        CreateUpload({{"name", "a.mov"}, {"filesize", 10}, {"part_size", 5 * kMiB - 1}}).status,
        400);
    EXPECT_EQ(
        CreateUpload({{"name", "a.mov"}, {"filesize", 10}, {"part_size", 2048 * kMiB}}).status,
        400);
    EXPECT_EQ(CreateUpload({{"name", "a/b"}, {"filesize", 10}}).status, 400);
    EXPECT_EQ(CreateUpload({{"name", "a.mov"}, {"filesize", -1}}).status, 400);
    EXPECT_EQ(CreateUpload({{"name", "a.mov"}}).status, 400);
    EXPECT_EQ(CreateUpload({{"name", "a.mov"}, {"filesize", 1}, {"colour", "red"}}).status, 400);
}

TEST_F(UploadTest, ASecondSenderOfAPartBeingWrittenGets409) {
    StartWorld();
    const auto file = RandomFile("slow.mov", 6 * kMiB);
    const auto upload = Create(file, 5 * kMiB);
    const auto part = PartOf(upload, file, 1);
    // The first sender sends the header and some bytes on a raw connection, then waits.
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(server.Port());
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ASSERT_EQ(::connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    const std::string head = "PUT /v2/uploads/" + std::string(upload.at("upload_id").as_string()) +
                             "/parts/1 HTTP/1.1\r\nHost: x\r\nAuthorization: Bearer " + annToken +
                             "\r\nX-Content-SHA256: " + part.sha256 +
                             "\r\nContent-Length: " + std::to_string(part.size) + "\r\n\r\n" +
                             FileBytes(file, 0, 1000);
    ASSERT_EQ(::send(socket, head.data(), head.size(), 0), static_cast<ssize_t>(head.size()));
    // The server marks the part when it reads that header. Wait for the mark through the
    // completion, which refuses while any part is being sent and takes no mark itself: a second
    // PUT used as the probe could take the mark first and turn the first sender away instead.
    bool marked = false;
    for (int attempt = 0; attempt < 2000 && !marked; ++attempt) {
        const auto probe = Complete(upload, part.sha256);
        marked = probe.status == 409 && probe.Json().at("error").as_string() == "part_in_progress";
    }
    ASSERT_TRUE(marked) << "the first sender's part was never seen in progress";
    auto headers = Bearer(annToken);
    headers.emplace_back("X-Content-SHA256", part.sha256);
    const auto reply = HttpClient().Send("PUT", part.url, FileBytes(file, 0, part.size), headers);
    EXPECT_EQ(reply.status, 409) << reply.body;
    EXPECT_EQ(reply.Json().at("error").as_string(), "part_in_progress");
    ::close(socket);
}

TEST_F(UploadTest, AnInjectedStatusAnswersAPartWithoutReadingIt) {
    StartWorld();
    const auto file = RandomFile("f.mov", 6 * kMiB);
    const auto upload = Create(file, 5 * kMiB);
    ASSERT_EQ(
        client.PostJson(Url("/test/faults"), {{"route", "/v2/uploads/*/parts/*"}, {"status", 503}})
            .status,
        201);
    const auto replies = PartUploader(annToken).PutAll({PartOf(upload, file, 1)});
    EXPECT_EQ(replies[0].status, 503);
    EXPECT_TRUE(
        client.Get(UploadUrl(upload), Bearer(annToken)).Json().at("parts").as_array().empty());
    SendParts(upload, file, {1});
}

TEST_F(UploadTest, FoldersAndCompletedUploadsReachTheEventStream) {
    StartWorld();
    testsupport::EventStreamClient events(Url("/v2/events"), Bearer(annToken));
    ASSERT_TRUE(events.WaitForComment());
    const auto isListOf = [](std::string parent) {
        return [parent](const testsupport::EventStreamClient::Event& event) {
            return event.type == "asset-list" &&
                   boost::json::parse(event.data).at("parent_id").as_string() == parent;
        };
    };
    const auto folder = client.PostJson(Url("/v2/assets/" + root + "/children"),
                                        {{"name", "new"}, {"type", "folder"}}, Bearer(annToken));
    ASSERT_EQ(folder.status, 201);
    EXPECT_TRUE(events.WaitFor(isListOf(root)));
    const std::string folderId(folder.Json().at("id").as_string());
    const std::string stack = NewId();
    const auto file = RandomFile("e.mov", 100);
    const auto upload = Create(file, 0, stack);
    SendParts(upload, file, {1});
    ASSERT_EQ(Complete(upload, PartUploader::Sha256OfFile(file, 0, 100)).status, 201);
    EXPECT_TRUE(events.WaitFor(isListOf(stack)));
    EXPECT_FALSE(folderId.empty());
}

TEST_F(UploadTest, ThePlainStreamSinkCountsAndKeepsNothing) {
    StartWorld();
    const std::string body(3 * kMiB, 'x');
    const auto reply = client.Send("PUT", Url("/test/sink"), body, {});
    ASSERT_EQ(reply.status, 201) << reply.body;
    EXPECT_EQ(reply.Json().at("bytes").as_int64(), 3 * kMiB);
    EXPECT_TRUE(std::filesystem::is_empty(server.DataDir() / "uploads"));
}

}  // namespace
}  // namespace servertest
