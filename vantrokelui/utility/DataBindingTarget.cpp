#include <vantrokelui/utility/DataBindingTarget.h>

namespace vantrokelui::utility {

DataBindingTarget::~DataBindingTarget() {
    // The vector's own destructor does not promise an order; unsubscribing follows binding order.
    for (std::shared_ptr<DataBinding>& binding : bindings) {
        binding.reset();
    }
}

}  // namespace vantrokelui::utility
