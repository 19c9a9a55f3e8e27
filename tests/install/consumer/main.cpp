// Uses the installed headers and libraries the way a host does: makes an observable value,
// binds to it, sets it and pumps the main-thread queue. Prints what the observer saw.
#include <iostream>
#include <memory>

#include <kelcore/threads/MainThread.h>
#include <kelcore/threads/MainThreadQueue.h>
#include <vantrokelui/utility/EncodingProgressNotifyingProperty.h>

int main() {
    kelcore::threads::SetMainThread();
    auto progress = std::make_shared<vantrokelui::EncodingProgressNotifyingProperty>();
    auto binding = progress->AddEncodingProgressBinding(
        [](double value) { std::cout << "progress " << value << "\n"; });
    progress->SetEncodingProgress(0.5);
    kelcore::threads::DefaultMainThreadQueue().RunUntilEmpty();
    return 0;
}
