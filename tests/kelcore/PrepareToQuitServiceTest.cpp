#include <chrono>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/appstatemanager/AppStateManager.h>
#include <kelcore/appstatemanager/PrepareToQuitService.h>
#include <kelcore/logging/CapturedLogForTesting.h>

#include "support/MainThreadFixture.h"

namespace {

using namespace kelcore::appstatemanager;
using namespace std::chrono_literals;

// Prepares as told: optionally prevents, optionally ends itself, answers `answer`.
class ScriptedItem : public PrepareToQuitWorkItem {
public:
    struct Script {
        bool prevent = false;
        bool markDone = true;
        int answer = 1;
    };
    ScriptedItem(Script script, std::chrono::milliseconds timeLimit = kDefaultTimeLimit)
        : PrepareToQuitWorkItem("Waiting for tasks.", timeLimit), script(script) {}

    int PrepareToQuit() override {
        ++prepareCalls;
        if (script.prevent) {
            DoPreventAppToTerminate();
        }
        if (script.markDone) {
            MarkDone();
        }
        return script.answer;
    }

    int prepareCalls = 0;

private:
    Script script;
};

// Finishes on its third DoWork.
class CountingItem : public PrepareToQuitWorkItem {
public:
    CountingItem() : PrepareToQuitWorkItem("Counting.") {}
    int PrepareToQuit() override { return 1; }
    void DoWork() override {
        if (++workCalls == 3) {
            MarkDone();
        }
    }
    int workCalls = 0;
};

class PrepareToQuitService : public testsupport::MainThreadFixture {
protected:
    void SetUp() override {
        MainThreadFixture::SetUp();
        ResetForTesting();
    }
    void TearDown() override {
        ResetForTesting();
        MainThreadFixture::TearDown();
    }

    // Registers a factory that makes ScriptedItems and keeps each one it made.
    void RegisterScripted(
        ScriptedItem::Script script,
        std::chrono::milliseconds timeLimit = PrepareToQuitWorkItem::kDefaultTimeLimit) {
        RegisterPrepareToQuitWork([this, script, timeLimit] {
            made.push_back(std::make_shared<ScriptedItem>(script, timeLimit));
            return made.back();
        });
    }

