#include "Preset.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <sstream>
#include <string_view>

#include <boost/json.hpp>

namespace sarvex {
namespace {

namespace json = boost::json;

// Options that would add inputs or outputs, change what the progress pipe carries or replace
// the graph the job builds: the render owns these, a preset only shapes the encoding.
constexpr std::array<std::string_view, 14> kReservedOptions{"-i",
                                                            "-y",
                                                            "-n",
                                                            "-progress",
                                                            "-nostats",
                                                            "-stats",
                                                            "-map",
                                                            "-filter_complex",
                                                            "-lavfi",
                                                            "-filter_complex_script",
                                                            "-nostdin",
                                                            "-stdin",
                                                            "-stats_period",
                                                            "-filter_script"};

[[noreturn]] void Fail(const std::filesystem::path& path, const std::string& fault) {
    throw PresetError("preset " + path.string() + ": " + fault);
}

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

}  // namespace

Preset Preset::Load(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        Fail(path, "cannot be read");
    std::ostringstream text;
    text << file.rdbuf();
    if (file.bad())
        Fail(path, "cannot be read");

    boost::system::error_code error;
    const json::value value = json::parse(text.str(), error);
    if (error)
        Fail(path, "is not JSON (" + error.message() + ")");
    if (!value.is_object())
        Fail(path, "is not a JSON object");
    const auto& object = value.get_object();

    const auto stringField = [&](std::string_view key) {
        const auto* found = object.if_contains(key);
        if (!found)
            Fail(path, "has no \"" + std::string(key) + "\"");
        if (!found->is_string())
            Fail(path, "\"" + std::string(key) + "\" is not a string");
        std::string field(found->get_string());
        if (field.empty())
            Fail(path, "\"" + std::string(key) + "\" is empty");
        return field;
    };

    Preset preset;
    preset.path = path;
    preset.name = stringField("name");
    preset.extension = stringField("extension");
    if (preset.extension.front() == '.')
        preset.extension.erase(0, 1);
    if (preset.extension.empty() || preset.extension.find('/') != std::string::npos)
        Fail(path, "\"extension\" is not a file extension");

    const auto* args = object.if_contains("args");
    if (!args)
        Fail(path, "has no \"args\"");
    if (!args->is_array())
        Fail(path, "\"args\" is not an array");
    for (const auto& item : args->get_array()) {
        if (!item.is_string())
            Fail(path, "\"args\" holds something other than strings");
        std::string argument(item.get_string());
        if (std::find(kReservedOptions.begin(), kReservedOptions.end(), argument) !=
            kReservedOptions.end()) {
            Fail(path, "\"args\" may not set " + argument +
                           " (inputs, outputs and progress belong to the render)");
        }
        preset.arguments.push_back(std::move(argument));
    }

    if (const auto* isDefault = object.if_contains("default")) {
        if (!isDefault->is_bool())
            Fail(path, "\"default\" is not true or false");
        preset.isDefault = isDefault->get_bool();
    }
    return preset;
}

std::vector<Preset> Preset::LoadDirectory(const std::filesystem::path& directory,
                                          std::vector<std::string>& problems) {
    std::vector<Preset> presets;
    std::error_code error;
    std::filesystem::directory_iterator entries(directory, error);
    if (error) {
        problems.push_back("preset directory " + directory.string() + ": " + error.message());
        return presets;
    }
    for (const auto& entry : entries) {
        if (entry.path().extension() != ".json")
            continue;
        try {
            presets.push_back(Load(entry.path()));
        } catch (const PresetError& failure) {
            problems.emplace_back(failure.what());
        }
    }
    std::sort(presets.begin(), presets.end(), [](const Preset& a, const Preset& b) {
        if (a.isDefault != b.isDefault)
            return a.isDefault;
        return a.name != b.name ? a.name < b.name : a.path < b.path;
    });
    return presets;
}

void Preset::CheckOutputPath(const std::filesystem::path& output) const {
    const auto actual = output.extension().string();
    if (actual.empty() || Lower(actual.substr(1)) != Lower(extension)) {
        Fail(path, "makes ." + extension + " files but the output is " + output.string());
    }
}

}  // namespace sarvex
