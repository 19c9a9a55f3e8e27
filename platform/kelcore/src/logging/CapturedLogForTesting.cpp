#include <kelcore/logging/CapturedLogForTesting.h>

#include <spdlog/sinks/ringbuffer_sink.h>

#include "logging/LoggerState.h"

namespace kelcore::logging {
namespace {

constexpr std::size_t kCapacity = 100000;

Severity FromSpdlog(spdlog::level::level_enum level) {
    switch (level) {
        case spdlog::level::trace:
        case spdlog::level::debug:
            return Severity::Trace;
        case spdlog::level::info:
            return Severity::Info;
        case spdlog::level::warn:
            return Severity::Warning;
        default:
            return Severity::Error;
    }
}

}  // namespace

struct CapturedLogForTesting::Sink {
    std::shared_ptr<spdlog::sinks::ringbuffer_sink_mt> ring =
        std::make_shared<spdlog::sinks::ringbuffer_sink_mt>(kCapacity);
};

CapturedLogForTesting::CapturedLogForTesting() : sink(std::make_shared<Sink>()) {
    detail::CaptureSinks()->add_sink(sink->ring);
}

CapturedLogForTesting::~CapturedLogForTesting() {
    detail::CaptureSinks()->remove_sink(sink->ring);
}

std::vector<CapturedLogForTesting::Entry> CapturedLogForTesting::Entries() const {
    std::vector<Entry> entries;
    for (const auto& message : sink->ring->last_raw()) {
        entries.push_back({FromSpdlog(message.level),
                           std::string(message.payload.data(), message.payload.size())});
    }
    return entries;
}

}  // namespace kelcore::logging
