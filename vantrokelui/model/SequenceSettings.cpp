#include <vantrokelui/model/SequenceSettings.h>

#include <any>
#include <string>

#include <kelcore/serialization/JSON.h>

namespace vantrokelui::model {

using kelcore::string::string;
using kelcore::string::string_view;
using kelcore::utility::Guid;

namespace {

constexpr string_view kTrueText = u"true";
constexpr string_view kFalseText = u"false";

}  // namespace

bool GetSequenceGuid(const GetSequenceValueFunction& getSequenceValue, const Guid& project,
                     const Guid& sequence, string_view key, Guid& value) {
    string text;
    if (!GetSequenceString(getSequenceValue, project, sequence, key, text)) {
        value = Guid();
        return false;
    }
    value = Guid(string_view(text));
    return true;
}

bool GetSequenceString(const GetSequenceValueFunction& getSequenceValue, const Guid& project,
                       const Guid& sequence, string_view key, string& value) {
    string text;
    if (!getSequenceValue(project, sequence, string(key), text)) {
        value.clear();
        return false;
    }
    value = std::move(text);
    return true;
}

bool GetSequenceBool(const GetSequenceValueFunction& getSequenceValue, const Guid& project,
                     const Guid& sequence, string_view key, bool& value) {
    string text;
    if (!GetSequenceString(getSequenceValue, project, sequence, key, text)) {
        value = false;
        return false;
    }
    value = text == kTrueText;
    return true;
}

bool SetSequenceGuid(const SetSequenceValueFunction& setSequenceValue, const Guid& project,
                     const Guid& sequence, string_view key, const Guid& value) {
    return setSequenceValue(project, sequence, string(key), value.AsString());
}

bool SetSequenceString(const SetSequenceValueFunction& setSequenceValue, const Guid& project,
                       const Guid& sequence, string_view key, string_view value) {
    return setSequenceValue(project, sequence, string(key), string(value));
}

bool SetSequenceBool(const SetSequenceValueFunction& setSequenceValue, const Guid& project,
                     const Guid& sequence, string_view key, bool value) {
    return SetSequenceString(setSequenceValue, project, sequence, key,
                             value ? kTrueText : kFalseText);
}

bool RemoveSequenceValue(const ClearSequenceValueFunction& clearSequenceValue, const Guid& project,
                         const Guid& sequence, string_view key) {
    return clearSequenceValue(project, sequence, string(key));
}

void ClearAllSequenceSettings(const ClearSequenceValueFunction& clearSequenceValue,
                              const Guid& project, const Guid& sequence) {
    for (const string_view key : kAllSequenceSettingKeys) {
        RemoveSequenceValue(clearSequenceValue, project, sequence, key);
    }
}

string FormatEncoderPresetJSON(const EncoderPresetAttributes& preset) {
    kelcore::serialization::JSONObject object;
    object.emplace("preset_name", kelcore::string::UTF16toStdString(preset.presetName));
    object.emplace("preset_path", kelcore::string::UTF16toStdString(preset.presetPath));
    object.emplace("file_extension", kelcore::string::UTF16toStdString(preset.fileExtension));
    return kelcore::string::StdToUTF16String(
        kelcore::serialization::GetJSONString(std::any(std::move(object))));
}

}  // namespace vantrokelui::model
