#include <kelui/utility/OS_ResourceManager.h>

#include <QDir>
#include <QLibraryInfo>
#include <QProcess>
#include <QResource>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <kelui/utility/SvgImage.h>

#include "keluiqt/textimg/TextImgTestSupport.h"

namespace {

using kelui::utility::OS_ResourceManager;
using textimg_test::InkSquareSvg;
using textimg_test::WriteFile;

std::filesystem::path PathOf(const QTemporaryDir& folder) {
    return std::filesystem::path(folder.path().toStdString());
}

TEST(OS_ResourceManager, ResourceNameIsUpperCaseWithTheNormalDarkDoubleSuffix) {
    EXPECT_EQ(OS_ResourceManager::ToResourceName("S_Copy_16"), "S_COPY_16_N_D_AT_2X");
    EXPECT_EQ(OS_ResourceManager::ToResourceName("VantroFolder_Sm"), "VANTROFOLDER_SM_N_D_AT_2X");
}

TEST(OS_ResourceManager, ANameAlreadyInResourceSpellingKeepsIt) {
    EXPECT_EQ(OS_ResourceManager::ToResourceName("S_COPY_16_N_D_AT_2X"), "S_COPY_16_N_D_AT_2X");
}

TEST(OS_ResourceManager, FindsAnImageByItsFileName) {
    QTemporaryDir folder;
    ASSERT_TRUE(WriteFile(PathOf(folder) / "S_Copy_16.svg", InkSquareSvg(16)));
    OS_ResourceManager resources(PathOf(folder));

    const auto image = resources.GetImage("S_Copy_16");
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->GetWidth(), 16.0f);
    EXPECT_TRUE(resources.HasImage("S_Copy_16"));
}

TEST(OS_ResourceManager, FindsAPlainlyNamedFileByItsResourceName) {
    QTemporaryDir folder;
    ASSERT_TRUE(WriteFile(PathOf(folder) / "S_Copy_16.svg", InkSquareSvg(16)));
    ASSERT_TRUE(WriteFile(PathOf(folder) / "S_Close_12.svg", InkSquareSvg(12)));
    OS_ResourceManager resources(PathOf(folder));

    const auto image = resources.GetImage("S_COPY_16_N_D_AT_2X");
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->GetWidth(), 16.0f);
    EXPECT_TRUE(resources.HasImage("S_CLOSE_12_N_D_AT_2X"));
}

TEST(OS_ResourceManager, FindsAResourceNamedFileByItsPlainName) {
    QTemporaryDir folder;
    // Double-resolution artwork: drawn at 32 for a 16-pixel icon.
    ASSERT_TRUE(
        WriteFile(PathOf(folder) / "S_VANTROPROJECTNAME_16_N_D_AT_2X.svg", InkSquareSvg(32)));
    OS_ResourceManager resources(PathOf(folder));

    const auto image = resources.GetImage("S_VantroProjectName_16");
    ASSERT_NE(image, nullptr);
    EXPECT_TRUE(resources.HasImage("S_VantroProjectName_16"));
    EXPECT_EQ(image->GetWidth(), 16.0f);
    EXPECT_EQ(image->GetHeight(), 16.0f);
}

TEST(OS_ResourceManager, DoubleResolutionArtworkLaysOutAtHalfItsDrawnSize) {
    QTemporaryDir folder;
    ASSERT_TRUE(
        WriteFile(PathOf(folder) / "S_VANTROINLINELOGO_LG_N_D_AT_2X.svg", InkSquareSvg(48)));
    OS_ResourceManager resources(PathOf(folder));

    const auto image = resources.GetImage("S_VANTROINLINELOGO_LG_N_D_AT_2X");
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->GetWidth(), 24.0f);
    EXPECT_EQ(image->GetHeight(), 24.0f);
}

TEST(OS_ResourceManager, HasNoImageOfAnUnknownName) {
    QTemporaryDir folder;
    ASSERT_TRUE(WriteFile(PathOf(folder) / "S_Copy_16.svg", InkSquareSvg(16)));
    OS_ResourceManager resources(PathOf(folder));

    EXPECT_EQ(resources.GetImage("S_Paste_16"), nullptr);
    EXPECT_EQ(resources.GetImage("S_PASTE_16_N_D_AT_2X"), nullptr);
    EXPECT_EQ(resources.GetImage(""), nullptr);
    EXPECT_FALSE(resources.HasImage("S_Paste_16"));
}

