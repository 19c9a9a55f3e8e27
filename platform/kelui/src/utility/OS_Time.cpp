#include <kelui/utility/OS_Time.h>

#include <chrono>

namespace kelui::utility {

OS_Time CurrentTime() {
    return OS_Time(kelcore::threads::Now());
}

double operator-(const OS_Time& later, const OS_Time& earlier) {
    return std::chrono::duration<double>(later.GetTimePoint() - earlier.GetTimePoint()).count();
}

}  // namespace kelui::utility
