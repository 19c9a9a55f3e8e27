#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include <kelui/sharedui/StderrToastManager.h>
#include <kelui/sharedui/UI_ToastManager.h>
#include <kelui/ui/UI_Window.h>

#include "StderrCapture.h"

namespace kelui::sharedui {
namespace {

class Window final : public ui::UI_Window {
public:
    kelcore::string::string GetTitle() const override { return u"Main"; }
};

// Keeps every toast it is given, as a host's manager would show it.
class RecordingManager final : public UI_ToastManager {
public:
    std::vector<ToastMessage> toasts;

protected:
    void Display(ToastMessage toast) override { toasts.push_back(std::move(toast)); }
};

class UI_ToastManagerTest : public ::testing::Test {
protected:
    void TearDown() override { UI_ToastManager::SetDefaultInstance(nullptr); }
};

TEST_F(UI_ToastManagerTest, TheDefaultInstanceIsTheStderrManagerAndStaysTheSame) {
    const auto first = UI_ToastManager::GetDefaultInstance();
    ASSERT_NE(first, nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<StderrToastManager>(first), nullptr);
    EXPECT_EQ(UI_ToastManager::GetDefaultInstance(), first);
}

TEST_F(UI_ToastManagerTest, TheStderrManagerWritesOneLineWithTheButtonAndDismissesAtOnce) {
    StderrToastManager manager;
    int actions = 0;
    int dismissals = 0;
    keluitest::StderrCapture capture;

    manager.DisplayToastMessage(
        nullptr, "Uploading \"Cut 1.mp4\" to Vantro failed.", "Try again", [&] { ++actions; },
        [&] { ++dismissals; }, ToastType::Error, 0.0, kToastManager_DefaultPriority,
        ToastLineType::SingleLine);

    EXPECT_EQ(capture.Text(), "Uploading \"Cut 1.mp4\" to Vantro failed. [Try again]\n");
    EXPECT_EQ(actions, 0);
    EXPECT_EQ(dismissals, 1);
}

TEST_F(UI_ToastManagerTest, TheStderrManagerLeavesOutTheBracketsWithoutAButton) {
    StderrToastManager manager;
    keluitest::StderrCapture capture;

    manager.DisplayToastMessage(nullptr, "Unable to create share for review link.", "", {}, {},
                                ToastType::Error, 0.0, kToastManager_DefaultPriority,
                                ToastLineType::SingleLine);

    EXPECT_EQ(capture.Text(), "Unable to create share for review link.\n");
}

TEST_F(UI_ToastManagerTest, TheStderrManagerKeepsAToastWithLineBreaksOnOneLine) {
    StderrToastManager manager;
    keluitest::StderrCapture capture;

    manager.DisplayToastMessage(nullptr, "first\nsecond\r\nthird", "OK", {}, {},
                                ToastType::Information, 0.0, kToastManager_DefaultPriority,
                                ToastLineType::MultiLine);

    EXPECT_EQ(capture.Text(), "first second  third [OK]\n");
}

TEST_F(UI_ToastManagerTest, AnInstalledManagerReplacesTheDefaultAndNullRestoresTheStderrOne) {
    const auto recorder = std::make_shared<RecordingManager>();

    UI_ToastManager::SetDefaultInstance(recorder);
    EXPECT_EQ(UI_ToastManager::GetDefaultInstance(), recorder);
    UI_ToastManager::GetDefaultInstance()->DisplayToastMessage(
        nullptr, "Sharing \"Cut 1.mp4\" failed. Please try again.", "", {}, {}, ToastType::Error,
        0.0, kToastManager_DefaultPriority, ToastLineType::SingleLine);
    ASSERT_EQ(recorder->toasts.size(), 1u);

    UI_ToastManager::SetDefaultInstance(nullptr);
    const auto restored = UI_ToastManager::GetDefaultInstance();
    EXPECT_NE(restored, recorder);
    EXPECT_NE(std::dynamic_pointer_cast<StderrToastManager>(restored), nullptr);
    keluitest::StderrCapture capture;
    restored->DisplayToastMessage(nullptr, "after", "", {}, {}, ToastType::Information, 0.0,
                                  kToastManager_DefaultPriority, ToastLineType::SingleLine);
    EXPECT_EQ(capture.Text(), "after\n");
    EXPECT_EQ(recorder->toasts.size(), 1u);
}

TEST_F(UI_ToastManagerTest, EveryFieldAndTheButtonsActionReachTheManager) {
    const auto recorder = std::make_shared<RecordingManager>();
    UI_ToastManager::SetDefaultInstance(recorder);
    const auto window = std::make_shared<Window>();
    int actions = 0;
    int dismissals = 0;

    UI_ToastManager::GetDefaultInstance()->DisplayToastMessage(
        window, "Unable to create share for review link.", "Try again", [&] { ++actions; },
        [&] { ++dismissals; }, ToastType::Error, 4.5, 70, ToastLineType::MultiLine);

    ASSERT_EQ(recorder->toasts.size(), 1u);
    const ToastMessage& toast = recorder->toasts.front();
    EXPECT_EQ(toast.window.lock(), window);
    EXPECT_EQ(toast.message, "Unable to create share for review link.");
    EXPECT_EQ(toast.buttonLabel, "Try again");
    EXPECT_EQ(toast.type, ToastType::Error);
    EXPECT_DOUBLE_EQ(toast.duration, 4.5);
    EXPECT_EQ(toast.priority, 70);
    EXPECT_EQ(toast.lineType, ToastLineType::MultiLine);
    ASSERT_TRUE(toast.action);
    toast.action();
    EXPECT_EQ(actions, 1);
    EXPECT_EQ(dismissals, 0);
    ASSERT_TRUE(toast.dismissal);
    toast.dismissal();
    EXPECT_EQ(dismissals, 1);
}

TEST_F(UI_ToastManagerTest, AToastHoldsItsWindowWeakly) {
    const auto recorder = std::make_shared<RecordingManager>();
    auto window = std::make_shared<Window>();
    recorder->DisplayToastMessage(window, "text", "", {}, {}, ToastType::Information, 0.0,
                                  kToastManager_DefaultPriority, ToastLineType::SingleLine);
    ASSERT_EQ(recorder->toasts.size(), 1u);
    EXPECT_FALSE(recorder->toasts.front().window.expired());

    window.reset();

    EXPECT_TRUE(recorder->toasts.front().window.expired());
}

}  // namespace
}  // namespace kelui::sharedui
