// What the library remembers about a sequence, stored in the sequence itself through the host's
// injected functions: the nine keys, and helpers that read and write typed values over those
// functions. The helpers hold no state; they run on the main thread and on the cloud library's
// thread, so the host's functions must be safe on any thread.
//
// Encodings: a Guid as Guid::AsString and read back by Guid's text constructor (malformed text
// reads as the nil Guid, and the key still counts as present); a boolean as "true"/"false"; the
// preset as one JSON object, see FormatEncoderPresetJSON.
//
//   kelcore::utility::Guid folder;
//   if (GetSequenceGuid(getSequenceValue, project, sequence, kUploadFolderGuidKey, folder)) ...
#pragma once

#include <array>

#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>
#include <vantrokelui/model/AssetFunctions.h>
#include <vantrokelui/model/EncoderPresetAttributes.h>

namespace vantrokelui::model {

/// The asset of the last upload (Guid text).
inline constexpr kelcore::string::string_view kUploadedAssetGuidKey =
    u"TSLY.VantroNative.ShareForReview.UploadedAssetGuid";
/// The chosen cloud folder (Guid text); without it a share does not start.
inline constexpr kelcore::string::string_view kUploadFolderGuidKey =
    u"TSLY.VantroNative.ShareForReview.UploadFolderGuid";
/// The folder's path as shown to the user.
inline constexpr kelcore::string::string_view kUploadFolderPathKey =
    u"TSLY.VantroNative.ShareForReview.UploadFolderPath";
/// The cloud project that holds the folder (Guid text).
inline constexpr kelcore::string::string_view kUploadFolderParentProjGuidKey =
    u"TSLY.VantroNative.ShareForReview.UploadFolderParentProjGuid";
/// The version stack of the shared content (Guid text).
inline constexpr kelcore::string::string_view kVersionStackGuidKey =
    u"TSLY.VantroNative.ShareForReview.VersionStackGuid";
/// The review link (Guid text).
inline constexpr kelcore::string::string_view kReviewLinkGuidKey =
    u"TSLY.VantroNative.ShareForReview.ReviewLinkGuid";
/// The review link's address.
inline constexpr kelcore::string::string_view kReviewLinkURLKey =
    u"TSLY.VantroNative.ShareForReview.ReviewLinkURL";
/// "true" when the sequence has changed since the last share.
inline constexpr kelcore::string::string_view kAssetModifiedAfterShareKey =
    u"TSLY.VantroNative.ShareForReview.AssetModifiedAfterShare";
/// The preset chosen for the sequence (JSON text).
inline constexpr kelcore::string::string_view kSelectedEncoderPresetKey =
    u"TSLY.VantroNative.ShareForReview.SelectedEncoderPreset";

/// All nine keys, in the order ClearAllSequenceSettings removes them.
inline constexpr std::array<kelcore::string::string_view, 9> kAllSequenceSettingKeys = {
    kUploadedAssetGuidKey,    kUploadFolderGuidKey,
    kUploadFolderPathKey,     kUploadFolderParentProjGuidKey,
    kVersionStackGuidKey,     kReviewLinkGuidKey,
    kReviewLinkURLKey,        kAssetModifiedAfterShareKey,
    kSelectedEncoderPresetKey};

/// True when the key exists, with `value` parsed from its text (nil when malformed); otherwise
/// false with `value` nil.
bool GetSequenceGuid(const GetSequenceValueFunction& getSequenceValue,
                     const kelcore::utility::Guid& project, const kelcore::utility::Guid& sequence,
                     kelcore::string::string_view key, kelcore::utility::Guid& value);

/// True when the key exists, with its text in `value`; otherwise false with `value` empty.
bool GetSequenceString(const GetSequenceValueFunction& getSequenceValue,
                       const kelcore::utility::Guid& project,
                       const kelcore::utility::Guid& sequence, kelcore::string::string_view key,
                       kelcore::string::string& value);

/// False with `value` false when the key is missing; otherwise true, with `value` true exactly
/// when the text is "true" (so "TRUE" reads as present and false).
bool GetSequenceBool(const GetSequenceValueFunction& getSequenceValue,
                     const kelcore::utility::Guid& project, const kelcore::utility::Guid& sequence,
                     kelcore::string::string_view key, bool& value);

/// Stores `value` as its text; answers what the host's function answered.
bool SetSequenceGuid(const SetSequenceValueFunction& setSequenceValue,
                     const kelcore::utility::Guid& project, const kelcore::utility::Guid& sequence,
                     kelcore::string::string_view key, const kelcore::utility::Guid& value);

/// Stores `value`; answers what the host's function answered.
bool SetSequenceString(const SetSequenceValueFunction& setSequenceValue,
                       const kelcore::utility::Guid& project,
                       const kelcore::utility::Guid& sequence, kelcore::string::string_view key,
                       kelcore::string::string_view value);

/// Stores "true" or "false"; answers what the host's function answered.
bool SetSequenceBool(const SetSequenceValueFunction& setSequenceValue,
                     const kelcore::utility::Guid& project, const kelcore::utility::Guid& sequence,
                     kelcore::string::string_view key, bool value);

/// Removes the key; answers what the host's function answered.
bool RemoveSequenceValue(const ClearSequenceValueFunction& clearSequenceValue,
                         const kelcore::utility::Guid& project,
                         const kelcore::utility::Guid& sequence, kelcore::string::string_view key);

/// Removes all nine keys, in the order of kAllSequenceSettingKeys. The host's answers are not
/// looked at.
void ClearAllSequenceSettings(const ClearSequenceValueFunction& clearSequenceValue,
                              const kelcore::utility::Guid& project,
                              const kelcore::utility::Guid& sequence);

/// The stored form of a preset: one compact JSON object with exactly the string members
/// "preset_name", "preset_path" and "file_extension", in that order. Any thread.
kelcore::string::string FormatEncoderPresetJSON(const EncoderPresetAttributes& preset);

}  // namespace vantrokelui::model
