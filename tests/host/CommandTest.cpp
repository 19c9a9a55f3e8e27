#include <gtest/gtest.h>

#include "host/support/HostShareFixture.h"
#include "support/ScopedEnvironmentVariable.h"

namespace hosttest {
namespace {

class HostCommands : public HostShareFixture {};

TEST_F(HostCommands, ListsEachLevelOfTheTreeAndNamesAnUnknownPart) {
    StartSignedInWorld();
    const auto accounts = RunHost({"ls"});
    ASSERT_EQ(accounts.exitCode, 0) << accounts.err;
    EXPECT_EQ(accounts.out, "Studio\n");
    EXPECT_EQ(RunHost({"ls", "Studio"}).out, "Editors\n");
    EXPECT_EQ(RunHost({"ls", "Studio/Editors"}).out, "Alpha\n");
    EXPECT_EQ(RunHost({"ls", "Studio/Editors/Alpha"}).out, "Reviews/\n");
    EXPECT_EQ(RunHost({"ls", "Studio/Editors/Alpha/Reviews"}).out, "");

    const auto workspace = RunHost({"ls", "Studio/Writers"});
    EXPECT_EQ(workspace.exitCode, 1);
    EXPECT_NE(workspace.err.find("no workspace named \"Writers\" in the account \"Studio\""),
              std::string::npos)
        << workspace.err;
    const auto folder = RunHost({"ls", "Studio/Editors/Alpha/Dailies"});
    EXPECT_EQ(folder.exitCode, 1);
    EXPECT_NE(folder.err.find("no folder named \"Dailies\" in the project \"Alpha\""),
              std::string::npos)
        << folder.err;
    const auto account = RunHost({"ls", "Studios"});
    EXPECT_EQ(account.exitCode, 1);
    EXPECT_NE(account.err.find("no account named \"Studios\""), std::string::npos) << account.err;
}

TEST_F(HostCommands, TheOlderBackEndSignsInWithTheStoredTokenAndListsTheTree) {
    StartSignedInWorld();
    const testsupport::ScopedEnvironmentVariable olderBackEnd(
        "KELDEBUG_VantroNative_UseVantroCppSdk", "false");

    const auto accounts = RunHost({"ls"});
    ASSERT_EQ(accounts.exitCode, 0) << accounts.err;
    EXPECT_EQ(accounts.out, "Studio\n");
    EXPECT_EQ(RunHost({"ls", "Studio/Editors/Alpha"}).out, "Reviews/\n");
}

TEST_F(HostCommands, WithoutASignInShareAndListSaySoAndStatusTellsWhereItLooked) {
    StartWorld();
    WriteProject({{"Cut 1", Clip(1), 1}});
    const auto share = Share({"--sequence", "Cut 1"});
    EXPECT_EQ(share.exitCode, 1);
    EXPECT_NE(share.err.find("not signed in to " + Url("")), std::string::npos) << share.err;
    EXPECT_NE(share.err.find("vantro-share login"), std::string::npos) << share.err;
    const auto list = RunHost({"ls"});
    EXPECT_EQ(list.exitCode, 1);
    EXPECT_NE(list.err.find("not signed in"), std::string::npos) << list.err;
    const auto status = RunHost({"status"});
    EXPECT_EQ(status.exitCode, 0) << status.err;
    EXPECT_NE(status.out.find("service: " + Url("")), std::string::npos) << status.out;
    EXPECT_NE(status.out.find("signed in: no"), std::string::npos) << status.out;
}

TEST_F(HostCommands, ATokenAnswerThatIsNotOneIsRefusedWithAMessage) {
    StartWorld();
    const auto malformed = RunHost({"login", "--with-token", "-"}, "{\"access_token\": 3}");
    EXPECT_EQ(malformed.exitCode, 1);
    EXPECT_NE(malformed.err.find("the token answer was not accepted"), std::string::npos)
        << malformed.err;
    const auto status = RunHost({"status"});
    EXPECT_NE(status.out.find("signed in: no"), std::string::npos) << status.out;

    const auto good = RunHost({"login", "--with-token", "-"}, IssueTokenAnswer());
    ASSERT_EQ(good.exitCode, 0) << good.err;
    EXPECT_NE(good.out.find("as ann"), std::string::npos) << good.out;
    EXPECT_NE(RunHost({"status"}).out.find("signed in: ann"), std::string::npos);
    const auto logout = RunHost({"logout"});
    EXPECT_EQ(logout.exitCode, 0) << logout.err;
    EXPECT_NE(RunHost({"status"}).out.find("signed in: no"), std::string::npos);
}

TEST_F(HostCommands, AnUnknownSequenceFolderOrPresetIsNamedAndNothingIsShared) {
    StartSignedInWorld();
    WriteProject({{"Cut 1", Clip(1), 1}, {"Cut 2", Clip(1), 1}});

    const auto sequence = Share({"--sequence", "Cut 3"});
    EXPECT_EQ(sequence.exitCode, 1);
    EXPECT_NE(sequence.err.find("no sequence named \"Cut 3\" in " + ProjectPath().string() +
                                " (it has \"Cut 1\", \"Cut 2\")"),
              std::string::npos)
        << sequence.err;

    const auto folder =
        ChildProcess::Run({Executable(), "share", "--project", ProjectPath().string(), "--sequence",
                           "Cut 1", "--folder", "Studio/Editors/Alpha/Dailies"});
    EXPECT_EQ(folder.exitCode, 1);
    EXPECT_NE(folder.err.find("no folder named \"Dailies\" in the project \"Alpha\""),
              std::string::npos)
        << folder.err;

    const auto preset = Share({"--sequence", "Cut 1", "--preset", "GIF"});
    EXPECT_EQ(preset.exitCode, 1);
    EXPECT_NE(preset.err.find("no preset named \"GIF\" (presets: \"H.264 MP4\""), std::string::npos)
        << preset.err;

    EXPECT_TRUE(FolderChildren().empty());
    EXPECT_EQ(LinkCount(), 0u);
    EXPECT_TRUE(StoredSettings("Cut 1").empty());
}

TEST_F(HostCommands, AProjectFileThatCannotBeReadIsNamedWithItsFault) {
    StartSignedInWorld();
    directory.Write("work/project.json", "{\"project\": {\"id\": \"x\"");
    const auto run = Share({"--sequence", "Cut 1"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.err.find("project file " + ProjectPath().string() + ": not valid JSON"),
              std::string::npos)
        << run.err;
}

TEST_F(HostCommands, StatusShowsEachSequencesLinkStackAndEdits) {
    StartSignedInWorld();
    WriteProject({{"Cut 1", Clip(2), 2}, {"Cut 2", Clip(2), 2}});
    const auto share = Share({"--sequence", "Cut 1"});
    ASSERT_EQ(share.exitCode, 0) << share.err;
    EditClipOut("Cut 1", 1.5);
    const auto status = RunHost({"status", "--project", ProjectPath().string()});
    ASSERT_EQ(status.exitCode, 0) << status.err;
    EXPECT_NE(status.out.find("sequence: Cut 1\n  link: " + LinkIn(share.out) +
                              "\n  version stack: " + *Stored("Cut 1", "VersionStackGuid") +
                              "\n  modified since share: false\n"
                              "  edited since the last share here: yes\n"),
              std::string::npos)
        << status.out;
    EXPECT_NE(status.out.find("sequence: Cut 2\n  link: (none)\n"), std::string::npos)
        << status.out;
}

TEST_F(HostCommands, BrowserSignInPrintsTheAddressAndEndsWhenTheUserHasSignedIn) {
    StartWorld();
    ChildProcess login({Executable(), "login"});
    std::string address;
    ASSERT_TRUE(login.WaitForErrorLine([&](const std::string& line) {
        const auto at = line.find("http://");
        if (at == std::string::npos || line.find("/oauth/authorize?") == std::string::npos) {
            return false;
        }
        address = line.substr(at);
        return true;
    })) << login.Err();
    // The user signs in on the page the address opens; the service sends the browser back to
    // vantro-share's loopback listener.
    auto query = QueryOf(address);
    const auto form = PostSignIn(kUser, kPassword, query["code_challenge"], query["state"],
                                 query["redirect_uri"]);
    ASSERT_EQ(form.status, 302) << form.body;
    const auto back = client.Get(form.Header("location"));
    EXPECT_EQ(back.status, 200) << back.body;
    EXPECT_EQ(login.Wait(), 0) << login.Err();
    EXPECT_NE(login.Out().find("signed in to " + Url("")), std::string::npos) << login.Out();
    EXPECT_NE(RunHost({"status"}).out.find("signed in: ann"), std::string::npos);
}

TEST_F(HostCommands, TheServiceOptionWinsOverTheEnvironment) {
    StartWorld();
    const auto status = RunHost({"--service", "http://127.0.0.1:9", "status"});
    EXPECT_EQ(status.exitCode, 0) << status.err;
    EXPECT_NE(status.out.find("service: http://127.0.0.1:9\n"), std::string::npos) << status.out;
}

}  // namespace
}  // namespace hosttest
