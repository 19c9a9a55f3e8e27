#include "DatastoreServiceFixture.h"

#include <kelcore/threads/MainThread.h>
#include <vantroauth/jwt/AuthManager.h>
#include <vantrocommon/http/CurlTransport.h>

#include "support/AwaitFuture.h"
#include "support/EventStreamClient.h"

namespace vantroclienttest {

void DatastoreServiceFixture::SetUp() {
    SignInServiceFixture::SetUp();
    kelcore::threads::SetMainThread();
    queue = std::make_shared<kelcore::threads::MainThreadQueue>();
    kelcore::threads::SetMainThreadDispatcher(queue);
}

void DatastoreServiceFixture::TearDown() {
    messages.reset();
    datastore.reset();
    queue->RunUntilEmpty();
    kelcore::threads::SetMainThreadDispatcher(nullptr);
    SignInServiceFixture::TearDown();
}

void DatastoreServiceFixture::StartWorld(std::vector<std::string> extra,
                                         vantro::ServiceDatastoreOptions options) {
    MakeWorld(std::move(extra));
    OpenDatastore(std::move(options));
}

void DatastoreServiceFixture::MakeWorld(std::vector<std::string> extra) {
    // The world is made before the server starts, so that its changes are not announced to the
    // datastore's stream while a test runs.
    AddUser(kUser, kPassword);
    studio = AdminId(
        {"account", "add", "--name", "Studio", "--owner", kUser, "--storage-limit", "1000000000"});
    editors = AdminId({"team", "add", "--account", studio, "--name", "Editors", "--member", kUser});
    const auto ids = IdsIn(Admin({"project", "add", "--team", editors, "--name", "Alpha"}));
    ASSERT_GE(ids.size(), 2u) << "project add printed no project and folder id";
    alpha = ids[0];
    root = ids[1];
    extra.insert(extra.begin(), "--enable-test-hooks");
    StartServer(std::move(extra));
    SetEnvironment("VANTRO_SERVICE_URL", Url(""));
}

void DatastoreServiceFixture::RestartServer(std::vector<std::string> extra) {
    ASSERT_EQ(server.Stop(), 0);
    extra.insert(extra.begin(), "--enable-test-hooks");
    StartServer(std::move(extra));
    SetEnvironment("VANTRO_SERVICE_URL", Url(""));
}

void DatastoreServiceFixture::OpenDatastore(vantro::ServiceDatastoreOptions options) {
    ASSERT_TRUE(Initialize().IsSuccess());
    tokenAnswer = IssueTokenAnswer();
    const auto stored = vantroauth::jwt::StoreTokenAnswer(kUser, tokenAnswer);
    ASSERT_TRUE(stored.IsSuccess()) << stored.GetMessage();
    ASSERT_TRUE(vantroauth::jwt::AccessTokenExists(kUser).IsSuccess());

    transport = std::make_shared<CountingTransport>(vantrocommon::http::CurlTransport::Create({}));
    options.transport = transport;
    datastore = vantro::CreateServiceDatastore(std::move(options));
    messages = std::make_unique<MessageRecorder>(datastore->GetStationID());
}

void DatastoreServiceFixture::AddFoldersThroughApi(const std::string& parent, int count) {
    const auto token = SignIn(kUser, kPassword).access;
    // Listening as well: once the last folder's change has been announced, every earlier one
    // has, so none of them reaches a datastore opened afterwards.
    testsupport::EventStreamClient events(Url("/v2/events"), testsupport::Bearer(token));
    ASSERT_TRUE(events.WaitForComment());
    for (int i = 0; i < count; ++i) {
        const auto reply =
            client.PostJson(Url("/v2/assets/" + parent + "/children"),
                            {{"name", "Clip " + std::to_string(i)}, {"type", "folder"}},
                            testsupport::Bearer(token));
        ASSERT_EQ(reply.status, 201) << reply.body;
    }
    const auto changes = [&] {
        std::size_t seen = 0;
        for (const auto& event : events.Events()) {
            seen += event.type == "asset-list" ? 1 : 0;
        }
        return seen;
    };
    ASSERT_TRUE(
        testsupport::WaitUntil([&] { return changes() >= static_cast<std::size_t>(count); }));
}

std::vector<std::string> DatastoreServiceFixture::NamesOf(
    const kelcore::classref::InterfaceRef<vantro::VantroAssetList>& list) {
    std::vector<std::string> names;
    for (std::uint64_t i = 0; i < list->GetCount(); ++i) {
        const auto asset = list->GetAsset(i);
        names.push_back(asset->GetName(asset->Lock()).value_or(""));
    }
    return names;
}

}  // namespace vantroclienttest
