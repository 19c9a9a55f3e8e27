#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>
#include <boost/json.hpp>

#include "ProjectFile.h"
#include "support/TemporaryDirectory.h"

namespace {

using vantroshare::ProjectFile;
using vantroshare::ProjectFileError;
namespace json = boost::json;

constexpr const char* kProjectID = "5a1d2f3e-7b9c-4d6e-8f01-23456789abcd";
constexpr const char* kSequenceID = "0f8b6c2e-5d41-4a7e-9c3b-000000000001";

std::string ReadText(const std::filesystem::path& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

json::object SequenceObject(json::object settings = {}) {
    return json::object{
        {"id", kSequenceID},
        {"name", "Cut 1"},
        {"width", 320},
        {"height", 240},
        {"frameRate", 25},
        {"clips", json::array{json::object{{"path", "media/a.mp4"}, {"in", 0}, {"out", 2.5}}}},
        {"settings", std::move(settings)}};
}

std::string Document(json::object sequence) {
    return json::serialize(
        json::object{{"project", json::object{{"id", kProjectID}, {"name", "Demo"}}},
                     {"sequences", json::array{std::move(sequence)}}});
}

std::string LoadFailure(const testsupport::TemporaryDirectory& directory, const std::string& text) {
    const auto path = directory.Write("broken.json", text);
    try {
        (void)ProjectFile::Load(path);
    } catch (const ProjectFileError& error) {
        return error.what();
    }
    return "loaded";
}

TEST(ProjectFile, ReadsWhatItSavedAndResolvesClipsAgainstItsDirectory) {
    testsupport::TemporaryDirectory directory;
    const auto path = directory.Write("project.json", Document(SequenceObject()));
    const auto file = ProjectFile::Load(path);
    const ProjectFile::Guid sequence(std::string_view{kSequenceID});
    ASSERT_EQ(file->FindSequence("Cut 1"), sequence);
    EXPECT_FALSE(file->FindSequence("Cut 2"));
    EXPECT_EQ(file->ProjectID(), ProjectFile::Guid(std::string_view{kProjectID}));
    EXPECT_EQ(file->ProjectName(), "Demo");

    ASSERT_TRUE(file->SetValue(sequence, "alpha", "one"));
    ASSERT_TRUE(file->SetValue(sequence, "beta", "two \"quoted\"\nline"));
    ASSERT_TRUE(file->ClearValue(sequence, "alpha"));

    const auto again = ProjectFile::Load(path);
    EXPECT_EQ(again->GetValue(sequence, "beta"), "two \"quoted\"\nline");
    EXPECT_FALSE(again->GetValue(sequence, "alpha"));
    const auto encoder = again->EncoderSequence(sequence);
    ASSERT_EQ(encoder.clips.size(), 1u);
    EXPECT_EQ(encoder.clips[0].path, (directory.Path() / "media" / "a.mp4").string());
    EXPECT_EQ(encoder.clips[0].out, 2.5);
    EXPECT_EQ(encoder.width, 320);
    EXPECT_EQ(encoder.name, "Cut 1");
}

TEST(ProjectFile, AFailedSaveLeavesTheOldFileAndNoTemporaryFile) {
    testsupport::TemporaryDirectory directory;
    const auto path = directory.Write("project.json", Document(SequenceObject()));
    const std::string before = ReadText(path);
    // In a child whose file size limit is below the new content, so the write really fails (a
    // read-only directory does not stop root).
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{static_cast<rlim_t>(before.size()), static_cast<rlim_t>(before.size())};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const auto file = ProjectFile::Load(path);
        const bool saved = file->SetValue(ProjectFile::Guid(std::string_view{kSequenceID}), "key",
                                          std::string(4096, 'x'));
        const bool unchanged =
            !file->GetValue(ProjectFile::Guid(std::string_view{kSequenceID}), "key");
        ::_exit(!saved && unchanged && !file->LastSaveError().empty() ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0) << "the save did not fail as a failure, or changed memory";
    EXPECT_EQ(ReadText(path), before);
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory.Path())) {
        names.push_back(entry.path().filename().string());
    }
    EXPECT_EQ(names, std::vector<std::string>{"project.json"});
}

