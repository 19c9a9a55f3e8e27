// A toast manager for tests: installs itself as the process's manager for its lifetime (the
// stderr one comes back after) and records every toast, so a test can read the text and press
// the button. Displays arrive on the main thread; reading is any thread.
//
//   RecordingToastManager toasts;
//   ... pump the main thread ...
//   ASSERT_EQ(toasts.Toasts().size(), 1u);
//   toasts.PressButton(0);
#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include <kelui/sharedui/UI_ToastManager.h>

namespace vantrokelui::testing {

class RecordingToastManager {
public:
    RecordingToastManager() : manager(std::make_shared<Manager>()) {
        kelui::sharedui::UI_ToastManager::SetDefaultInstance(manager);
    }
    ~RecordingToastManager() { kelui::sharedui::UI_ToastManager::SetDefaultInstance(nullptr); }
    RecordingToastManager(const RecordingToastManager&) = delete;
    RecordingToastManager& operator=(const RecordingToastManager&) = delete;

    /// Every toast so far, oldest first.
    std::vector<kelui::sharedui::ToastMessage> Toasts() const {
        const std::lock_guard lock(manager->mutex);
        return manager->toasts;
    }

    /// Runs the action of toast `index`, as a press of its button would. Main thread.
    void PressButton(std::size_t index) const {
        const auto toasts = Toasts();
        if (index < toasts.size() && toasts[index].action) {
            toasts[index].action();
        }
    }

private:
    struct Manager final : kelui::sharedui::UI_ToastManager {
        void Display(kelui::sharedui::ToastMessage toast) override {
            const std::lock_guard lock(mutex);
            toasts.push_back(std::move(toast));
        }
        mutable std::mutex mutex;
        std::vector<kelui::sharedui::ToastMessage> toasts;
    };

    std::shared_ptr<Manager> manager;
};

}  // namespace vantrokelui::testing
