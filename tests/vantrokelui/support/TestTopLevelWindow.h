// The host's main window in tests: a top-level window with a TestWorkspace, registered as the
// toolkit's main window for the object's life (unregistered after), so that the quit guard and
// toasts find a parent. The test owns it; the toolkit holds it weakly. The test's thread.
//
//   const auto window = TestTopLevelWindow::Create();   // registered until it goes
//   EXPECT_EQ(boxes.Requests().at(0).parent, window);
#pragma once

#include <memory>

#include <kelui/ui/MainTopLevelWindow.h>
#include <kelworkspace/workspace/TopLevelWindow.h>

#include "TestWorkspace.h"

namespace vantrokelui::testing {

class TestTopLevelWindow final : public kelworkspace::workspace::TopLevelWindow {
public:
    /// Makes the window and registers it as the main window.
    static std::shared_ptr<TestTopLevelWindow> Create() {
        auto window = std::make_shared<TestTopLevelWindow>();
        kelui::ui::SetMainTopLevelWindow(window);
        return window;
    }

    ~TestTopLevelWindow() override { kelui::ui::SetMainTopLevelWindow({}); }

    kelcore::string::string GetTitle() const override { return u"Main window"; }
    std::shared_ptr<kelworkspace::workspace::Workspace> GetWorkspace() const override {
        return workspace;
    }

private:
    std::shared_ptr<TestWorkspace> workspace = std::make_shared<TestWorkspace>();
};

}  // namespace vantrokelui::testing
