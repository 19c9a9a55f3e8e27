// The prepare-to-quit service: when the user quits, the host asks it whether to go ahead.
// Libraries register factories of work items (PrepareToQuitWorkItem) once, typically the first
// time they have something to guard; each quit attempt makes fresh items, lets each prepare
// (perhaps asking the user), waits for them to finish, and answers whether the quit may go on.
// Registration is any thread; running is the host's, on the main thread.
//
//   RegisterPrepareToQuitWork([] { return std::make_shared<CheckJobsWorkItem>("Waiting..."); });
//   if (!kelcore::appstatemanager::RunPrepareToQuit()) return;   // in the host's quit handler
#pragma once

#include <functional>
#include <memory>

#include <kelcore/appstatemanager/PrepareToQuitWorkItem.h>

namespace kelcore::appstatemanager {

using PrepareToQuitWorkFactory = std::function<std::shared_ptr<PrepareToQuitWorkItem>()>;

/// Adds `factory`, called at the start of every later quit attempt. There is no
/// unregistration; an empty factory is ignored. Any thread.
void RegisterPrepareToQuitWork(PrepareToQuitWorkFactory factory);

/// Runs one quit attempt: calls every factory in registration order (a null item is skipped),
/// calls each item's PrepareToQuit, then DoWork until it IsFinished or HasTimedOut. Answers
/// false, and stops at once, when an item prevents termination (DoPreventAppToTerminate,
/// WantsToPreventAppTermination, or PrepareToQuit answering 0); true otherwise, including when
/// nothing is registered. A factory or item that throws is logged and does not hold up the
/// quit. Every item is marked done before this returns. A call made while an attempt is
/// already running (from an item's own event loop) answers false and does nothing else.
bool RunPrepareToQuit();

}  // namespace kelcore::appstatemanager
