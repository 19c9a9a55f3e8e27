// The sink that CapturedLogForTesting attaches to; it outlives every reset of the logger.
#pragma once

#include <memory>

#include <spdlog/sinks/dist_sink.h>

namespace kelcore::logging::detail {

std::shared_ptr<spdlog::sinks::dist_sink_mt> CaptureSinks();

}  // namespace kelcore::logging::detail
