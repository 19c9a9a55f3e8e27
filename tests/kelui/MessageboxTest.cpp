#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <kelui/dialogs/messagebox/Messagebox.h>
#include <kelui/dialogs/messagebox/MessageboxPresenter.h>
#include <kelui/dialogs/messagebox/StderrMessageboxPresenter.h>

#include "StderrCapture.h"

namespace kelui::dialogs::messagebox {
namespace {

class Window final : public ui::UI_Window {
public:
    kelcore::string::string GetTitle() const override { return u"Main"; }
};

class Supplier final : public limner::DrawingSupplier {};

// Records each question, answers the chosen button and turns a check box over.
class RecordingPresenter final : public MessageboxPresenter {
public:
    explicit RecordingPresenter(UI_MessageBox::Button answer) : answer(answer) {}

    UI_MessageBox::Button Present(const MessageboxRequest& request,
                                  std::optional<bool>& checkBox) override {
        requests.push_back(request);
        checkBoxesSeen.push_back(checkBox);
        if (checkBox) {
            checkBox = !*checkBox;
        }
        return answer;
    }

    UI_MessageBox::Button answer;
    std::vector<MessageboxRequest> requests;
    std::vector<std::optional<bool>> checkBoxesSeen;
};

class MessageboxTest : public ::testing::Test {
protected:
    void TearDown() override { MessageboxPresenter::SetDefaultInstance(nullptr); }

