// The share's progress as the user sees it on stdout: on a terminal one line redrawn in place
// (stage, a bar, percent, upload speed, time left), elsewhere a plain line for each new stage and
// for every tenth of a stage's progress, so logs stay short. Main thread only.
//
//   ProgressDisplay progress(std::cout, isatty(STDOUT_FILENO));
//   progress.Show(ProgressDisplay::Stage::Encoding, 0.4, 0.0, 12.0);
//   progress.Finish();
#pragma once

#include <optional>
#include <ostream>
#include <string>

namespace vantroshare {

class ProgressDisplay {
public:
    enum class Stage { CreatingLink, Queued, Encoding, Uploading, Cancelling };

    ProgressDisplay(std::ostream& out, bool terminal) : out(out), terminal(terminal) {}

    /// Shows where the share stands. `fraction` 0 to 1; `speedMbps` and `remainingSeconds` are
    /// left out when not above zero.
    void Show(Stage stage, double fraction, double speedMbps, double remainingSeconds);
    /// Ends the redrawn line, so what follows starts on a line of its own. Idempotent.
    void Finish();

    static std::string StageName(Stage stage);
    /// "1:05", "12:00:03".
    static std::string FormatDuration(double seconds);
    /// The text of one progress line, without the terminal's controls.
    static std::string FormatLine(Stage stage, double fraction, double speedMbps,
                                  double remainingSeconds, bool withBar);

private:
    std::ostream& out;
    const bool terminal;
    bool lineOpen = false;
    std::string lastLine;
    std::optional<Stage> lastStage;
    int lastTenth = -1;
};

}  // namespace vantroshare
