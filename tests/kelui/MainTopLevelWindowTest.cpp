#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include <kelui/ui/MainTopLevelWindow.h>

namespace kelui::ui {
namespace {

class Window final : public UI_Window {
public:
    explicit Window(kelcore::string::string title) : title(std::move(title)) {}
    kelcore::string::string GetTitle() const override { return title; }

private:
    kelcore::string::string title;
};

class MainTopLevelWindowTest : public ::testing::Test {
protected:
    void TearDown() override { SetMainTopLevelWindow({}); }
};

TEST_F(MainTopLevelWindowTest, WithoutARegistrationThereIsNoMainWindow) {
    EXPECT_EQ(GetMainTopLevelWindow(), nullptr);
}

TEST_F(MainTopLevelWindowTest, TheRegisteredWindowIsFoundWhileItsOwnerKeepsIt) {
    auto window = std::make_shared<Window>(u"Main");
    SetMainTopLevelWindow(window);

    const auto found = GetMainTopLevelWindow();
    ASSERT_EQ(found, window);
    EXPECT_EQ(found->GetTitle(), u"Main");
}

TEST_F(MainTopLevelWindowTest, TheWindowIsGoneWhenItsOwnerDropsIt) {
    auto window = std::make_shared<Window>(u"Main");
    SetMainTopLevelWindow(window);
    const std::weak_ptr<Window> observer = window;

    window.reset();

    EXPECT_TRUE(observer.expired()) << "the registration kept the window alive";
    EXPECT_EQ(GetMainTopLevelWindow(), nullptr);
}

TEST_F(MainTopLevelWindowTest, ANewRegistrationReplacesTheOldAndAnEmptyOneUnregisters) {
    const auto first = std::make_shared<Window>(u"First");
    const auto second = std::make_shared<Window>(u"Second");

    SetMainTopLevelWindow(first);
    SetMainTopLevelWindow(second);
    EXPECT_EQ(GetMainTopLevelWindow(), second);

    SetMainTopLevelWindow({});
    EXPECT_EQ(GetMainTopLevelWindow(), nullptr);
}

TEST_F(MainTopLevelWindowTest, AWindowRegisteredOnOneThreadIsFoundOnAnother) {
    const auto window = std::make_shared<Window>(u"Main");
    std::thread([&] { SetMainTopLevelWindow(window); }).join();

    std::shared_ptr<UI_Window> found;
    std::thread([&] { found = GetMainTopLevelWindow(); }).join();

    EXPECT_EQ(found, window);
}

}  // namespace
}  // namespace kelui::ui
