// The eleven panel properties the share manager writes to, in one object as the panel's view
// model holds them, with every setter call logged in call order as "Name=value" before the value
// is stored. Unlike observers, the log also shows writes of an unchanged value and the order of
// writes across properties exactly. Owned by one test by std::shared_ptr; setters and reads are
// safe on any thread.
#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <kelcore/string/String.h>
#include <vantrokelui/model/EncoderPresetModel.h>
#include <vantrokelui/model/ShareManager.h>

#include "vantrokelui/support/PanelProperties.h"

namespace vantrokelui::model::testing {

class RecordingPanel final : public PanelProperties {
public:
    using string = kelcore::string::string;

    static std::shared_ptr<RecordingPanel> Create() { return std::make_shared<RecordingPanel>(); }

    /// Every setter call so far, oldest first.
    std::vector<std::string> Writes() const {
        const std::lock_guard lock(mutex);
        return writes;
    }
    /// The calls of one setter, by its name ("CurrentViewID"), as their values.
    std::vector<std::string> WritesOf(const std::string& name) const {
        const std::lock_guard lock(mutex);
        std::vector<std::string> found;
        for (const std::string& write : writes) {
            if (write.rfind(name + "=", 0) == 0) {
                found.push_back(write.substr(name.size() + 1));
            }
        }
        return found;
    }
    void ClearWrites() {
        const std::lock_guard lock(mutex);
        writes.clear();
    }
    /// Waits until `write` ("CurrentViewID=10") has been made `count` times since the last
    /// ClearWrites, whichever thread makes it; whether it was. The limit is a wall-clock bound
    /// for a failing test only.
    bool WaitForWrite(const std::string& write, std::size_t count = 1,
                      std::chrono::seconds limit = std::chrono::seconds(120)) {
        std::unique_lock lock(mutex);
        return written.wait_for(lock, limit, [&] {
            return static_cast<std::size_t>(std::count(writes.begin(), writes.end(), write)) >=
                   count;
        });
    }

    void SetActiveAssetName(const string& value) override {
        Log("ActiveAssetName", kelcore::string::UTF16toStdString(value));
        ActiveAssetNameNotifyingProperty::SetActiveAssetName(value);
    }
    void SetReviewLinkURL(const string& value) override {
        Log("ReviewLinkURL", kelcore::string::UTF16toStdString(value));
        ReviewLinkURLNotifyingProperty::SetReviewLinkURL(value);
    }
    void SetCurrentViewID(ShareForReviewViewID value) override {
        Log("CurrentViewID", std::to_string(static_cast<int>(value)));
        CurrentViewIDNotifyingProperty::SetCurrentViewID(value);
    }
    void SetEncodingStatus(EncodingStatus value) override {
        Log("EncodingStatus", std::to_string(static_cast<int>(value)));
        EncodingStatusNotifyingProperty::SetEncodingStatus(value);
    }
    void SetEncodingProgress(double value) override {
        Log("EncodingProgress", Number(value));
        EncodingProgressNotifyingProperty::SetEncodingProgress(value);
    }
    void SetProcessingRemainingTime(double value) override {
        Log("ProcessingRemainingTime", Number(value));
        ProcessingRemainingTimeNotifyingProperty::SetProcessingRemainingTime(value);
    }
    void SetUploadingSpeed(double value) override {
        Log("UploadingSpeed", Number(value));
        UploadingSpeedNotifyingProperty::SetUploadingSpeed(value);
    }
    void SetActiveAssetDirty(bool value) override {
        Log("ActiveAssetDirty", value ? "true" : "false");
        ActiveAssetDirtyNotifyingProperty::SetActiveAssetDirty(value);
    }
    void SetCreateNewLinkMode(bool value) override {
        Log("CreateNewLinkMode", value ? "true" : "false");
        CreateNewLinkModeNotifyingProperty::SetCreateNewLinkMode(value);
    }

    /// Shortest text that reads back as the same double ("0", "2.5", "12.125").
    static std::string Number(double value) {
        std::string text = std::to_string(value);
        if (text.find('.') != std::string::npos) {
            text.erase(text.find_last_not_of('0') + 1);
            if (text.back() == '.') {
                text.pop_back();
            }
        }
        return text;
    }

private:
    void Log(const std::string& name, const std::string& value) {
        const std::lock_guard lock(mutex);
        writes.push_back(name + "=" + value);
        written.notify_all();
    }

    mutable std::mutex mutex;
    std::condition_variable written;
    std::vector<std::string> writes;
};

}  // namespace vantrokelui::model::testing
