// One piece of work that must happen, or one question that must be asked, before the
// application quits. A factory registered with RegisterPrepareToQuitWork makes a fresh item
// for each quit attempt, and the service owns it for that attempt. The service calls it on the
// main thread; MarkDone and DoPreventAppToTerminate may be called from any thread (work that
// finishes elsewhere ends the item's wait).
//
//   class CheckJobsWorkItem : public PrepareToQuitWorkItem {
//       int PrepareToQuit() override { if (AskUserToWait()) DoPreventAppToTerminate(); MarkDone();
//       return 1; }
//   };
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>

namespace kelcore::appstatemanager {

class PrepareToQuitWorkItem {
public:
    /// How long an item waits, from its construction, before HasTimedOut answers true.
    static constexpr std::chrono::milliseconds kDefaultTimeLimit{std::chrono::seconds(30)};

    /// `text` (UTF-8) is shown while the item waits.
    explicit PrepareToQuitWorkItem(std::string text,
                                   std::chrono::milliseconds timeLimit = kDefaultTimeLimit);
    virtual ~PrepareToQuitWorkItem();

    PrepareToQuitWorkItem(const PrepareToQuitWorkItem&) = delete;
    PrepareToQuitWorkItem& operator=(const PrepareToQuitWorkItem&) = delete;

    /// The UTF-8 text given to the constructor. Any thread.
    virtual std::string GetText() const;
    /// The item's one step at quit time, called once per attempt before any DoWork. Answers 0
    /// when the quit must not go on (as DoPreventAppToTerminate does), anything else to let it.
    virtual int PrepareToQuit() = 0;
    /// Called repeatedly until IsFinished or HasTimedOut. By default waits, for a short slice
    /// of time at most, for MarkDone; returns at once when the item is already done.
    virtual void DoWork();
    /// From 0 to 1; by default 1 once done and 0 before. Any thread.
    virtual double GetProgress() const;
    /// By default true once MarkDone has been called. Any thread.
    virtual bool IsFinished() const;
    /// By default true once the time limit has passed since construction. Any thread.
    virtual bool HasTimedOut() const;
    /// By default true once DoPreventAppToTerminate has been called. Any thread.
    virtual bool WantsToPreventAppTermination() const;

    /// Calls off the quit. Any thread.
    void DoPreventAppToTerminate();
    /// Ends the item: it is finished and its wait returns. Further calls do nothing. Any
    /// thread.
    void MarkDone();

private:
    const std::string text;
    const std::chrono::steady_clock::time_point deadline;
    std::atomic<bool> preventsTermination{false};
    std::atomic<bool> done{false};
    mutable std::mutex mutex;
    std::condition_variable doneChanged;
};

}  // namespace kelcore::appstatemanager
