// The arrangement of panels inside a top-level window, as the core sees it: only what dialogs
// need of it, its drawing supplier. The toolkit's Qt side (or a host) derives from it and owns
// it with its window. Any thread may hold one.
#pragma once

#include <memory>

#include <kelui/limner/DrawingSupplier.h>

namespace kelworkspace::workspace {

class Workspace {
public:
    virtual ~Workspace();

    /// The theme and fonts that dialogs of this workspace draw with; may be null (headless).
    virtual std::shared_ptr<limner::DrawingSupplier> GetDrawingSupplier() const = 0;

protected:
    Workspace() = default;
    Workspace(const Workspace&) = default;
    Workspace& operator=(const Workspace&) = default;
};

}  // namespace kelworkspace::workspace