    std::shared_ptr<RecordingPresenter> Install(UI_MessageBox::Button answer) {
        auto presenter = std::make_shared<RecordingPresenter>(answer);
        MessageboxPresenter::SetDefaultInstance(presenter);
        return presenter;
    }
};

TEST_F(MessageboxTest, TheRequestCarriesEverythingTheCallerGave) {
    const auto presenter = Install(UI_MessageBox::Button3);
    const auto supplier = std::make_shared<Supplier>();
    const auto window = std::make_shared<Window>();

    const auto answer =
        Messagebox(supplier, "Still rendering", "Your sequence is still rendering.", window, "One",
                   "Two", "Three", "Four", "Five", nullptr, UI_MessageBox::Button4,
                   UI_MessageBox::Icon::Warning, nullptr, 320.0f, 200.0f);

    EXPECT_EQ(answer, UI_MessageBox::Button3);
    ASSERT_EQ(presenter->requests.size(), 1u);
    const MessageboxRequest& request = presenter->requests.front();
    EXPECT_EQ(request.drawingSupplier, supplier);
    EXPECT_EQ(request.title, "Still rendering");
    EXPECT_EQ(request.message, "Your sequence is still rendering.");
    EXPECT_EQ(request.parent, window);
    EXPECT_EQ(request.buttons, (std::array<std::string, 5>{"One", "Two", "Three", "Four", "Five"}));
    EXPECT_FALSE(request.checkBox.has_value());
    EXPECT_EQ(request.defaultButton, UI_MessageBox::Button4);
    EXPECT_EQ(request.icon, UI_MessageBox::Icon::Warning);
}

TEST_F(MessageboxTest, EmptyButtonTextsStayEmptyInTheirPlaces) {
    const auto presenter = Install(UI_MessageBox::Button2);

    Messagebox(nullptr, "Title", "Message", nullptr, "Close now", "Close later", "", "", "",
               nullptr, UI_MessageBox::Button2, UI_MessageBox::Icon::Warning, nullptr, 0.0f, 0.0f);

    ASSERT_EQ(presenter->requests.size(), 1u);
    EXPECT_EQ(presenter->requests.front().buttons,
              (std::array<std::string, 5>{"Close now", "Close later", "", "", ""}));
    EXPECT_EQ(presenter->requests.front().parent, nullptr);
    EXPECT_EQ(presenter->requests.front().drawingSupplier, nullptr);
}

TEST_F(MessageboxTest, ACheckBoxGoesInWithItsValueAndComesOutWithTheAnswer) {
    const auto presenter = Install(UI_MessageBox::Button1);
    bool dontAskAgain = false;

    Messagebox(nullptr, "Title", "Message", nullptr, "OK", "", "", "", "", &dontAskAgain,
               UI_MessageBox::Button1, UI_MessageBox::Icon::Question, nullptr, 0.0f, 0.0f);

    ASSERT_EQ(presenter->requests.size(), 1u);
    EXPECT_EQ(presenter->requests.front().checkBox, std::optional<bool>(false));
    EXPECT_EQ(presenter->checkBoxesSeen.front(), std::optional<bool>(false));
    EXPECT_TRUE(dontAskAgain);

    Messagebox(nullptr, "Title", "Message", nullptr, "OK", "", "", "", "", &dontAskAgain,
               UI_MessageBox::Button1, UI_MessageBox::Icon::Question, nullptr, 0.0f, 0.0f);

    EXPECT_EQ(presenter->requests.back().checkBox, std::optional<bool>(true));
    EXPECT_FALSE(dontAskAgain);
}

TEST_F(MessageboxTest, TheCallbackHearsTheAnswerBeforeMessageboxReturns) {
    Install(UI_MessageBox::Button2);
    std::vector<UI_MessageBox::Button> heard;

    const auto answer = Messagebox(
        nullptr, "Title", "Message", nullptr, "Close now", "Close later", "", "", "", nullptr,
        UI_MessageBox::Button2, UI_MessageBox::Icon::Warning,
        [&](UI_MessageBox::Button button) { heard.push_back(button); }, 0.0f, 0.0f);

    EXPECT_EQ(answer, UI_MessageBox::Button2);
    EXPECT_EQ(heard, std::vector<UI_MessageBox::Button>{UI_MessageBox::Button2});
}

TEST_F(MessageboxTest, AClosedBoxAnswersNoButtonToCallerAndCallback) {
    Install(UI_MessageBox::NoButton);
    std::vector<UI_MessageBox::Button> heard;

    const auto answer = Messagebox(
        nullptr, "Title", "Message", nullptr, "OK", "", "", "", "", nullptr, UI_MessageBox::Button1,
        UI_MessageBox::Icon::None, [&](UI_MessageBox::Button button) { heard.push_back(button); },
        0.0f, 0.0f);

    EXPECT_EQ(answer, UI_MessageBox::NoButton);
    EXPECT_EQ(heard, std::vector<UI_MessageBox::Button>{UI_MessageBox::NoButton});
}

TEST_F(MessageboxTest, TheDefaultPresenterIsTheStderrOneAndNullRestoresIt) {
    const auto first = MessageboxPresenter::GetDefaultInstance();
    EXPECT_NE(std::dynamic_pointer_cast<StderrMessageboxPresenter>(first), nullptr);
    EXPECT_EQ(MessageboxPresenter::GetDefaultInstance(), first);

    const auto presenter = Install(UI_MessageBox::Button1);
    EXPECT_EQ(MessageboxPresenter::GetDefaultInstance(), presenter);

    MessageboxPresenter::SetDefaultInstance(nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<StderrMessageboxPresenter>(
                  MessageboxPresenter::GetDefaultInstance()),
              nullptr);
}

TEST_F(MessageboxTest, TheStderrPresenterPrintsTheQuestionAndAnswersTheDefaultButton) {
    bool checked = true;
    std::vector<UI_MessageBox::Button> heard;
    keluitest::StderrCapture capture;

    const auto answer = Messagebox(
        nullptr, "Still rendering and uploading", "Closing now will cancel this process.", nullptr,
        "Close now", "Close later", "", "", "", &checked, UI_MessageBox::Button2,
        UI_MessageBox::Icon::Warning,
        [&](UI_MessageBox::Button button) { heard.push_back(button); }, 0.0f, 0.0f);

    EXPECT_EQ(capture.Text(),
              "Still rendering and uploading\n"
              "Closing now will cancel this process.\n"
              "  [ ] Close now\n"
              "  [*] Close later\n");
    EXPECT_EQ(answer, UI_MessageBox::Button2);
    EXPECT_EQ(heard, std::vector<UI_MessageBox::Button>{UI_MessageBox::Button2});
    EXPECT_TRUE(checked);
}

TEST_F(MessageboxTest, TheStderrPresenterMarksTheFifthButtonByItsBit) {
    StderrMessageboxPresenter presenter;
    MessageboxRequest request;
    request.title = "T";
    request.message = "M";
    request.buttons = {"", "", "", "Four", "Five"};
    request.defaultButton = UI_MessageBox::Button5;
    std::optional<bool> checkBox;
    keluitest::StderrCapture capture;

    EXPECT_EQ(presenter.Present(request, checkBox), UI_MessageBox::Button5);

    EXPECT_EQ(capture.Text(), "T\nM\n  [ ] Four\n  [*] Five\n");
    EXPECT_FALSE(checkBox.has_value());
}

}  // namespace
}  // namespace kelui::dialogs::messagebox
