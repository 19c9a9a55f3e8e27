#include <kelui/limner/DrawingSupplier.h>

namespace limner {

DrawingSupplier::~DrawingSupplier() = default;

}  // namespace limner
