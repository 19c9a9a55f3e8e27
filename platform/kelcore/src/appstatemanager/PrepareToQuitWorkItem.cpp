#include <kelcore/appstatemanager/PrepareToQuitWorkItem.h>

#include <algorithm>
#include <utility>

namespace kelcore::appstatemanager {
namespace {

// Short enough that an override of IsFinished or HasTimedOut is seen promptly.
constexpr std::chrono::milliseconds kWaitSlice{50};

}  // namespace

PrepareToQuitWorkItem::PrepareToQuitWorkItem(std::string text, std::chrono::milliseconds timeLimit)
    : text(std::move(text)), deadline(std::chrono::steady_clock::now() + timeLimit) {}

PrepareToQuitWorkItem::~PrepareToQuitWorkItem() = default;

std::string PrepareToQuitWorkItem::GetText() const {
    return text;
}

void PrepareToQuitWorkItem::DoWork() {
    const auto until = std::min(deadline, std::chrono::steady_clock::now() + kWaitSlice);
    std::unique_lock lock(mutex);
    doneChanged.wait_until(lock, until, [this] { return done.load(); });
}

double PrepareToQuitWorkItem::GetProgress() const {
    return done ? 1.0 : 0.0;
}

bool PrepareToQuitWorkItem::IsFinished() const {
    return done;
}

bool PrepareToQuitWorkItem::HasTimedOut() const {
    return std::chrono::steady_clock::now() >= deadline;
}

bool PrepareToQuitWorkItem::WantsToPreventAppTermination() const {
    return preventsTermination;
}

void PrepareToQuitWorkItem::DoPreventAppToTerminate() {
    preventsTermination = true;
}

void PrepareToQuitWorkItem::MarkDone() {
    {
        // Set under the lock so that a DoWork between its check and its wait cannot miss it.
        std::lock_guard lock(mutex);
        done = true;
    }
    doneChanged.notify_all();
}

}  // namespace kelcore::appstatemanager
