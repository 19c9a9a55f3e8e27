#include <sstream>

#include <gtest/gtest.h>

#include "ProgressDisplay.h"

namespace {

using vantroshare::ProgressDisplay;
using Stage = ProgressDisplay::Stage;

TEST(ProgressDisplay, OnATerminalRedrawsOneLineInPlaceAndOnlyWhenItChanges) {
    std::ostringstream out;
    ProgressDisplay progress(out, true);
    progress.Show(Stage::Encoding, 0.5, 0.0, 75.0);
    progress.Show(Stage::Encoding, 0.5, 0.0, 75.0);
    progress.Show(Stage::Uploading, 0.25, 12.34, 3725.0);
    progress.Finish();
    EXPECT_EQ(out.str(),
              "\r\033[Kencoding      [############............]  50%  1:15 left"
              "\r\033[Kuploading     [######..................]  25%  12.3 Mbit/s  1:02:05 left"
              "\n");
}

TEST(ProgressDisplay, ElsewherePrintsALinePerStageAndPerTenth) {
    std::ostringstream out;
    ProgressDisplay progress(out, false);
    progress.Show(Stage::CreatingLink, 0.0, 0.0, 0.0);
    progress.Show(Stage::Queued, 0.0, 0.0, 0.0);
    progress.Show(Stage::Encoding, 0.0, 0.0, 0.0);
    progress.Show(Stage::Encoding, 0.05, 0.0, 0.0);
    progress.Show(Stage::Encoding, 0.12, 0.0, 9.0);
    progress.Show(Stage::Uploading, 1.0, 8.0, 0.0);
    progress.Finish();
    EXPECT_EQ(out.str(),
              "creating link\n"
              "queued       \n"
              "encoding        0%\n"
              "encoding       12%  0:09 left\n"
              "uploading     100%  8.0 Mbit/s\n");
}

}  // namespace
