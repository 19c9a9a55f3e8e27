// `vantro-share share`: shares one sequence of a project file the way the panel would, without a
// screen. It makes the sequence active, signs in quietly, resolves and commits the folder, picks
// the preset, checks the account's storage, presses Share and follows the pipeline to the link,
// showing progress. Ctrl-C cancels the share through the library, as the panel's Cancel does.
//
// Made and run once by main on the main thread.
//
//   ShareCommand::Options options{...};
//   return ShareCommand(loop, options).Run();
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "MainLoop.h"

namespace vantroshare {

class ShareCommand {
public:
    struct Options {
        std::filesystem::path projectFile;
        std::string sequence;
        std::string folder;  ///< ACCOUNT/WORKSPACE/PROJECT/FOLDER[/...]; FOLDER may be the root
        std::string preset;  ///< empty: the stored one, else the default
        bool newLink = false;
        std::string sarvexSocket;             ///< connect here when set
        std::filesystem::path sarvexProgram;  ///< else start this one
        std::filesystem::path presetDirectory;
    };

    ShareCommand(MainLoop& loop, Options options);
    /// The process's exit code: 0 with the link printed, 1 for a failure (its message printed),
    /// 130 after a cancel.
    int Run();

private:
    MainLoop& loop;
    const Options options;
};

}  // namespace vantroshare
