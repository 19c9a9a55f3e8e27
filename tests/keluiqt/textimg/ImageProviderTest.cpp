#include <kelui/utility/ImageProvider.h>

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <kelui/utility/OS_ResourceManager.h>

#include "keluiqt/textimg/TextImgTestSupport.h"

namespace {

using kelui::utility::ImageProvider;
using kelui::utility::OS_ResourceManager;

// Leaves no registration behind for the next test in the same process.
struct ImageProviderTest : ::testing::Test {
    ~ImageProviderTest() override { ImageProvider::SetThemeResourceManager({}); }
};

TEST_F(ImageProviderTest, HasNoImagesWithoutAManager) {
    ImageProvider::SetThemeResourceManager({});
    EXPECT_EQ(ImageProvider::GetThemeImage("S_Copy_16"), nullptr);
}

TEST_F(ImageProviderTest, GivesTheImagesOfTheRegisteredManager) {
    auto manager = std::make_shared<OS_ResourceManager>(textimg_test::ArtworkFolder());
    ImageProvider::SetThemeResourceManager(manager);

    const auto image = ImageProvider::GetThemeImage("S_Copy_16");
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image, manager->GetImage("S_Copy_16"));
    EXPECT_EQ(ImageProvider::GetThemeImage("S_NoSuchIcon_16"), nullptr);
}

TEST_F(ImageProviderTest, DoesNotKeepTheManagerAlive) {
    auto manager = std::make_shared<OS_ResourceManager>(textimg_test::ArtworkFolder());
    ImageProvider::SetThemeResourceManager(manager);
    const std::weak_ptr<OS_ResourceManager> watch = manager;

    manager.reset();

    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(ImageProvider::GetThemeImage("S_Copy_16"), nullptr);
}

TEST_F(ImageProviderTest, AnEmptyRegistrationUnregisters) {
    auto manager = std::make_shared<OS_ResourceManager>(textimg_test::ArtworkFolder());
    ImageProvider::SetThemeResourceManager(manager);
    ASSERT_NE(ImageProvider::GetThemeImage("S_Copy_16"), nullptr);

    ImageProvider::SetThemeResourceManager({});

    EXPECT_EQ(ImageProvider::GetThemeImage("S_Copy_16"), nullptr);
}

}  // namespace
