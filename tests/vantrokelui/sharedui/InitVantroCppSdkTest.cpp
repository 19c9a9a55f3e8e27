#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include <kelcore/config/ProcessBeginEndNotificationRegistrar.h>
#include <kelcore/config/kel_exception.h>
#include <vantroauth/ResultCodes.h>
#include <vantroauth/jwt/AuthManager.h>
#include <vantrokelui/sharedui/InitVantroCppSdk.h>

namespace {

using kelcore::config::kel_exception;
using kelcore::config::MakeProcessParameters;
using kelcore::config::NotifyProcessBegin;

class InitVantroCppSdkTest : public ::testing::Test {
protected:
    void SetUp() override { kelcore::config::ResetProcessNotificationsForTesting(); }
    void TearDown() override { kelcore::config::ResetProcessNotificationsForTesting(); }
};

kel_exception ClientNameFailure() {
    try {
        vantrokelui::GetVantroClientName();
    } catch (const kel_exception& error) {
        return error;
    }
    ADD_FAILURE() << "GetVantroClientName did not throw";
    return kel_exception("", 0);
}

TEST_F(InitVantroCppSdkTest, AnEmptyClientStartsNothingAndStoresNothing) {
    vantrokelui::InitVantroCppSdk(u"", u"http://127.0.0.1/callback");

    EXPECT_EQ(vantrokelui::detail::GetApplicationClient(), "");
    EXPECT_EQ(vantrokelui::detail::GetApplicationRedirectUri(), "");
    EXPECT_EQ(vantroauth::jwt::AccessTokenExists("ann").GetResult(),
              vantroauth::kResultNotInitialized);
}

TEST_F(InitVantroCppSdkTest, AnEmptyRedirectUriStartsNothingAndStoresNothing) {
    vantrokelui::InitVantroCppSdk(u"vantrokelui-desktop", u"");

    EXPECT_EQ(vantrokelui::detail::GetApplicationClient(), "");
    EXPECT_EQ(vantrokelui::detail::GetApplicationRedirectUri(), "");
    EXPECT_EQ(vantroauth::jwt::AccessTokenExists("ann").GetResult(),
              vantroauth::kResultNotInitialized);
}

TEST_F(InitVantroCppSdkTest, BothValuesAreStoredAndTheSignInLibraryStarts) {
    vantrokelui::InitVantroCppSdk(u"vantrokelui-desktop", u"http://127.0.0.1/callback");

    EXPECT_EQ(vantrokelui::detail::GetApplicationClient(), "vantrokelui-desktop");
    EXPECT_EQ(vantrokelui::detail::GetApplicationRedirectUri(), "http://127.0.0.1/callback");
    EXPECT_NE(vantroauth::jwt::AccessTokenExists("ann").GetResult(),
              vantroauth::kResultNotInitialized);
}

TEST_F(InitVantroCppSdkTest, TheClientNameBeforeProcessBeginThrowsWithItsCodeAndDebugData) {
    const kel_exception error = ClientNameFailure();

    EXPECT_EQ(error.GetCode(), kelcore::config::MakeResultCode(0xF865001E));
    EXPECT_STREQ(error.what(), "Vantro client name not set");
    const auto& data = error.GetAdditionalData();
    ASSERT_EQ(data.size(), 4u);
    EXPECT_EQ(std::get<std::string>(data.at(kelcore::config::kDebugExpression)),
              "sVantroClientName.empty()");
    EXPECT_EQ(std::get<std::string>(data.at(kelcore::config::kDebugSourceFunction)),
              "vantrokelui::GetVantroClientName");
    EXPECT_EQ(std::get<std::int64_t>(data.at(kelcore::config::kDebugSourceLine)), 44);
    EXPECT_EQ(std::get<std::string>(data.at(kelcore::config::kDebugSourceFile)),
              "sharedui\\src\\InitVantroCppSdk");
}

TEST_F(InitVantroCppSdkTest, TheClientNameComesFromItsProcessParameter) {
    NotifyProcessBegin(
        MakeProcessParameters({{"host.version", std::string("12.1")},
                               {"vantrokelui.kVantroClientName", std::string("Editor Review")}}));

    EXPECT_EQ(vantrokelui::GetVantroClientName(), "Editor Review");
}

TEST_F(InitVantroCppSdkTest, WithoutTheParameterTheClientNameThrows) {
    NotifyProcessBegin(MakeProcessParameters({{"host.version", std::string("12.1")}}));

    EXPECT_EQ(ClientNameFailure().GetCode(), kelcore::config::MakeResultCode(0xF865001E));
}

TEST_F(InitVantroCppSdkTest, OnlyTheFirstParameterOfTheNameCountsAndItMustBeText) {
    NotifyProcessBegin(
        MakeProcessParameters({{"vantrokelui.kVantroClientName", std::int64_t{7}},
                               {"vantrokelui.kVantroClientName", std::string("Second")}}));

    EXPECT_EQ(ClientNameFailure().GetCode(), kelcore::config::MakeResultCode(0xF865001E));
}

TEST_F(InitVantroCppSdkTest, ALaterProcessBeginWithoutTheNameEmptiesIt) {
    NotifyProcessBegin(
        MakeProcessParameters({{"vantrokelui.kVantroClientName", std::string("Editor")}}));
    ASSERT_EQ(vantrokelui::GetVantroClientName(), "Editor");
    kelcore::config::ResetProcessNotificationsForTesting();

    NotifyProcessBegin(MakeProcessParameters({}));

    EXPECT_EQ(ClientNameFailure().GetCode(), kelcore::config::MakeResultCode(0xF865001E));
}

}  // namespace
