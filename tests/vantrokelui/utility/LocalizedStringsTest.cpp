#include <vantrokelui/utility/LocalizedStrings.h>

#include <filesystem>

#include <gtest/gtest.h>

#include <kelcore/config/Localizer.h>

namespace vantrokelui::utility {
namespace {

TEST(LocalizedStrings, TheLibraryFindsItsLocaleFilesBesideItself) {
    const auto directory = LocalizedStringsDirectory();
    ASSERT_FALSE(directory.empty());
    EXPECT_TRUE(std::filesystem::exists(directory / "en_US.strings")) << directory;
}

TEST(LocalizedStrings, LoadingALocaleGivesTheLocalisersTextsFromItsFile) {
    ASSERT_TRUE(LoadLocalizedStrings("en_US"));
    // A key read with a different default: the file's text wins once it is loaded.
    EXPECT_EQ(kelcore::config::Localizer::Get().GetUTF8String(
                  "$$$/Corvane/vantrokelui/view/VantroShare/ReviewInVantroView/Share=(not loaded)"),
              "Share");
}

TEST(LocalizedStrings, ALocaleWithoutAFileKeepsTheDefaults) {
    kelcore::config::Localizer::Get().Reset();
    EXPECT_FALSE(LoadLocalizedStrings("xx_XX"));
    EXPECT_EQ(kelcore::config::Localizer::Get().GetUTF8String(
                  "$$$/Corvane/vantrokelui/view/VantroShare/ReviewInVantroView/Share=Default"),
              "Default");
}

}  // namespace
}  // namespace vantrokelui::utility