TEST(ProjectFile, AnEntryThatIsNotTextIsReportedAbsentAndKeptWithEveryOtherEntry) {
    testsupport::TemporaryDirectory directory;
    const auto path = directory.Write(
        "project.json",
        Document(SequenceObject(
            {{"number", 42}, {"object", json::object{{"a", 1}}}, {"text", "not json {"}})));
    const auto file = ProjectFile::Load(path);
    const ProjectFile::Guid sequence(std::string_view{kSequenceID});
    EXPECT_FALSE(file->GetValue(sequence, "number"));
    EXPECT_FALSE(file->GetValue(sequence, "object"));
    EXPECT_EQ(file->GetValue(sequence, "text"), "not json {");

    ASSERT_TRUE(file->SetValue(sequence, "new", "value"));
    const json::value saved = json::parse(ReadText(path));
    const json::object& settings =
        saved.at("sequences").as_array().at(0).at("settings").as_object();
    EXPECT_EQ(settings.at("number"), json::value(42));
    EXPECT_EQ(settings.at("object"), json::value(json::object{{"a", 1}}));
    EXPECT_EQ(settings.at("text"), json::value("not json {"));
    EXPECT_EQ(settings.at("new"), json::value("value"));

    // Written anew by the library, the entry becomes text.
    ASSERT_TRUE(file->SetValue(sequence, "number", "7"));
    EXPECT_EQ(ProjectFile::Load(path)->GetValue(sequence, "number"), "7");
}

TEST(ProjectFile, AFileThatCannotBeReadGivesItsNameAndTheFault) {
    testsupport::TemporaryDirectory directory;
    const std::string missing = (directory.Path() / "missing.json").string();
    try {
        (void)ProjectFile::Load(missing);
        ADD_FAILURE() << "a missing file loaded";
    } catch (const ProjectFileError& error) {
        EXPECT_NE(std::string(error.what()).find(missing), std::string::npos) << error.what();
        EXPECT_NE(std::string(error.what()).find("No such file"), std::string::npos)
            << error.what();
    }
    const std::string broken = (directory.Path() / "broken.json").string();
    EXPECT_NE(LoadFailure(directory, "{\"project\": ").find(broken + ": not valid JSON"),
              std::string::npos);
    EXPECT_NE(LoadFailure(directory, "[]").find("not a JSON object"), std::string::npos);
    EXPECT_NE(LoadFailure(directory, "{\"sequences\": []}").find("\"project\""), std::string::npos);
    json::object noClips = SequenceObject();
    noClips["clips"] = json::array{};
    EXPECT_NE(LoadFailure(directory, Document(noClips))
                  .find("sequence 0 (\"Cut 1\"): the sequence has no clips"),
              std::string::npos)
        << LoadFailure(directory, Document(noClips));
    json::object badID = SequenceObject();
    badID["id"] = "not an id";
    EXPECT_NE(LoadFailure(directory, Document(badID)).find("\"id\""), std::string::npos);
    json::object badSettings = SequenceObject();
    badSettings["settings"] = "x";
    EXPECT_NE(LoadFailure(directory, Document(badSettings)).find("\"settings\" is not an object"),
              std::string::npos);
}

TEST(ProjectFile, TheFingerprintFollowsTheSequencesContent) {
    testsupport::TemporaryDirectory directory;
    const auto path = directory.Write("project.json", Document(SequenceObject()));
    const ProjectFile::Guid sequence(std::string_view{kSequenceID});
    const std::string first = ProjectFile::Load(path)->ContentFingerprint(sequence);
    ASSERT_TRUE(ProjectFile::Load(path)->SetValue(sequence, "setting", "does not count"));
    EXPECT_EQ(ProjectFile::Load(path)->ContentFingerprint(sequence), first);
    json::object edited = SequenceObject();
    edited["clips"].as_array()[0].as_object()["out"] = 2.0;
    directory.Write("project.json", Document(edited));
    EXPECT_NE(ProjectFile::Load(path)->ContentFingerprint(sequence), first);
    EXPECT_EQ(first.size(), 64u);
}

}  // namespace
