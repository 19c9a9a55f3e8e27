// A render preset read from its JSON file: the name users pick, the extension of the files it
// makes and the FFmpeg output arguments it adds. The one place presets are read and checked;
// the render job and `sarvex presets` both use it. A plain value, copied freely, any thread.
//
//   const auto preset = sarvex::Preset::Load("/usr/share/sarvex/presets/h264-mp4.json");
//   preset.CheckOutputPath("/tmp/out.mp4");  // throws PresetError on a .mov path
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace sarvex {

/// A preset that cannot be used; the message names the file and the fault.
class PresetError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class Preset {
public:
    /// Reads and checks the preset at `path`. Throws PresetError naming the file and the fault.
    static Preset Load(const std::filesystem::path& path);
    /// Every `*.json` preset of `directory`, the default first, then by name. Files that fail
    /// to load are left out and their messages added to `problems`.
    static std::vector<Preset> LoadDirectory(const std::filesystem::path& directory,
                                             std::vector<std::string>& problems);

    /// Throws PresetError when `output` does not carry this preset's extension (the container
    /// FFmpeg picks follows the extension, so a mismatch would make a different file).
    void CheckOutputPath(const std::filesystem::path& output) const;

    const std::string& Name() const { return name; }
    /// Without the dot, as in "mp4".
    const std::string& Extension() const { return extension; }
    const std::vector<std::string>& Arguments() const { return arguments; }
    bool IsDefault() const { return isDefault; }
    const std::filesystem::path& Path() const { return path; }

private:
    std::string name;
    std::string extension;
    std::vector<std::string> arguments;
    bool isDefault = false;
    std::filesystem::path path;
};

}  // namespace sarvex
