#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <kelcore/utility/DeleteOnMainThreadRefCountedObject.h>

#include "support/MainThreadFixture.h"

namespace {

using kelcore::threads::CurrentThreadIsMainThread;

struct Deletion {
    std::atomic<int> count{0};
    std::atomic<bool> onMainThread{false};
};

class Node : public kelcore::utility::DeleteOnMainThreadRefCountedObject {
public:
    explicit Node(Deletion& deletion) : deletion(deletion) {}
    ~Node() override {
        deletion.onMainThread = CurrentThreadIsMainThread();
        ++deletion.count;
    }

private:
    Deletion& deletion;
};

class DeleteOnMainThreadRefCountedObject : public testsupport::MainThreadFixture {};

TEST_F(DeleteOnMainThreadRefCountedObject, LastReleaseOnTheMainThreadDeletesAtOnce) {
    Deletion deletion;
    boost::intrusive_ptr<Node> node(new Node(deletion));
    auto second = node;
    EXPECT_EQ(node->RefCount(), 2);

    node.reset();
    EXPECT_EQ(deletion.count, 0);
    second.reset();

    EXPECT_EQ(deletion.count, 1);
    EXPECT_TRUE(deletion.onMainThread);
    EXPECT_EQ(queue->Size(), 0u);
}

TEST_F(DeleteOnMainThreadRefCountedObject, LastReleaseOnAWorkerIsDeletedOnlyWhenTheMainThreadRuns) {
    Deletion deletion;
    boost::intrusive_ptr<Node> node(new Node(deletion));

    std::thread([moved = std::move(node)]() mutable { moved.reset(); }).join();

    EXPECT_EQ(deletion.count, 0);
    EXPECT_EQ(Pump(), 1u);
    EXPECT_EQ(deletion.count, 1);
    EXPECT_TRUE(deletion.onMainThread);
}

TEST_F(DeleteOnMainThreadRefCountedObject,
       ConcurrentAddAndReleaseDeleteExactlyOnceOnTheMainThread) {
    Deletion deletion;
    boost::intrusive_ptr<Node> node(new Node(deletion));
    constexpr int kThreads = 8;
    constexpr int kCopies = 5000;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([copy = node] {
            for (int i = 0; i < kCopies; ++i) {
                boost::intrusive_ptr<Node> another = copy;
            }
        });
    }
    node.reset();
    for (auto& thread : threads) {
        thread.join();
    }

    PumpUntil([&] { return deletion.count.load() > 0; });

    EXPECT_EQ(deletion.count, 1);
    EXPECT_TRUE(deletion.onMainThread);
}

}  // namespace
