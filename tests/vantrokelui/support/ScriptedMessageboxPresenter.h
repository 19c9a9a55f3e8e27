// A message box presenter for tests: installs itself for its lifetime (the stderr one comes
// back after), records every question and answers with the button the test chose. Present runs
// on the main thread; the rest any thread.
//
//   ScriptedMessageboxPresenter boxes(UI_MessageBox::Button2);
//   ... the code under test asks ...
//   EXPECT_EQ(boxes.Requests().at(0).title, "Still rendering and uploading");
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include <kelui/dialogs/messagebox/MessageboxPresenter.h>

namespace vantrokelui::testing {

class ScriptedMessageboxPresenter {
public:
    using Button = kelui::dialogs::messagebox::UI_MessageBox::Button;

    explicit ScriptedMessageboxPresenter(Button answer)
        : presenter(std::make_shared<Presenter>(answer)) {
        kelui::dialogs::messagebox::MessageboxPresenter::SetDefaultInstance(presenter);
    }
    ~ScriptedMessageboxPresenter() {
        kelui::dialogs::messagebox::MessageboxPresenter::SetDefaultInstance(nullptr);
    }
    ScriptedMessageboxPresenter(const ScriptedMessageboxPresenter&) = delete;
    ScriptedMessageboxPresenter& operator=(const ScriptedMessageboxPresenter&) = delete;

    /// Every question so far, oldest first.
    std::vector<kelui::dialogs::messagebox::MessageboxRequest> Requests() const {
        const std::lock_guard lock(presenter->mutex);
        return presenter->requests;
    }

    /// The answer to the next questions.
    void SetAnswer(Button answer) {
        const std::lock_guard lock(presenter->mutex);
        presenter->answer = answer;
    }

private:
    struct Presenter final : kelui::dialogs::messagebox::MessageboxPresenter {
        explicit Presenter(Button answer) : answer(answer) {}
        Button Present(const kelui::dialogs::messagebox::MessageboxRequest& request,
                       std::optional<bool>& /*checkBox*/) override {
            const std::lock_guard lock(mutex);
            requests.push_back(request);
            return answer;
        }
        mutable std::mutex mutex;
        Button answer;
        std::vector<kelui::dialogs::messagebox::MessageboxRequest> requests;
    };

    std::shared_ptr<Presenter> presenter;
};

}  // namespace vantrokelui::testing
