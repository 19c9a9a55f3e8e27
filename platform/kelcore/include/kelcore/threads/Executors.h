// The process-wide executors. Both are thread pools created on first use and shut down at
// exit (tasks still queued then are dropped). Default: CPU work, one worker per core (at least
// two). IO-bound: work that mostly waits, four workers per core (at least four, at most 16).
// Tests replace both at once with VirtualTime, or one at a time with the setters.
//
//   kelcore::threads::GetIOBoundExecutor()->Post([request] { request->Send(); });
#pragma once

#include <memory>

#include <kelcore/threads/AsyncExecutor.h>

namespace kelcore::threads {

/// Any thread. The pool for CPU work, or the executor installed in its place.
std::shared_ptr<AsyncExecutor> GetDefaultExecutor();
/// Any thread. The pool for work that waits on IO, or the executor installed in its place.
std::shared_ptr<AsyncExecutor> GetIOBoundExecutor();

/// Any thread. Makes GetDefaultExecutor answer `executor`; null restores the pool. Returns the
/// executor installed before (null when it was the pool).
std::shared_ptr<AsyncExecutor> SetDefaultExecutor(std::shared_ptr<AsyncExecutor> executor);
/// Any thread. Makes GetIOBoundExecutor answer `executor`; null restores the pool. Returns the
/// executor installed before (null when it was the pool).
std::shared_ptr<AsyncExecutor> SetIOBoundExecutor(std::shared_ptr<AsyncExecutor> executor);

}  // namespace kelcore::threads
