#include "PresetDirectory.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include <boost/json.hpp>

#include <kelcore/string/String.h>

namespace vantroshare {

namespace json = boost::json;

std::filesystem::path PresetDirectory::NextTo(const std::filesystem::path& executable) {
    return (executable.parent_path() / ".." / "share" / "sarvex" / "presets").lexically_normal();
}

PresetDirectory PresetDirectory::Read(const std::filesystem::path& directory) {
    PresetDirectory result;
    std::error_code error;
    std::vector<std::filesystem::path> files;
    for (std::filesystem::directory_iterator it(directory, error), end; !error && it != end;
         it.increment(error)) {
        if (it->path().extension() == ".json") {
            files.push_back(it->path());
        }
    }
    if (error) {
        result.problems.push_back("cannot read the preset directory " + directory.string() + ": " +
                                  error.message());
        return result;
    }
    struct Entry {
        vantrokelui::model::EncoderPresetData data;
        std::string name;
        bool isDefault = false;
    };
    std::vector<Entry> entries;
    for (const std::filesystem::path& file : files) {
        std::ifstream in(file);
        std::stringstream text;
        text << in.rdbuf();
        boost::system::error_code parseError;
        const json::value document = json::parse(text.str(), parseError);
        const json::object* object = !parseError ? document.if_object() : nullptr;
        const json::value* name = object ? object->if_contains("name") : nullptr;
        const json::value* extension = object ? object->if_contains("extension") : nullptr;
        if (!name || !name->is_string() || !extension || !extension->is_string()) {
            result.problems.push_back("not a preset: " + file.string());
            continue;
        }
        const json::value* isDefault = object->if_contains("default");
        Entry entry;
        entry.name = std::string(name->get_string());
        entry.isDefault = isDefault && isDefault->is_bool() && isDefault->get_bool();
        entry.data = {kelcore::string::StdToUTF16String(entry.name),
                      kelcore::string::StdToUTF16String(std::filesystem::absolute(file).string()),
                      kelcore::string::StdToUTF16String(std::string(extension->get_string()))};
        entries.push_back(std::move(entry));
    }
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        if (a.isDefault != b.isDefault) {
            return a.isDefault;
        }
        return a.name < b.name;
    });
    for (Entry& entry : entries) {
        result.presets.push_back(std::move(entry.data));
    }
    return result;
}

std::optional<vantrokelui::model::EncoderPresetData> PresetDirectory::Find(
    const std::string& name) const {
    const kelcore::string::string wanted = kelcore::string::StdToUTF16String(name);
    for (const auto& preset : presets) {
        if (preset.presetName == wanted) {
            return preset;
        }
    }
    return std::nullopt;
}

std::vector<std::string> PresetDirectory::Names() const {
    std::vector<std::string> names;
    for (const auto& preset : presets) {
        names.push_back(kelcore::string::UTF16toStdString(preset.presetName));
    }
    return names;
}

}  // namespace vantroshare
