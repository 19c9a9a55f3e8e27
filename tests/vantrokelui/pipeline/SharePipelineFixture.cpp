#include "SharePipelineFixture.h"

#include <boost/json.hpp>

#include <kelcore/string/String.h>
#include <kelcore/threads/MainThread.h>
#include <vantrokelui/model/ShareManager.h>

#include "support/AwaitFuture.h"

namespace vantrokeluitest {

using kelcore::string::StdToUTF16String;
using vantrokelui::model::testing::TestShareHost;

std::string KeyText(kelcore::string::string_view key) {
    return kelcore::string::UTF16toStdString(kelcore::string::string(key));
}

void SharePipelineFixture::SetUp() {
    CloudShareFixture::SetUp();
    kelcore::threads::SetMainThread();
    queue = std::make_shared<kelcore::threads::MainThreadQueue>();
    kelcore::threads::SetMainThreadDispatcher(queue);
    host = std::make_unique<TestShareHost>(queue);
}

void SharePipelineFixture::TearDown() {
    host->Pump();
    host.reset();
    queue->RunUntilEmpty();
    kelcore::threads::SetMainThreadDispatcher(nullptr);
    CloudShareFixture::TearDown();
}

void SharePipelineFixture::StartSignedInWorld() {
    StartWorld();
    StoreToken();
    ASSERT_TRUE(SignInAndWait());
    const auto made = client.PostJson(Url("/v2/assets/" + root + "/children"),
                                      boost::json::object{{"name", "Reviews"}, {"type", "folder"}},
                                      testsupport::Bearer(Token()));
    ASSERT_EQ(made.status, 201) << made.body;
    folder = std::string(made.Json().at("id").as_string());

    host->Install();
    sequence = {Guid::CreateUnique(), Guid::CreateUnique()};
    host->OpenSequence(sequence, u"Cut 1");
    host->ChooseFolder({Guid(folder), u"Studio/Editors/Alpha/Reviews", Guid(alpha)});
    host->StoreSelectedPreset();
    host->ShowScreen(ViewID::ReviewInVantro);
}

std::string SharePipelineFixture::Token() {
    if (apiToken.empty()) {
        apiToken = SignIn(kUser, kPassword).access;
    }
    return apiToken;
}

boost::json::value SharePipelineFixture::ApiGet(const std::string& path) {
    const auto reply = client.Get(Url(path), testsupport::Bearer(Token()));
    EXPECT_EQ(reply.status, 200) << path << ": " << reply.body;
    return reply.status == 200 ? boost::json::parse(reply.body) : boost::json::value();
}

testsupport::HttpClient::Reply SharePipelineFixture::PageGet(const std::string& url) {
    return client.Get(url);
}

void SharePipelineFixture::InjectFault(const boost::json::object& fault) {
    const auto reply = client.PostJson(Url("/test/faults"), fault);
    ASSERT_EQ(reply.status, 201) << reply.body;
}

std::filesystem::path SharePipelineFixture::CacheDir() const {
    return directory.Path() / "cache" / "vantrokelui";
}

std::vector<std::filesystem::path> SharePipelineFixture::CacheFiles() const {
    std::vector<std::filesystem::path> files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(CacheDir(), error)) {
        if (entry.is_regular_file()) {
            files.push_back(entry.path());
        }
    }
    return files;
}

std::vector<std::filesystem::path> SharePipelineFixture::PendingUploadsOnServer() const {
    std::vector<std::filesystem::path> files;
    std::error_code error;
    for (const auto& entry :
         std::filesystem::directory_iterator(server.DataDir() / "uploads", error)) {
        files.push_back(entry.path());
    }
    return files;
}

bool SharePipelineFixture::AwaitNoPendingUploadOnServer() {
    // The server announces nothing when an upload goes; its data directory shows it.
    return testsupport::WaitUntil([&] { return PendingUploadsOnServer().empty(); });
}

boost::json::array SharePipelineFixture::FolderChildren() {
    const auto children = ApiGet("/v2/assets/" + folder + "/children");
    return children.is_array() ? children.as_array() : boost::json::array();
}

bool SharePipelineFixture::AwaitJobGone(const kelcore::string::string& jobID) {
    // The finish erases the job just after it shows the link, and announces nothing.
    return testsupport::WaitUntil([&] { return Job(jobID) == nullptr; });
}

std::shared_ptr<vantrokelui::model::ShareJob> SharePipelineFixture::Job(
    const kelcore::string::string& jobID) {
    return vantrokelui::model::ShareManager::GetInstance().GetJobW(jobID);
}

void SharePipelineFixture::ExpectNothingLost(const std::map<std::string, std::string>& expected) {
    EXPECT_EQ(host->StoredValues(), expected) << "the sequence's stored values changed";
    EXPECT_EQ(CacheFiles(), std::vector<std::filesystem::path>())
        << "a temporary file was left in " << CacheDir();
}

}  // namespace vantrokeluitest