    std::vector<std::shared_ptr<ScriptedItem>> made;
};

TEST_F(PrepareToQuitService, WithNothingRegisteredTheQuitProceeds) {
    EXPECT_TRUE(RunPrepareToQuit());
}

TEST_F(PrepareToQuitService, ResetDropsFactoriesSoNoneIsCalled) {
    RegisterScripted({.prevent = true});

    ResetForTesting();

    EXPECT_TRUE(RunPrepareToQuit());
    EXPECT_TRUE(made.empty());
}

TEST_F(PrepareToQuitService, AnItemThatDoesNotPreventLetsTheQuitProceed) {
    RegisterScripted({});

    EXPECT_TRUE(RunPrepareToQuit());

    ASSERT_EQ(made.size(), 1u);
    EXPECT_EQ(made[0]->prepareCalls, 1);
    EXPECT_EQ(made[0]->GetText(), "Waiting for tasks.");
}

TEST_F(PrepareToQuitService, AnItemThatPreventsStopsTheQuit) {
    RegisterScripted({});
    RegisterScripted({.prevent = true, .answer = 0});

    EXPECT_FALSE(RunPrepareToQuit());
}

TEST_F(PrepareToQuitService, AnswerZeroFromPrepareToQuitStopsTheQuit) {
    RegisterScripted({.answer = 0});

    EXPECT_FALSE(RunPrepareToQuit());
}

TEST_F(PrepareToQuitService, OnceStoppedLaterItemsAreNotAskedButAllAreMarkedDone) {
    RegisterScripted({.prevent = true, .answer = 0});
    RegisterScripted({.markDone = false});

    EXPECT_FALSE(RunPrepareToQuit());

    ASSERT_EQ(made.size(), 2u);
    EXPECT_EQ(made[1]->prepareCalls, 0);
    EXPECT_TRUE(made[0]->IsFinished());
    EXPECT_TRUE(made[1]->IsFinished());
}

TEST_F(PrepareToQuitService, EachAttemptCallsTheFactoryForAFreshItem) {
    RegisterScripted({.prevent = true, .answer = 0});

    EXPECT_FALSE(RunPrepareToQuit());
    EXPECT_FALSE(RunPrepareToQuit());

    ASSERT_EQ(made.size(), 2u);
    EXPECT_NE(made[0], made[1]);
    EXPECT_EQ(made[1]->prepareCalls, 1);
}

TEST_F(PrepareToQuitService, ItemsAreMarkedDoneWhenTheAttemptEnds) {
    RegisterScripted({.markDone = false}, 0ms);

    EXPECT_TRUE(RunPrepareToQuit());

    ASSERT_EQ(made.size(), 1u);
    EXPECT_TRUE(made[0]->IsFinished());
    EXPECT_EQ(made[0]->GetProgress(), 1.0);
}

TEST_F(PrepareToQuitService, DoWorkRunsUntilTheItemIsFinished) {
    auto item = std::make_shared<CountingItem>();
    RegisterPrepareToQuitWork([item] { return item; });

    EXPECT_TRUE(RunPrepareToQuit());

    EXPECT_EQ(item->workCalls, 3);
}

TEST_F(PrepareToQuitService, ATimedOutItemNoLongerHoldsUpTheQuit) {
    RegisterScripted({.markDone = false}, 0ms);

    EXPECT_TRUE(RunPrepareToQuit());

    EXPECT_TRUE(made[0]->HasTimedOut());
}

TEST_F(PrepareToQuitService, WaitsForWorkThatFinishesOnAnotherThread) {
    RegisterScripted({.markDone = false});
    std::thread finisher;
    RegisterPrepareToQuitWork([&] {
        // Ends the first item from elsewhere once the service has made it.
        finisher = std::thread([item = made.at(0)] { item->MarkDone(); });
        return std::shared_ptr<PrepareToQuitWorkItem>();
    });

    EXPECT_TRUE(RunPrepareToQuit());
    finisher.join();

    EXPECT_TRUE(made[0]->IsFinished());
    EXPECT_FALSE(made[0]->HasTimedOut());
}

TEST_F(PrepareToQuitService, PreventingFromAnotherThreadWhileWaitingStopsTheQuit) {
    RegisterScripted({.markDone = false});
    std::thread preventer;
    RegisterPrepareToQuitWork([&] {
        preventer = std::thread([item = made.at(0)] {
            item->DoPreventAppToTerminate();
            item->MarkDone();
        });
        return std::shared_ptr<PrepareToQuitWorkItem>();
    });

    EXPECT_FALSE(RunPrepareToQuit());
    preventer.join();
}

TEST_F(PrepareToQuitService, AFailingFactoryOrItemIsLoggedAndDoesNotHoldUpTheQuit) {
    kelcore::logging::CapturedLogForTesting log;
    RegisterPrepareToQuitWork([]() -> std::shared_ptr<PrepareToQuitWorkItem> {
        throw std::runtime_error("factory failed");
    });
    class ThrowingItem : public PrepareToQuitWorkItem {
    public:
        ThrowingItem() : PrepareToQuitWorkItem("Throwing.") {}
        int PrepareToQuit() override { throw std::runtime_error("item failed"); }
    };
    auto throwing = std::make_shared<ThrowingItem>();
    RegisterPrepareToQuitWork([throwing] { return throwing; });

    EXPECT_TRUE(RunPrepareToQuit());

    EXPECT_EQ(log.Entries().size(), 2u);
    EXPECT_TRUE(throwing->IsFinished());
}

TEST_F(PrepareToQuitService, AnAttemptMadeDuringAnAttemptAnswersFalse) {
    bool nestedAnswer = true;
    class NestingItem : public PrepareToQuitWorkItem {
    public:
        explicit NestingItem(bool& nestedAnswer)
            : PrepareToQuitWorkItem("Nesting."), nestedAnswer(nestedAnswer) {}
        int PrepareToQuit() override {
            nestedAnswer = RunPrepareToQuit();
            MarkDone();
            return 1;
        }

    private:
        bool& nestedAnswer;
    };
    int factoryCalls = 0;
    RegisterPrepareToQuitWork([&] {
        ++factoryCalls;
        return std::make_shared<NestingItem>(nestedAnswer);
    });

    EXPECT_TRUE(RunPrepareToQuit());

    EXPECT_FALSE(nestedAnswer);
    EXPECT_EQ(factoryCalls, 1);
}

}  // namespace
