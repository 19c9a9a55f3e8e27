// The command-line host's document: a JSON project file holding the project's id and name and its
// sequences, each with its clips (the encoder's sequence form) and the key/value settings the
// library stores with it. Every change is saved at once and atomically (a temporary file in the
// same directory, flushed to disk, renamed over the old one), so the file on disk is always whole.
//
// Owned by a shared_ptr held by the host's functions; any thread (one mutex guards the document
// and the file). An entry the library cannot use (a value that is not a string) is kept as it is
// and reported absent; it is never rewritten into something else.
//
//   auto file = ProjectFile::Load("cut.vproj");     // throws ProjectFileError
//   const auto sequence = file->FindSequence("Cut 1");
//   file->SetValue(*sequence, "key", "value");       // saved before it returns
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <boost/json/value.hpp>

#include <kelcore/utility/Guid.h>
#include <sarvex/protocol/SequenceDescription.h>

namespace vantroshare {

/// A project file that cannot be read or written; the text names the file and the fault.
class ProjectFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class ProjectFile {
public:
    using Guid = kelcore::utility::Guid;

    struct SequenceInfo {
        Guid id;
        std::string name;
    };

    /// Reads and checks the file. Throws ProjectFileError naming the file and what is wrong.
    static std::shared_ptr<ProjectFile> Load(const std::filesystem::path& path);

    /// A new file at `path` with one project and no sequences, saved now. Throws
    /// ProjectFileError when it cannot be written.
    static std::shared_ptr<ProjectFile> Create(const std::filesystem::path& path,
                                               const std::string& projectName);

    const std::filesystem::path& Path() const { return path; }
    Guid ProjectID() const;
    std::string ProjectName() const;
    /// In file order.
    std::vector<SequenceInfo> Sequences() const;
    /// The first sequence named exactly `name`.
    std::optional<Guid> FindSequence(const std::string& name) const;

    /// Adds a sequence (a new id) and saves. Throws ProjectFileError when the save fails.
    Guid AddSequence(const sarvex::protocol::SequenceDescription& form);
    /// The sequence as the encoder needs it: relative clip paths made absolute against the
    /// file's directory. Throws ProjectFileError for an unknown id.
    sarvex::protocol::SequenceDescription EncoderSequence(const Guid& sequence) const;
    /// A digest of the sequence's content (its form as stored); changes with every edit.
    std::string ContentFingerprint(const Guid& sequence) const;

    /// The setting's text; nothing when absent, when the sequence is unknown, or when the stored
    /// value is not a string.
    std::optional<std::string> GetValue(const Guid& sequence, const std::string& key) const;
    /// Every setting of the sequence whose value is a string.
    std::map<std::string, std::string> Values(const Guid& sequence) const;
    /// Stores and saves; false (and nothing changed, in memory or on disk) when the sequence is
    /// unknown or the save fails.
    bool SetValue(const Guid& sequence, const std::string& key, const std::string& value);
    /// Removes and saves; true when the key is absent afterwards and the file says so.
    bool ClearValue(const Guid& sequence, const std::string& key);

    /// The host's own record of what was last shared (ContentFingerprint then); empty when none.
    std::string SharedFingerprint(const Guid& sequence) const;
    bool SetSharedFingerprint(const Guid& sequence, const std::string& fingerprint);

    /// The last save's failure, empty after a good one.
    std::string LastSaveError() const;

private:
    ProjectFile(std::filesystem::path path, boost::json::value document);

    // Both under `mutex`.
    boost::json::object* FindSequenceObject(const Guid& sequence);
    const boost::json::object* FindSequenceObject(const Guid& sequence) const;
    // Writes `document` atomically; on failure leaves the old file and returns false.
    bool SaveLocked();
    // Applies `change` to the document and saves; puts the old document back when saving fails.
    template <class Change>
    bool ChangeAndSave(const Guid& sequence, Change&& change);

    const std::filesystem::path path;
    mutable std::mutex mutex;
    boost::json::value document;
    std::string lastSaveError;
};

}  // namespace vantroshare
