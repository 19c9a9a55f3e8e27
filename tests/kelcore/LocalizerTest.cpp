#include <gtest/gtest.h>

#include <kelcore/config/Localizer.h>

#include "support/TemporaryDirectory.h"

namespace {

using kelcore::config::Localizer;

class LocalizerTest : public ::testing::Test {
protected:
    void SetUp() override { Localizer::Get().Reset(); }
    void TearDown() override { Localizer::Get().Reset(); }

    testsupport::TemporaryDirectory dir;
};

TEST_F(LocalizerTest, AnswersTheDefaultAfterTheFirstEquals) {
    EXPECT_EQ(Localizer::Get().GetUTF8String("$$$/Corvane/app/Title=Share = review"),
              "Share = review");
    EXPECT_EQ(Localizer::Get().GetString("$$$/Corvane/app/Title=Teilen für"), u"Teilen für");
}

TEST_F(LocalizerTest, TextWithoutThePrefixIsReturnedAsItStands) {
    EXPECT_EQ(Localizer::Get().GetUTF8String("Corvane/app/Title=Share"), "Corvane/app/Title=Share");
    EXPECT_EQ(Localizer::Get().GetUTF8String(""), "");
}

TEST_F(LocalizerTest, ALocaleFileOverridesAKeyAndLeavesOthersAtTheirDefault) {
    dir.Write("de_DE.strings", "# comment\n\n$$$/Corvane/app/Share=Teilen\r\nnot a key=ignored\n");
    ASSERT_TRUE(Localizer::Get().LoadLocale(dir.Path(), "de_DE"));
    EXPECT_EQ(Localizer::Get().GetUTF8String("$$$/Corvane/app/Share=Share"), "Teilen");
    EXPECT_EQ(Localizer::Get().GetUTF8String("$$$/Corvane/app/Cancel=Cancel"), "Cancel");
    EXPECT_EQ(Localizer::Get().GetUTF8String("not a key=x"), "not a key=x");
}

TEST_F(LocalizerTest, BackslashNInALocaleFileIsALineBreak) {
    dir.Write("fr_FR.strings", "$$$/Corvane/app/Two=Ligne un\\nLigne deux\n");
    ASSERT_TRUE(Localizer::Get().LoadLocale(dir.Path(), "fr_FR"));
    EXPECT_EQ(Localizer::Get().GetUTF8String("$$$/Corvane/app/Two=x"), "Ligne un\nLigne deux");
}

TEST_F(LocalizerTest, AMissingLocaleFileKeepsTheDefaults) {
    EXPECT_FALSE(Localizer::Get().LoadLocale(dir.Path(), "xx_XX"));
    EXPECT_EQ(Localizer::Get().GetUTF8String("$$$/Corvane/app/Share=Share"), "Share");
}

TEST_F(LocalizerTest, ResetDropsEveryOverride) {
    dir.Write("de_DE.strings", "$$$/Corvane/app/Share=Teilen\n");
    ASSERT_TRUE(Localizer::Get().LoadLocale(dir.Path(), "de_DE"));
    Localizer::Get().Reset();
    EXPECT_EQ(Localizer::Get().GetUTF8String("$$$/Corvane/app/Share=Share"), "Share");
}

}  // namespace
