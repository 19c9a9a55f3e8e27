// Holds the subscriptions of one observer so that they end with it. Views keep one as a member
// (or by shared pointer); an observer subscribes by pushing what AddBinding returns. Main thread.
//
//   utility::DataBindingTarget target;
//   target.bindings.push_back(viewModel->AddCurrentViewIDBinding(callback));
#pragma once

#include <memory>
#include <vector>

#include <kelcore/allocator/STLAllocator.h>
#include <vantrokelui/utility/DataBinding.h>

namespace vantrokelui::utility {

class DataBindingTarget {
public:
    using BindingList = std::vector<std::shared_ptr<DataBinding>,
                                    kelcore::allocator::STLAllocator<std::shared_ptr<DataBinding>>>;

    DataBindingTarget() = default;
    DataBindingTarget(const DataBindingTarget&) = delete;
    DataBindingTarget& operator=(const DataBindingTarget&) = delete;
    /// Releases the subscriptions from first to last.
    virtual ~DataBindingTarget();

    BindingList bindings;
};

}  // namespace vantrokelui::utility
