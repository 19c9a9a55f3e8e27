// A workspace for tests that need the host's main window: it hands dialogs a drawing supplier of
// its own, so a test can check that a message box was given it. Owned by its TestTopLevelWindow;
// any thread.
#pragma once

#include <memory>

#include <kelworkspace/workspace/Workspace.h>

namespace vantrokelui::testing {

class TestWorkspace final : public kelworkspace::workspace::Workspace {
public:
    TestWorkspace() : supplier(std::make_shared<Supplier>()) {}

    std::shared_ptr<limner::DrawingSupplier> GetDrawingSupplier() const override {
        return supplier;
    }

private:
    class Supplier final : public limner::DrawingSupplier {};

    std::shared_ptr<limner::DrawingSupplier> supplier;
};

}  // namespace vantrokelui::testing
