// One observer's subscription to a notifying property. Owning the shared pointer that
// AddBinding returns is owning the subscription; releasing the last one unsubscribes. Deliveries
// already queued still run, so callbacks must tolerate a late call (see WeakBindMemberFunction).
//
//   std::shared_ptr<DataBinding> binding = property->AddBinding(callback);
//   binding.reset();   // no later SetValue reaches `callback`
#pragma once

namespace vantrokelui::utility {

class DataBinding {
public:
    DataBinding(const DataBinding&) = delete;
    DataBinding& operator=(const DataBinding&) = delete;
    virtual ~DataBinding() = default;

protected:
    DataBinding() = default;
};

}  // namespace vantrokelui::utility
