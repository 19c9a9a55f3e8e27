#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <kelcore/utility/RefCountedObjectWithWeakPtr.h>

namespace {

using kelcore::utility::WeakPtr;

class Manager : public kelcore::utility::RefCountedObjectWithWeakPtr {
public:
    explicit Manager(std::atomic<int>& deletions) : deletions(deletions) {}
    ~Manager() override { ++deletions; }
    int value = 42;

private:
    std::atomic<int>& deletions;
};

class DerivedManager : public Manager {
public:
    using Manager::Manager;
};

TEST(RefCountedObjectWithWeakPtr, WeakLockGivesAStrongReferenceWhileTheObjectLives) {
    std::atomic<int> deletions{0};
    boost::intrusive_ptr<Manager> manager(new Manager(deletions));
    WeakPtr<Manager> weak(manager);

    auto locked = weak.Lock();

    ASSERT_EQ(locked, manager);
    EXPECT_EQ(locked->value, 42);
    EXPECT_EQ(manager->RefCount(), 2);
    EXPECT_FALSE(weak.Expired());
}

TEST(RefCountedObjectWithWeakPtr, WeakLockAfterDeathIsNull) {
    std::atomic<int> deletions{0};
    boost::intrusive_ptr<Manager> manager(new Manager(deletions));
    WeakPtr<Manager> weak(manager);

    manager.reset();

    EXPECT_EQ(deletions, 1);
    EXPECT_TRUE(weak.Expired());
    EXPECT_EQ(weak.Lock(), nullptr);
}

TEST(RefCountedObjectWithWeakPtr, AWeakReferenceDoesNotKeepTheObjectAlive) {
    std::atomic<int> deletions{0};
    boost::intrusive_ptr<Manager> manager(new Manager(deletions));
    WeakPtr<Manager> weak(manager);
    WeakPtr<Manager> copy = weak;

    EXPECT_EQ(manager->RefCount(), 1);
    manager.reset();

    EXPECT_EQ(deletions, 1);
    EXPECT_EQ(copy.Lock(), nullptr);
}

TEST(RefCountedObjectWithWeakPtr, DefaultAndResetWeakPointersLockToNull) {
    std::atomic<int> deletions{0};
    boost::intrusive_ptr<Manager> manager(new Manager(deletions));
    WeakPtr<Manager> weak(manager);

    weak.Reset();

    EXPECT_EQ(WeakPtr<Manager>().Lock(), nullptr);
    EXPECT_EQ(weak.Lock(), nullptr);
    EXPECT_TRUE(weak.Expired());
}

TEST(RefCountedObjectWithWeakPtr, ConvertsFromAWeakPointerToADerivedClass) {
    std::atomic<int> deletions{0};
    boost::intrusive_ptr<DerivedManager> derived(new DerivedManager(deletions));
    WeakPtr<Manager> weak = WeakPtr<DerivedManager>(derived);

    EXPECT_EQ(weak.Lock().get(), derived.get());
}

TEST(RefCountedObjectWithWeakPtr, LockRacingTheLastReleaseNeverRevivesTheObject) {
    constexpr int kRounds = 2000;
    for (int round = 0; round < kRounds; ++round) {
        std::atomic<int> deletions{0};
        boost::intrusive_ptr<Manager> manager(new Manager(deletions));
        WeakPtr<Manager> weak(manager);
        std::atomic<bool> lockedAfterDeath{false};

        std::thread locker([&] {
            while (auto strong = weak.Lock()) {
                // A successful lock must see a live object.
                if (deletions.load() != 0 || strong->value != 42) {
                    lockedAfterDeath = true;
                }
            }
        });
        std::thread releaser([moved = std::move(manager)]() mutable { moved.reset(); });
        releaser.join();
        locker.join();

        ASSERT_FALSE(lockedAfterDeath) << "round " << round;
        ASSERT_EQ(deletions, 1) << "round " << round;
        ASSERT_EQ(weak.Lock(), nullptr);
    }
}

TEST(RefCountedObjectWithWeakPtr, ConcurrentAddAndReleaseDeleteExactlyOnce) {
    std::atomic<int> deletions{0};
    boost::intrusive_ptr<Manager> manager(new Manager(deletions));
    WeakPtr<Manager> weak(manager);
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([copy = manager, weak] {
            for (int i = 0; i < 5000; ++i) {
                boost::intrusive_ptr<Manager> another = copy;
                auto locked = weak.Lock();
            }
        });
    }
    manager.reset();
    for (auto& thread : threads) {
        thread.join();
    }

    EXPECT_EQ(deletions, 1);
    EXPECT_EQ(weak.Lock(), nullptr);
}

}  // namespace
