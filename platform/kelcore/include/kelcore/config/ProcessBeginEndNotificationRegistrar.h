// Lets a library hear when the host process begins and ends. A library constructs one static
// registrar at load; the host calls NotifyProcessBegin once at start, handing every registered
// begin function the same 18 parameters, and NotifyProcessEnd once before exit. Functions are
// called in registration order, on the thread that notifies, with no lock held; a registrar
// made after process begin (and before its end) has its begin function called at once, from
// its constructor. A function that throws is logged and the others still run. Destroying a
// registrar (a library unloading) unregisters it. Any thread.
//
//   static ProcessBeginEndNotificationRegistrar sRegistrar(
//       [](const ProcessParameters& parameters) { ReadClientName(parameters); });
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>

#include <kelcore/config/Parameter.h>

namespace kelcore::config {

inline constexpr std::size_t kProcessParameterCount = 18;
using ProcessParameters = std::array<detail::Parameter, kProcessParameterCount>;
using ProcessBeginFunction = std::function<void(const ProcessParameters&)>;
using ProcessEndFunction = std::function<void()>;

class ProcessBeginEndNotificationRegistrar {
public:
    /// Registers `begin` and, when not empty, `end`. Calls `begin` at once when the process has
    /// already begun and not yet ended. Any thread.
    explicit ProcessBeginEndNotificationRegistrar(ProcessBeginFunction begin,
                                                  ProcessEndFunction end = {});
    /// Unregisters both functions. Any thread.
    ~ProcessBeginEndNotificationRegistrar();

    ProcessBeginEndNotificationRegistrar(const ProcessBeginEndNotificationRegistrar&) = delete;
    ProcessBeginEndNotificationRegistrar& operator=(const ProcessBeginEndNotificationRegistrar&) =
        delete;

private:
    std::uint64_t id;
};

/// Calls every begin function with `parameters`, which are kept for registrars made later.
/// Does nothing when the process has already begun. Any thread.
void NotifyProcessBegin(const ProcessParameters& parameters);

/// Calls every end function. Does nothing before process begin or after the first call.
/// Any thread.
void NotifyProcessEnd();

/// Builds the parameters from name/value pairs in order; the slots after them stay empty.
/// Throws std::length_error for more than kProcessParameterCount pairs. Any thread.
ProcessParameters MakeProcessParameters(
    std::initializer_list<std::pair<std::string, detail::Parameter::Value>> pairs);

/// Forgets that the process began or ended, keeping the registrations, so a test can notify
/// again. Any thread.
void ResetProcessNotificationsForTesting();

}  // namespace kelcore::config
