// A test's connection to `sarvex serve`: sends requests as JSON lines and reads reports with a
// deadline, so a test awaits each report instead of sleeping. Owned by one test, its thread.
//
//   SarvexClient client(socketPath);
//   client.Send(SubmitRequest{...});
//   const auto reports = client.ReportsUntilFinal("job-1", In(60s));
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <sarvex/protocol/Wire.h>

#include "encoder/support/Subprocess.h"

namespace sarvextest {

class SarvexClient {
public:
    /// Connects; throws std::runtime_error when nothing listens on `socketPath`.
    explicit SarvexClient(const std::filesystem::path& socketPath);
    ~SarvexClient();
    SarvexClient(const SarvexClient&) = delete;
    SarvexClient& operator=(const SarvexClient&) = delete;

    void Send(const sarvex::protocol::ClientMessage& message);
    /// Sends `line` and a newline as they are.
    void SendRaw(const std::string& line);
    /// The next report, or nothing when the connection ends or the deadline passes.
    std::optional<sarvex::protocol::JobReport> NextReport(Deadline deadline);
    /// Reports of `jobID` up to and including its final one (others are kept for later
    /// calls). Ends early, without a final report, at the deadline or the connection's end.
    std::vector<sarvex::protocol::JobReport> ReportsUntilFinal(const std::string& jobID,
                                                               Deadline deadline);
    /// Reports of `jobID` up to the first that satisfies `stop` (included).
    template <typename Predicate>
    std::vector<sarvex::protocol::JobReport> ReportsUntil(const std::string& jobID, Predicate stop,
                                                          Deadline deadline);
    void Close();

private:
    std::optional<sarvex::protocol::JobReport> NextReportOf(const std::string& jobID,
                                                            Deadline deadline);

    int fd = -1;
    std::string pending;
    std::vector<sarvex::protocol::JobReport> heldBack;
};

template <typename Predicate>
std::vector<sarvex::protocol::JobReport> SarvexClient::ReportsUntil(const std::string& jobID,
                                                                    Predicate stop,
                                                                    Deadline deadline) {
    std::vector<sarvex::protocol::JobReport> reports;
    while (auto report = NextReportOf(jobID, deadline)) {
        reports.push_back(*report);
        if (stop(*report))
            break;
    }
    return reports;
}

}  // namespace sarvextest
