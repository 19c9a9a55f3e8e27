#include <kelui/dialogs/messagebox/MessageboxPresenter.h>

#include <mutex>

#include <kelui/dialogs/messagebox/StderrMessageboxPresenter.h>

namespace kelui::dialogs::messagebox {

namespace {

struct Installed {
    std::mutex mutex;
    std::shared_ptr<MessageboxPresenter> presenter;
};

Installed& GetInstalled() {
    static Installed installed;
    return installed;
}

}  // namespace

MessageboxPresenter::~MessageboxPresenter() = default;

std::shared_ptr<MessageboxPresenter> MessageboxPresenter::GetDefaultInstance() {
    Installed& installed = GetInstalled();
    const std::lock_guard lock(installed.mutex);
    if (!installed.presenter) {
        installed.presenter = std::make_shared<StderrMessageboxPresenter>();
    }
    return installed.presenter;
}

void MessageboxPresenter::SetDefaultInstance(std::shared_ptr<MessageboxPresenter> presenter) {
    Installed& installed = GetInstalled();
    const std::lock_guard lock(installed.mutex);
    installed.presenter = std::move(presenter);
}

}  // namespace kelui::dialogs::messagebox
