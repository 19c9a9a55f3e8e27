#include "host/support/HostShareFixture.h"

#include <cstdio>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

namespace hosttest {

namespace json = boost::json;

void HostShareFixture::SetUp() {
    SignInServiceFixture::SetUp();
    AllowTokenFile();
    std::filesystem::create_directories(directory.Path() / "work" / "media");
}

std::string HostShareFixture::Executable() {
    return VANTRO_SHARE_EXECUTABLE;
}

std::string HostShareFixture::SarvexExecutable() {
    return SARVEX_EXECUTABLE;
}

void HostShareFixture::StartWorld() {
    StartService({"--enable-test-hooks"});
    studio = AdminId({"account", "add", "--name", "Studio", "--owner", kUser, "--storage-limit",
                      std::to_string(std::uint64_t{1} << 34)});
    editors = AdminId({"team", "add", "--account", studio, "--name", "Editors", "--member", kUser});
    const auto ids = IdsIn(Admin({"project", "add", "--team", editors, "--name", "Alpha"}));
    ASSERT_GE(ids.size(), 2u);
    alpha = ids[0];
    root = ids[1];
    const auto made = client.PostJson(Url("/v2/assets/" + root + "/children"),
                                      json::object{{"name", "Reviews"}, {"type", "folder"}},
                                      testsupport::Bearer(Token()));
    ASSERT_EQ(made.status, 201) << made.body;
    reviews = std::string(made.Json().at("id").as_string());
}

void HostShareFixture::StartSignedInWorld() {
    StartWorld();
    const auto answer = directory.Write("token.json", IssueTokenAnswer());
    const auto login = RunHost({"login", "--with-token", answer.string()});
    ASSERT_EQ(login.exitCode, 0) << login.err;
}

std::filesystem::path HostShareFixture::Clip(double seconds) {
    std::ostringstream name;
    name << "clip-" << seconds << "s.mp4";
    const auto path = directory.Path() / "work" / "media" / name.str();
    if (std::filesystem::exists(path)) {
        return path;
    }
    const std::string duration = std::to_string(seconds);
    const auto made = ChildProcess::Run({"/usr/bin/ffmpeg",
                                         "-hide_banner",
                                         "-loglevel",
                                         "error",
                                         "-y",
                                         "-f",
                                         "lavfi",
                                         "-i",
                                         "testsrc=size=320x240:rate=25",
                                         "-f",
                                         "lavfi",
                                         "-i",
                                         "sine=frequency=440",
                                         "-t",
                                         duration,
                                         "-c:v",
                                         "libx264",
                                         "-preset",
                                         "ultrafast",
                                         "-pix_fmt",
                                         "yuv420p",
                                         "-c:a",
                                         "aac",
                                         path.string()});
    EXPECT_EQ(made.exitCode, 0) << made.err;
    return path;
}

std::filesystem::path HostShareFixture::WriteProject(const std::vector<SequenceEntry>& sequences) {
    json::array list;
    for (const SequenceEntry& entry : sequences) {
        const std::string relative =
            std::filesystem::relative(entry.clip, ProjectPath().parent_path()).string();
        list.push_back(json::object{
            // A fixed id per place, fewer than ten sequences per test.
            {"id", "0f8b6c2e-5d41-4a7e-9c3b-00000000000" + std::to_string(list.size())},
            {"name", entry.name},
            {"width", 320},
            {"height", 240},
            {"frameRate", 25},
            {"clips",
             json::array{json::object{{"path", relative}, {"in", 0}, {"out", entry.seconds}}}},
            {"settings", json::object{}}});
    }
    const json::object document{
        {"project", json::object{{"id", "5a1d2f3e-7b9c-4d6e-8f01-23456789abcd"}, {"name", "Demo"}}},
        {"sequences", std::move(list)}};
    std::ofstream(ProjectPath()) << json::serialize(document);
    return ProjectPath();
}

void HostShareFixture::EditClipOut(const std::string& name, double out) {
    EditClip(name, {}, out);
}

void HostShareFixture::EditClip(const std::string& name, const std::filesystem::path& clip,
                                double out) {
    json::object document = ReadProject();
    bool edited = false;
    for (auto& sequence : document["sequences"].as_array()) {
        if (sequence.as_object().at("name").as_string() == name) {
            json::object& first = sequence.as_object()["clips"].as_array()[0].as_object();
            first["out"] = out;
            if (!clip.empty()) {
                first["path"] = clip.string();
            }
            edited = true;
        }
    }
    ASSERT_TRUE(edited) << "no sequence " << name;
    std::ofstream(ProjectPath()) << json::serialize(document);
}

json::object HostShareFixture::ReadProject() const {
    std::ifstream in(ProjectPath());
    std::stringstream text;
    text << in.rdbuf();
    boost::system::error_code error;
    const json::value document = json::parse(text.str(), error);
    EXPECT_FALSE(error) << "the project file does not parse: " << text.str();
    if (error || !document.is_object()) {
        return {};
    }
    return document.as_object();
}

json::object HostShareFixture::StoredSettings(const std::string& name) const {
    const json::object document = ReadProject();
    if (const auto* sequences = document.if_contains("sequences")) {
        for (const auto& sequence : sequences->as_array()) {
            if (sequence.as_object().at("name").as_string() == name) {
                return sequence.as_object().at("settings").as_object();
            }
        }
    }
    ADD_FAILURE() << "no sequence " << name << " in the project file";
    return {};
}

std::optional<std::string> HostShareFixture::Stored(const std::string& sequence,
                                                    const std::string& key) const {
    const json::object settings = StoredSettings(sequence);
    const auto* value = settings.if_contains("TSLY.VantroNative.ShareForReview." + key);
    if (!value || !value->is_string()) {
        return std::nullopt;
    }
    return std::string(value->as_string());
}

ChildProcess::Result HostShareFixture::RunHost(std::vector<std::string> arguments,
                                               const std::string& input) {
    arguments.insert(arguments.begin(), Executable());
    return ChildProcess::Run(std::move(arguments), input);
}

std::vector<std::string> HostShareFixture::ShareCommand(std::vector<std::string> arguments) const {
    std::vector<std::string> command{Executable(), "share",
                                     "--project",  ProjectPath().string(),
                                     "--folder",   "Studio/Editors/Alpha/Reviews"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

ChildProcess::Result HostShareFixture::Share(std::vector<std::string> arguments) {
    return ChildProcess::Run(ShareCommand(std::move(arguments)));
}

std::string HostShareFixture::LinkIn(const std::string& out) {
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("http://", 0) == 0 || line.rfind("https://", 0) == 0) {
            return line;
        }
    }
    return {};
}

std::string HostShareFixture::Token() {
    if (apiToken.empty()) {
        apiToken = SignIn(kUser, kPassword).access;
    }
    return apiToken;
}

json::array HostShareFixture::FolderChildren() {
    const auto reply =
        client.Get(Url("/v2/assets/" + reviews + "/children"), testsupport::Bearer(Token()));
    EXPECT_EQ(reply.status, 200) << reply.body;
    return reply.status == 200 ? reply.Json().as_array() : json::array{};
}

std::size_t HostShareFixture::ChildCount(const std::string& asset) {
    const auto reply =
        client.Get(Url("/v2/assets/" + asset + "/children"), testsupport::Bearer(Token()));
    EXPECT_EQ(reply.status, 200) << reply.body;
    return reply.status == 200 ? reply.Json().as_array().size() : 0;
}

std::size_t HostShareFixture::LinkCount() {
    const auto reply =
        client.Get(Url("/v2/projects/" + alpha + "/review_links"), testsupport::Bearer(Token()));
    EXPECT_EQ(reply.status, 200) << reply.body;
    return reply.status == 200 ? reply.Json().as_array().size() : 0;
}

std::uint64_t HostShareFixture::StorageUsed() {
    const auto reply = client.Get(Url("/v2/accounts/" + studio), testsupport::Bearer(Token()));
    EXPECT_EQ(reply.status, 200) << reply.body;
    return reply.status == 200 ? reply.Json().at("storage_used").to_number<std::uint64_t>() : 0;
}

std::vector<std::string> HostShareFixture::CacheFiles() const {
    std::vector<std::string> files;
    std::error_code error;
    for (std::filesystem::directory_iterator it(directory.Path() / "cache" / "vantrokelui", error),
         end;
         !error && it != end; it.increment(error)) {
        files.push_back(it->path().filename().string());
    }
    return files;
}

void HostShareFixture::AddFault(const json::object& fault) {
    const auto reply = client.PostJson(Url("/test/faults"), fault);
    ASSERT_EQ(reply.status, 201) << reply.body;
}

}  // namespace hosttest
