// The executor that futures' continuations fall back to when a future carries none. It is
// the process-wide default pool, under the name that code working with futures uses.
#pragma once

#include <memory>

#include <kelcore/threads/AsyncExecutor.h>

namespace kelcore::async {

/// Any thread. The same executor as threads::GetDefaultExecutor().
std::shared_ptr<threads::AsyncExecutor> GetDefaultExecutor();

}  // namespace kelcore::async
