// Heap allocations made by a set: none when the value does not change, a few when it does.
// Counted by replacing the global operator new in this test executable; the sanitizers bring
// their own allocator, so under them the replacement is left out and the tests skip.
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>
#include <support/MainThreadFixture.h>
#include <vantrokelui/utility/DataBinding.h>
#include <vantrokelui/utility/NotifyingProperty.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VANTROKELUI_TEST_COUNTS_ALLOCATIONS 0
#else
#define VANTROKELUI_TEST_COUNTS_ALLOCATIONS 1
#endif

namespace {
thread_local std::size_t sAllocationsOnThisThread = 0;
}  // namespace

#if VANTROKELUI_TEST_COUNTS_ALLOCATIONS
// The other forms of operator new and delete in libstdc++ forward to these (the aligned ones
// use their own allocation and are not counted; nothing here is over-aligned).
// Kept out of line: inlined, GCC would pair malloc and free with the callers' new and delete
// and warn of a mismatch.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++sAllocationsOnThisThread;
    if (void* block = std::malloc(size == 0 ? 1 : size)) {
        return block;
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
    std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
#endif

namespace vantrokelui::utility {
namespace {

using kelcore::string::string;

struct Item {};
using ItemPointer = std::shared_ptr<Item>;
using ItemList = SharedPtrVector<Item>;

class NotifyingPropertyAllocationTest : public testsupport::MainThreadFixture {
protected:
    void SetUp() override {
        MainThreadFixture::SetUp();
        if (!VANTROKELUI_TEST_COUNTS_ALLOCATIONS) {
            GTEST_SKIP() << "allocations are not counted under a sanitizer";
        }
    }

    // Allocations made on this thread while `action` runs.
    template <class Action>
    static std::size_t AllocationsDuring(Action&& action) {
        const std::size_t before = sAllocationsOnThisThread;
        action();
        return sAllocationsOnThisThread - before;
    }

    template <class Property>
    std::vector<std::shared_ptr<DataBinding>> Observe(Property& property, int observers) {
        std::vector<std::shared_ptr<DataBinding>> bindings;
        for (int i = 0; i < observers; ++i) {
            bindings.push_back(property.AddBinding([](typename Property::ArgumentType) {}));
        }
        Pump();
        return bindings;
    }
};

TEST_F(NotifyingPropertyAllocationTest, TheCounterSeesAnAllocation) {
    EXPECT_GE(AllocationsDuring([] { std::make_unique<int>(1).reset(); }), 1u);
}

TEST_F(NotifyingPropertyAllocationTest, AnUnchangedDoubleAllocatesNothing) {
    for (const int observers : {0, 1, 10, 100}) {
        auto property = std::make_shared<NotifyingProperty<double>>(0.5);
        auto bindings = Observe(*property, observers);
        EXPECT_EQ(AllocationsDuring([&] {
                      for (int i = 0; i < 1000; ++i) {
                          property->SetValue(0.5);
                      }
                  }),
                  0u)
            << observers << " observers";
        EXPECT_EQ(queue->Size(), 0u);
    }
}

TEST_F(NotifyingPropertyAllocationTest, UnchangedValuesOfEveryKindAllocateNothing) {
    auto flag = std::make_shared<NotifyingProperty<bool>>(true);
    auto text = std::make_shared<NotifyingProperty<string, const string&>>(
        string(u"a text long enough not to fit in the string itself"));
    auto guid =
        std::make_shared<NotifyingProperty<kelcore::utility::Guid, const kelcore::utility::Guid&>>(
            kelcore::utility::Guid(7, 9));
    auto item = std::make_shared<Item>();
    auto pointer = std::make_shared<NotifyingProperty<ItemPointer, const ItemPointer&>>(item);
    auto list = std::make_shared<NotifyingProperty<ItemList, const ItemList&>>(
        ItemList{item, std::make_shared<Item>()});
    auto b1 = Observe(*flag, 2);
    auto b2 = Observe(*text, 2);
    auto b3 = Observe(*guid, 2);
    auto b4 = Observe(*pointer, 2);
    auto b5 = Observe(*list, 2);
    // Equal arguments in buffers of their own, made before counting starts.
    const string sameText(u"a text long enough not to fit in the string itself");
    const ItemPointer samePointer = item;
    const ItemList sameList = list->GetValue();

    EXPECT_EQ(AllocationsDuring([&] {
                  flag->SetValue(true);
                  text->SetValue(sameText);
                  guid->SetValue(kelcore::utility::Guid(7, 9));
                  pointer->SetValue(samePointer);
                  list->SetValue(sameList);
              }),
              0u);
    EXPECT_EQ(queue->Size(), 0u);
}

TEST_F(NotifyingPropertyAllocationTest, AChangedDoubleCostsTheListCopyAndTheQueuedClosure) {
    auto property = std::make_shared<NotifyingProperty<double>>();
    auto bindings = Observe(*property, 10);
    // Warm the queue's own storage so that only the set's allocations are counted.
    property->SetValue(1.0);
    Pump();
    const std::size_t perSet = AllocationsDuring([&] { property->SetValue(2.0); });
    RecordProperty("AllocationsPerChangedSet", static_cast<int>(perSet));
    // One for the copy of the observer list, one for the closure handed to the main thread.
    EXPECT_LE(perSet, 2u);
    EXPECT_GE(perSet, 1u);
    Pump();
}

}  // namespace
}  // namespace vantrokelui::utility
