// A stand-in for the host's document model in model tests: values stored per project, sequence
// and key in memory, an active sequence the test chooses, and a log of every call so a test can
// check order. Handed to the code under test as the four injected functions, which hold it by
// shared pointer. Safe on any thread.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>
#include <vantrokelui/model/AssetFunctions.h>
#include <vantrokelui/model/ProcessingGuids.h>

namespace vantrokelui::model::testing {

class FakeSequenceHost : public std::enable_shared_from_this<FakeSequenceHost> {
public:
    using Guid = kelcore::utility::Guid;
    using string = kelcore::string::string;

    static std::shared_ptr<FakeSequenceHost> Create() {
        return std::make_shared<FakeSequenceHost>();
    }

    void SetActive(const ProcessingGuids& guids) {
        const std::lock_guard lock(mutex);
        active = guids;
    }
    void Put(const ProcessingGuids& guids, kelcore::string::string_view key,
             kelcore::string::string_view value) {
        const std::lock_guard lock(mutex);
        values[{guids.projectGuid, guids.sequenceGuid, string(key)}] = string(value);
    }
    std::optional<string> Find(const ProcessingGuids& guids,
                               kelcore::string::string_view key) const {
        const std::lock_guard lock(mutex);
        const auto found = values.find({guids.projectGuid, guids.sequenceGuid, string(key)});
        return found == values.end() ? std::nullopt : std::optional<string>(found->second);
    }
    /// Every value stored with one sequence, by key.
    std::map<string, string> ValuesOf(const ProcessingGuids& guids) const {
        const std::lock_guard lock(mutex);
        std::map<string, string> found;
        for (const auto& [where, value] : values) {
            if (std::get<0>(where) == guids.projectGuid &&
                std::get<1>(where) == guids.sequenceGuid) {
                found.emplace(std::get<2>(where), value);
            }
        }
        return found;
    }
    std::size_t ValueCount() const {
        const std::lock_guard lock(mutex);
        return values.size();
    }
    /// Keys passed to clearSequenceValue, in call order.
    std::vector<string> ClearedKeys() const {
        const std::lock_guard lock(mutex);
        return clearedKeys;
    }
    int GetActiveCalls() const {
        const std::lock_guard lock(mutex);
        return getActiveCalls;
    }
    /// What setSequenceValue and clearSequenceValue answer.
    void SetWriteResult(bool result) {
        const std::lock_guard lock(mutex);
        writeResult = result;
    }

    GetActiveSequenceFunction GetActiveSequenceFn() {
        return [self = shared_from_this()](Guid& project, Guid& sequence) {
            const std::lock_guard lock(self->mutex);
            ++self->getActiveCalls;
            project = self->active.projectGuid;
            sequence = self->active.sequenceGuid;
            return true;
        };
    }
    GetSequenceValueFunction GetSequenceValueFn() {
        return [self = shared_from_this()](const Guid& project, const Guid& sequence,
                                           const string& key, string& value) {
            const std::lock_guard lock(self->mutex);
            const auto found = self->values.find({project, sequence, key});
            if (found == self->values.end()) {
                return false;
            }
            value = found->second;
            return true;
        };
    }
    SetSequenceValueFunction SetSequenceValueFn() {
        return [self = shared_from_this()](const Guid& project, const Guid& sequence,
                                           const string& key, const string& value) {
            const std::lock_guard lock(self->mutex);
            self->values[{project, sequence, key}] = value;
            return self->writeResult;
        };
    }
    ClearSequenceValueFunction ClearSequenceValueFn() {
        return [self = shared_from_this()](const Guid& project, const Guid& sequence,
                                           const string& key) {
            const std::lock_guard lock(self->mutex);
            self->clearedKeys.push_back(key);
            self->values.erase({project, sequence, key});
            return self->writeResult;
        };
    }

private:
    mutable std::mutex mutex;
    ProcessingGuids active;
    std::map<std::tuple<Guid, Guid, string>, string> values;
    std::vector<string> clearedKeys;
    int getActiveCalls = 0;
    bool writeResult = true;
};

/// UTF-8 test text to the platform's UTF-16 string.
inline kelcore::string::string U16(std::string_view utf8) {
    return kelcore::string::StdToUTF16String(utf8);
}

}  // namespace vantrokelui::model::testing
