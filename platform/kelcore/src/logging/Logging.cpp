#include <kelcore/logging/Logging.h>

#include <cstdio>
#include <mutex>
#include <string>
#include <system_error>

#include <spdlog/logger.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <kelcore/config/kel_exception.h>

#include "detail/Environment.h"
#include "logging/LoggerState.h"

namespace kelcore::logging {
namespace {

struct LoggerState {
    std::mutex mutex;
    std::shared_ptr<spdlog::logger> logger;
};

LoggerState& State() {
    // Leaked on purpose: static destructors elsewhere may still log at exit.
    static auto* state = new LoggerState;
    return *state;
}

spdlog::level::level_enum ToSpdlog(Severity severity) {
    switch (severity) {
        case Severity::Trace:
            return spdlog::level::trace;
        case Severity::Info:
            return spdlog::level::info;
        case Severity::Warning:
            return spdlog::level::warn;
        case Severity::Error:
            break;
    }
    return spdlog::level::err;
}

std::shared_ptr<spdlog::logger> GetLogger() {
    auto& state = State();
    std::string fileProblem;
    std::shared_ptr<spdlog::logger> logger;
    {
        std::lock_guard lock(state.mutex);
        if (state.logger) {
            return state.logger;
        }
        std::vector<spdlog::sink_ptr> sinks{std::make_shared<spdlog::sinks::stderr_sink_mt>(),
                                            detail::CaptureSinks()};
        const auto path = LogFilePath();
        try {
            if (const auto error = kelcore::detail::CreatePrivateDirectories(path.parent_path())) {
                throw std::system_error(error);
            }
            sinks.push_back(std::make_shared<spdlog::sinks::basic_file_sink_mt>(path.string()));
        } catch (const std::exception& e) {
            fileProblem = "Cannot open the log file " + path.string() + " (" + e.what() +
                          "); logging to stderr only";
        }
        // Not registered with spdlog's registry, so a host's own loggers never clash with ours.
        logger = std::make_shared<spdlog::logger>("vantrokelui", sinks.begin(), sinks.end());
        logger->set_level(spdlog::level::trace);
        logger->flush_on(spdlog::level::trace);
        logger->set_pattern("%Y-%m-%d %H:%M:%S.%e [%l] [%t] %v");
        state.logger = logger;
    }
    if (!fileProblem.empty()) {
        logger->log(spdlog::level::warn, spdlog::string_view_t(fileProblem));
    }
    return logger;
}

std::string DescribeException(std::string_view where, const std::exception& e) {
    std::string line(where);
    line += ": ";
    line += e.what();
    if (const auto* kel = dynamic_cast<const config::kel_exception*>(&e)) {
        char code[32];
        std::snprintf(code, sizeof code, " (code 0x%08X)", static_cast<unsigned>(kel->GetCode()));
        line += code;
    }
    return line;
}

}  // namespace

namespace detail {

std::shared_ptr<spdlog::sinks::dist_sink_mt> CaptureSinks() {
    static auto* sinks = new std::shared_ptr<spdlog::sinks::dist_sink_mt>(
        std::make_shared<spdlog::sinks::dist_sink_mt>());
    return *sinks;
}

}  // namespace detail

void Log(Severity severity, std::string_view text) {
    // The string_view overload writes the text as it stands; the others would format it.
    GetLogger()->log(ToSpdlog(severity), spdlog::string_view_t(text.data(), text.size()));
}

void LogException(std::string_view where, const std::exception& e) {
    LogError(DescribeException(where, e));
}

void LogException(std::string_view where, const std::exception_ptr& error) {
    if (!error) {
        return;
    }
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& e) {
        LogException(where, e);
    } catch (...) {
        LogError(std::string(where) + ": unknown exception");
    }
}

std::filesystem::path LogFilePath() {
    return kelcore::detail::XdgBaseDirectory("XDG_STATE_HOME", ".local/state") / "vantrokelui" /
           "vantrokelui.log";
}

void ResetLoggingForTesting() {
    auto& state = State();
    std::shared_ptr<spdlog::logger> old;
    {
        std::lock_guard lock(state.mutex);
        old.swap(state.logger);
    }
    if (old) {
        old->flush();
    }
}

}  // namespace kelcore::logging
