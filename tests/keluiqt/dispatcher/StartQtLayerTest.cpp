#include <kelui/dialogs/messagebox/MessageboxPresenter.h>
#include <kelui/dialogs/messagebox/QtMessageboxPresenter.h>
#include <kelui/dialogs/messagebox/StderrMessageboxPresenter.h>
#include <kelui/sharedui/QtToastManager.h>
#include <kelui/sharedui/StderrToastManager.h>
#include <kelui/sharedui/UI_ToastManager.h>
#include <kelui/ui/QtMainThreadDispatcher.h>
#include <kelui/ui/StartQtLayer.h>

#include <atomic>
#include <thread>
#include <vector>

#include <kelcore/threads/MainThread.h>

#include <gtest/gtest.h>

#include "keluiqt/popups/PopupsTestSupport.h"

namespace {

using kelcore::threads::AsyncCallFromMainThread;
using popupstest::WaitFor;

// Starts the Qt layer for one test and stops it again.
struct QtLayer {
    QtLayer() { kelui::ui::StartQtLayer(); }
    ~QtLayer() { kelui::ui::StopQtLayer(); }
};

TEST(StartQtLayer, InstallsTheQtServicesAndStopQtLayerRestoresTheDefaults) {
    {
        QtLayer layer;
        EXPECT_NE(std::dynamic_pointer_cast<kelui::ui::QtMainThreadDispatcher>(
                      kelcore::threads::GetMainThreadDispatcher()),
                  nullptr);
        EXPECT_NE(std::dynamic_pointer_cast<kelui::sharedui::QtToastManager>(
                      kelui::sharedui::UI_ToastManager::GetDefaultInstance()),
                  nullptr);
        EXPECT_NE(std::dynamic_pointer_cast<kelui::dialogs::messagebox::QtMessageboxPresenter>(
                      kelui::dialogs::messagebox::MessageboxPresenter::GetDefaultInstance()),
                  nullptr);
    }
    EXPECT_EQ(kelcore::threads::GetMainThreadDispatcher().get(),
              &kelcore::threads::DefaultMainThreadQueue());
    EXPECT_NE(std::dynamic_pointer_cast<kelui::sharedui::StderrToastManager>(
                  kelui::sharedui::UI_ToastManager::GetDefaultInstance()),
              nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<kelui::dialogs::messagebox::StderrMessageboxPresenter>(
                  kelui::dialogs::messagebox::MessageboxPresenter::GetDefaultInstance()),
              nullptr);
}

TEST(StartQtLayer, StartingTwiceKeepsTheFirstDispatcher) {
    QtLayer layer;
    const auto first = kelcore::threads::GetMainThreadDispatcher();
    kelui::ui::StartQtLayer();
    EXPECT_EQ(kelcore::threads::GetMainThreadDispatcher(), first);
}

TEST(StartQtLayer, EveryPostFromEightThreadsArrivesOnTheMainThreadInEachThreadsOrder) {
    QtLayer layer;
    constexpr int kThreads = 8;
    constexpr int kPerThread = 500;
    // Written only on the main thread, by the posted closures; read after every one ran.
    std::vector<std::vector<int>> seen(kThreads);
    int offMainThread = 0;
    std::atomic<int> delivered{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < kPerThread; ++i) {
                AsyncCallFromMainThread([&, t, i] {
                    if (!kelcore::threads::CurrentThreadIsMainThread()) {
                        ++offMainThread;
                    }
                    seen[static_cast<std::size_t>(t)].push_back(i);
                    delivered.fetch_add(1, std::memory_order_release);
                });
            }
        });
    }
    // Qt's loop runs while the threads are still posting.
    const bool all =
        WaitFor([&] { return delivered.load(std::memory_order_acquire) == kThreads * kPerThread; });
    for (auto& thread : threads) {
        thread.join();
    }
    ASSERT_TRUE(all) << delivered.load();
    EXPECT_EQ(offMainThread, 0);
    for (int t = 0; t < kThreads; ++t) {
        const auto& posts = seen[static_cast<std::size_t>(t)];
        ASSERT_EQ(posts.size(), static_cast<std::size_t>(kPerThread)) << "thread " << t;
        for (int i = 0; i < kPerThread; ++i) {
            ASSERT_EQ(posts[static_cast<std::size_t>(i)], i) << "thread " << t;
        }
    }
}

TEST(StartQtLayer, ClosuresThatWaitedInTheDefaultQueueRunFirst) {
    std::vector<std::string> order;
    AsyncCallFromMainThread([&] { order.push_back("before start"); });
    QtLayer layer;
    AsyncCallFromMainThread([&] { order.push_back("after start"); });
    EXPECT_TRUE(order.empty());
    ASSERT_TRUE(WaitFor([&] { return order.size() == 2; }));
    EXPECT_EQ(order, (std::vector<std::string>{"before start", "after start"}));
}

TEST(StartQtLayer, AsyncCallsNeverRunInline) {
    QtLayer layer;
    bool ran = false;
    AsyncCallFromMainThread([&] { ran = true; });
    EXPECT_FALSE(ran);
    EXPECT_TRUE(WaitFor([&] { return ran; }));
}

TEST(StartQtLayer, StopRunsWhatWasAlreadyPostedToQt) {
    std::vector<int> order;
    {
        QtLayer layer;
        AsyncCallFromMainThread([&] { order.push_back(1); });
        AsyncCallFromMainThread([&] { order.push_back(2); });
    }
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
    // Later posts wait in the default queue again.
    AsyncCallFromMainThread([&] { order.push_back(3); });
    EXPECT_EQ(kelcore::threads::DefaultMainThreadQueue().RunUntilEmpty(), 1u);
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

}  // namespace
