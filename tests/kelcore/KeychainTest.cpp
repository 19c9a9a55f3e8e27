#include <pwd.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <kelcore/utility/Keychain.h>

namespace {

using kelcore::string::UTF16toStdString;
using kelcore::utility::Keychain;

TEST(Keychain, HomeUserIDIsTheLoginNameOfTheEffectiveUser) {
    const passwd* entry = getpwuid(geteuid());
    ASSERT_NE(entry, nullptr) << "the test needs a user database entry for its own user";
    EXPECT_EQ(UTF16toStdString(Keychain::GetHomeUserID()), entry->pw_name);
}

TEST(Keychain, RootIsNamedFromTheUserDatabase) {
    const passwd* root = getpwuid(0);
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(UTF16toStdString(Keychain::GetUserIDFor(0)), root->pw_name);
}

TEST(Keychain, UserWithoutAnEntryIsNamedByNumber) {
    constexpr uid_t kUnknown = 3999999999u;
    ASSERT_EQ(getpwuid(kUnknown), nullptr);
    EXPECT_EQ(UTF16toStdString(Keychain::GetUserIDFor(kUnknown)), "uid3999999999");
}

}  // namespace
