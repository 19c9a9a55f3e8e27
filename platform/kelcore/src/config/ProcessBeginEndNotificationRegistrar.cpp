#include <kelcore/config/ProcessBeginEndNotificationRegistrar.h>

#include <algorithm>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <vector>

#include <kelcore/logging/Logging.h>

namespace kelcore::config {
namespace {

struct Registration {
    std::uint64_t id;
    ProcessBeginFunction begin;
    ProcessEndFunction end;
};

struct Registry {
    std::mutex mutex;
    std::uint64_t nextID = 1;
    std::vector<Registration> registrations;
    std::optional<ProcessParameters> parameters;  // set from process begin on
    bool ended = false;
};

Registry& TheRegistry() {
    // Leaked on purpose, and built at first use: registrars are static objects of other
    // libraries, constructed and destroyed in an order that nothing here controls.
    static auto* registry = new Registry;
    return *registry;
}

void CallBegin(const ProcessBeginFunction& begin, const ProcessParameters& parameters) {
    try {
        begin(parameters);
    } catch (...) {
        logging::LogException("kelcore::config::NotifyProcessBegin", std::current_exception());
    }
}

}  // namespace

ProcessBeginEndNotificationRegistrar::ProcessBeginEndNotificationRegistrar(
    ProcessBeginFunction begin, ProcessEndFunction end) {
    auto& registry = TheRegistry();
    std::optional<ProcessParameters> callNow;
    {
        std::lock_guard lock(registry.mutex);
        id = registry.nextID++;
        registry.registrations.push_back({id, begin, std::move(end)});
        if (registry.parameters && !registry.ended) {
            callNow = registry.parameters;
        }
    }
    if (callNow && begin) {
        CallBegin(begin, *callNow);
    }
}

ProcessBeginEndNotificationRegistrar::~ProcessBeginEndNotificationRegistrar() {
    auto& registry = TheRegistry();
    std::lock_guard lock(registry.mutex);
    std::erase_if(registry.registrations,
                  [this](const Registration& registration) { return registration.id == id; });
}

void NotifyProcessBegin(const ProcessParameters& parameters) {
    auto& registry = TheRegistry();
    std::vector<ProcessBeginFunction> toCall;
    {
        std::lock_guard lock(registry.mutex);
        if (registry.parameters) {
            return;
        }
        // Registrars made from here on see the parameters and call themselves, so each begin
        // function runs exactly once whichever side of this point it was registered.
        registry.parameters = parameters;
        for (const auto& registration : registry.registrations) {
            if (registration.begin) {
                toCall.push_back(registration.begin);
            }
        }
    }
    for (const auto& begin : toCall) {
        CallBegin(begin, parameters);
    }
}

void NotifyProcessEnd() {
    auto& registry = TheRegistry();
    std::vector<ProcessEndFunction> toCall;
    {
        std::lock_guard lock(registry.mutex);
        if (!registry.parameters || registry.ended) {
            return;
        }
        registry.ended = true;
        for (const auto& registration : registry.registrations) {
            if (registration.end) {
                toCall.push_back(registration.end);
            }
        }
    }
    for (const auto& end : toCall) {
        try {
            end();
        } catch (...) {
            logging::LogException("kelcore::config::NotifyProcessEnd", std::current_exception());
        }
    }
}

ProcessParameters MakeProcessParameters(
    std::initializer_list<std::pair<std::string, detail::Parameter::Value>> pairs) {
    if (pairs.size() > kProcessParameterCount) {
        throw std::length_error("MakeProcessParameters: more than 18 parameters");
    }
    ProcessParameters parameters;
    std::transform(pairs.begin(), pairs.end(), parameters.begin(), [](const auto& pair) {
        return detail::Parameter{pair.first, pair.second};
    });
    return parameters;
}

void ResetProcessNotificationsForTesting() {
    auto& registry = TheRegistry();
    std::lock_guard lock(registry.mutex);
    registry.parameters.reset();
    registry.ended = false;
}

}  // namespace kelcore::config
