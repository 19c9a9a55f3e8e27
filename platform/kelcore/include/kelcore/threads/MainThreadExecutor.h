// An executor whose tasks run on the main thread, through the main thread's dispatcher
// (AsyncCallFromMainThread). A delayed task waits on the default executor's clock, then joins
// the main thread's queue, so virtual time drives it in tests. For libraries that promise to
// complete their futures where a user interface may be touched. Any thread.
//
//   kelcore::async::Promise<int> promise(kelcore::threads::GetMainThreadExecutor());
#pragma once

#include <memory>

#include <kelcore/threads/AsyncExecutor.h>

namespace kelcore::threads {

/// The process's one main-thread executor. Any thread.
std::shared_ptr<AsyncExecutor> GetMainThreadExecutor();

}  // namespace kelcore::threads