TEST(OS_ResourceManager, AFolderThatDoesNotExistHasNothing) {
    OS_ResourceManager resources("/nonexistent/icons");
    EXPECT_EQ(resources.GetImage("S_Copy_16"), nullptr);
    EXPECT_FALSE(resources.HasImage("S_COPY_16_N_D_AT_2X"));
}

TEST(OS_ResourceManager, AFileThatIsNotSvgIsNoImage) {
    QTemporaryDir folder;
    ASSERT_TRUE(WriteFile(PathOf(folder) / "S_Broken_16.svg", "<svg"));
    OS_ResourceManager resources(PathOf(folder));

    EXPECT_EQ(resources.GetImage("S_Broken_16"), nullptr);
    EXPECT_FALSE(resources.HasImage("S_Broken_16"));
}

TEST(OS_ResourceManager, KeepsTheImageOfEachName) {
    QTemporaryDir folder;
    ASSERT_TRUE(WriteFile(PathOf(folder) / "S_Copy_16.svg", InkSquareSvg(16)));
    OS_ResourceManager resources(PathOf(folder));

    const auto first = resources.GetImage("S_Copy_16");
    ASSERT_NE(first, nullptr);
    std::filesystem::remove(PathOf(folder) / "S_Copy_16.svg");
    EXPECT_EQ(resources.GetImage("S_Copy_16"), first);
}

TEST(OS_ResourceManager, LoadsEveryIconOfTheArtworkByBothSpellings) {
    const std::filesystem::path folder = textimg_test::ArtworkFolder();
    OS_ResourceManager resources(folder);
    int icons = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".svg") {
            continue;
        }
        ++icons;
        const std::string name = entry.path().stem().string();
        const auto image = resources.GetImage(name);
        ASSERT_NE(image, nullptr) << name;
        EXPECT_GT(image->GetWidth(), 0.0f) << name;
        EXPECT_GT(image->GetHeight(), 0.0f) << name;
        EXPECT_NE(resources.GetImage(OS_ResourceManager::ToResourceName(name)), nullptr) << name;
    }
    EXPECT_GT(icons, 0);
}

TEST(OS_ResourceManager, ReadsArtworkCompiledInAsQtResources) {
    // The library carries its icons as Qt resources: build a resource file as its build does.
    QTemporaryDir folder;
    ASSERT_TRUE(WriteFile(PathOf(folder) / "S_Copy_16.svg", InkSquareSvg(16)));
    ASSERT_TRUE(WriteFile(PathOf(folder) / "icons.qrc",
                          "<RCC><qresource prefix=\"/textimg_test/icons\">"
                          "<file>S_Copy_16.svg</file></qresource></RCC>"));
    QProcess rcc;
    rcc.setWorkingDirectory(folder.path());
    rcc.start(QLibraryInfo::path(QLibraryInfo::LibraryExecutablesPath) + QStringLiteral("/rcc"),
              {QStringLiteral("--binary"), QStringLiteral("icons.qrc"), QStringLiteral("-o"),
               QStringLiteral("icons.rcc")});
    ASSERT_TRUE(rcc.waitForFinished(60000)) << rcc.errorString().toStdString();
    ASSERT_EQ(rcc.exitCode(), 0) << rcc.readAllStandardError().toStdString();
    const QString compiled = folder.filePath(QStringLiteral("icons.rcc"));
    ASSERT_TRUE(QResource::registerResource(compiled));

    OS_ResourceManager resources(":/textimg_test/icons");
    const auto byName = resources.GetImage("S_Copy_16");
    const auto byResourceName = resources.GetImage("S_COPY_16_N_D_AT_2X");
    QResource::unregisterResource(compiled);

    ASSERT_NE(byName, nullptr);
    EXPECT_EQ(byName->GetWidth(), 16.0f);
    EXPECT_NE(byResourceName, nullptr);
}

}  // namespace
