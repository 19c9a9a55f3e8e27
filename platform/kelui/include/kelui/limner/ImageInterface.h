// A picture that the toolkit can draw, held by boost::intrusive_ptr on its own reference count.
// What the pixels are and where they come from is the implementation's business (an SVG
// resource, a decoded avatar). Counting is any thread; drawing is main-thread only.
//
//   boost::intrusive_ptr<limner::ImageInterface> icon = resources.GetImage("AccountIcon");
#pragma once

#include <boost/intrusive_ptr.hpp>

#include <kelcore/utility/RefCountedObjectWithWeakPtr.h>

namespace limner {

class ImageInterface : public kelcore::utility::RefCountedObjectWithWeakPtr {
public:
    /// Natural size in device-independent pixels.
    virtual float GetWidth() const = 0;
    virtual float GetHeight() const = 0;

protected:
    ImageInterface() = default;
    ~ImageInterface() override = default;
};

}  // namespace limner
