#include <gtest/gtest.h>

#include <memory>

#include <kelui/ui/MainTopLevelWindow.h>
#include <kelworkspace/workspace/WorkspaceUtils.h>

namespace kelworkspace::workspace {
namespace {

class Supplier final : public limner::DrawingSupplier {};

class TestWorkspace final : public Workspace {
public:
    explicit TestWorkspace(std::shared_ptr<limner::DrawingSupplier> supplier)
        : supplier(std::move(supplier)) {}
    std::shared_ptr<limner::DrawingSupplier> GetDrawingSupplier() const override {
        return supplier;
    }

private:
    std::shared_ptr<limner::DrawingSupplier> supplier;
};

class MainWindow final : public TopLevelWindow {
public:
    explicit MainWindow(std::shared_ptr<Workspace> workspace) : workspace(std::move(workspace)) {}
    kelcore::string::string GetTitle() const override { return u"Main"; }
    std::shared_ptr<Workspace> GetWorkspace() const override { return workspace; }

private:
    std::shared_ptr<Workspace> workspace;
};

// A top-level window of the toolkit that holds no workspace (a floating palette, say).
class PlainWindow final : public kelui::ui::UI_Window {
public:
    kelcore::string::string GetTitle() const override { return u"Palette"; }
};

class WorkspaceUtilsTest : public ::testing::Test {
protected:
    void TearDown() override { kelui::ui::SetMainTopLevelWindow({}); }
};

TEST_F(WorkspaceUtilsTest, WithoutARegisteredWindowThereIsNone) {
    EXPECT_EQ(WorkspaceUtils::FindMainTopLevelWindow(), nullptr);
}

TEST_F(WorkspaceUtilsTest, TheRegisteredTopLevelWindowIsFoundWithItsWorkspace) {
    const auto supplier = std::make_shared<Supplier>();
    const auto window = std::make_shared<MainWindow>(std::make_shared<TestWorkspace>(supplier));
    kelui::ui::SetMainTopLevelWindow(window);

    const auto found = WorkspaceUtils::FindMainTopLevelWindow();

    ASSERT_EQ(found, window);
    ASSERT_NE(found->GetWorkspace(), nullptr);
    EXPECT_EQ(found->GetWorkspace()->GetDrawingSupplier(), supplier);
}

TEST_F(WorkspaceUtilsTest, AWindowWithoutAWorkspaceIsFoundAndSaysSo) {
    const auto window = std::make_shared<MainWindow>(nullptr);
    kelui::ui::SetMainTopLevelWindow(window);

    const auto found = WorkspaceUtils::FindMainTopLevelWindow();

    ASSERT_EQ(found, window);
    EXPECT_EQ(found->GetWorkspace(), nullptr);
}

TEST_F(WorkspaceUtilsTest, ARegisteredWindowThatIsNotATopLevelWindowIsNotFound) {
    const auto window = std::make_shared<PlainWindow>();
    kelui::ui::SetMainTopLevelWindow(window);

    EXPECT_EQ(kelui::ui::GetMainTopLevelWindow(), window);
    EXPECT_EQ(WorkspaceUtils::FindMainTopLevelWindow(), nullptr);
}

TEST_F(WorkspaceUtilsTest, TheWindowIsNotFoundOnceItsOwnerDropsIt) {
    auto window = std::make_shared<MainWindow>(nullptr);
    kelui::ui::SetMainTopLevelWindow(window);
    ASSERT_NE(WorkspaceUtils::FindMainTopLevelWindow(), nullptr);

    window.reset();

    EXPECT_EQ(WorkspaceUtils::FindMainTopLevelWindow(), nullptr);
}

}  // namespace
}  // namespace kelworkspace::workspace
