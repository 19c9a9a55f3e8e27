// What a dialog draws with: the theme, fonts and images of one workspace. Opaque to the core;
// the toolkit's Qt side derives from it, and a headless host has none. Shared by the workspace
// that owns it and every dialog that draws with it. Any thread may hold one.
#pragma once

namespace limner {

class DrawingSupplier {
public:
    virtual ~DrawingSupplier();

protected:
    DrawingSupplier() = default;
    DrawingSupplier(const DrawingSupplier&) = default;
    DrawingSupplier& operator=(const DrawingSupplier&) = default;
};

}  // namespace limner
