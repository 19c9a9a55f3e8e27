// The encoder presets a host offers: the preset files of sarvex's preset directory (each a JSON
// object with "name", "extension", "args" and an optional "default": true), read once into the
// form the library takes. The default preset comes first, the others follow by name. A plain
// value; any thread.
//
//   const auto presets = PresetDirectory::Read(PresetDirectory::NextTo(executable));
//   model::SetEncoderPresets(presets.Presets());
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <vantrokelui/model/EncoderPresetData.h>

namespace vantroshare {

class PresetDirectory {
public:
    /// `<directory of executable>/../share/sarvex/presets`.
    static std::filesystem::path NextTo(const std::filesystem::path& executable);
    /// Reads every `*.json` file of `directory`; files that are not presets are skipped and named
    /// in Problems(). A missing directory gives no presets and one problem.
    static PresetDirectory Read(const std::filesystem::path& directory);

    /// Default first, then by name.
    const std::vector<vantrokelui::model::EncoderPresetData>& Presets() const { return presets; }
    /// The preset named exactly `name`.
    std::optional<vantrokelui::model::EncoderPresetData> Find(const std::string& name) const;
    /// The names, in Presets() order, for messages.
    std::vector<std::string> Names() const;
    const std::vector<std::string>& Problems() const { return problems; }

private:
    std::vector<vantrokelui::model::EncoderPresetData> presets;
    std::vector<std::string> problems;
};

}  // namespace vantroshare
