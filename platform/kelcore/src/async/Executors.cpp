#include <kelcore/async/Executors.h>

#include <kelcore/threads/Executors.h>

namespace kelcore::async {

std::shared_ptr<threads::AsyncExecutor> GetDefaultExecutor() {
    return threads::GetDefaultExecutor();
}

}  // namespace kelcore::async
