#include "ProjectFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <utility>

#include <openssl/evp.h>
#include <boost/json.hpp>

#include <kelcore/string/String.h>
#include <sarvex/protocol/Wire.h>

namespace vantroshare {

namespace json = boost::json;

namespace {

constexpr const char* kSettings = "settings";
constexpr const char* kSharedFingerprint = "sharedFingerprint";

std::string GuidText(const kelcore::utility::Guid& id) {
    return kelcore::string::UTF16toStdString(id.AsString());
}

kelcore::utility::Guid ParseGuid(const json::value& value) {
    if (!value.is_string()) {
        return {};
    }
    return kelcore::utility::Guid(std::string_view(value.get_string()));
}

[[noreturn]] void Fault(const std::filesystem::path& path, const std::string& what) {
    throw ProjectFileError("project file " + path.string() + ": " + what);
}

// Checks everything the host relies on, so that later reads cannot fail.
void Validate(const std::filesystem::path& path, const json::value& document) {
    if (!document.is_object()) {
        Fault(path, "the document is not a JSON object");
    }
    const json::object& root = document.get_object();
    const json::value* project = root.if_contains("project");
    if (!project || !project->is_object()) {
        Fault(path, "\"project\" is missing or not an object");
    }
    const json::value* projectID = project->get_object().if_contains("id");
    if (!projectID || ParseGuid(*projectID).IsNil()) {
        Fault(path, "\"project.id\" is missing or not a valid id");
    }
    const json::value* projectName = project->get_object().if_contains("name");
    if (!projectName || !projectName->is_string()) {
        Fault(path, "\"project.name\" is missing or not a string");
    }
    const json::value* sequences = root.if_contains("sequences");
    if (!sequences || !sequences->is_array()) {
        Fault(path, "\"sequences\" is missing or not an array");
    }
    std::size_t index = 0;
    for (const json::value& item : sequences->get_array()) {
        const std::string where = "sequence " + std::to_string(index++);
        if (!item.is_object()) {
            Fault(path, where + " is not an object");
        }
        const json::object& sequence = item.get_object();
        const json::value* id = sequence.if_contains("id");
        if (!id || ParseGuid(*id).IsNil()) {
            Fault(path, where + ": \"id\" is missing or not a valid id");
        }
        const json::value* name = sequence.if_contains("name");
        if (!name || !name->is_string() || name->get_string().empty()) {
            Fault(path, where + ": \"name\" is missing, empty or not a string");
        }
        try {
            (void)sarvex::protocol::DecodeSequence(json::serialize(sequence));
        } catch (const std::invalid_argument& error) {
            Fault(path, where + " (\"" + std::string(name->get_string()) + "\"): " + error.what());
        }
        // A settings entry of the wrong kind is tolerated; a settings member that is not an
        // object would leave nowhere to store anything.
        if (const json::value* settings = sequence.if_contains(kSettings);
            settings && !settings->is_object()) {
            Fault(path, where + ": \"settings\" is not an object");
        }
    }
}

std::string ErrnoText(const std::string& what, const std::filesystem::path& file) {
    return what + " " + file.string() + ": " + std::strerror(errno);
}

// The whole of `text` to `fd`; false with errno set when a write fails.
bool WriteAll(int fd, const std::string& text) {
    const char* data = text.data();
    std::size_t left = text.size();
    while (left > 0) {
        const ssize_t written = ::write(fd, data, left);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        data += written;
        left -= static_cast<std::size_t>(written);
    }
    return true;
}

}  // namespace

ProjectFile::ProjectFile(std::filesystem::path path, json::value document)
    : path(std::move(path)), document(std::move(document)) {}

std::shared_ptr<ProjectFile> ProjectFile::Load(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        Fault(path, std::string("cannot be opened: ") + std::strerror(errno));
    }
    std::stringstream text;
    text << in.rdbuf();
    if (in.bad()) {
        Fault(path, "cannot be read");
    }
    boost::system::error_code error;
    json::value document = json::parse(text.str(), error);
    if (error) {
        Fault(path, "not valid JSON: " + error.message());
    }
    Validate(path, document);
    return std::shared_ptr<ProjectFile>(new ProjectFile(path, std::move(document)));
}

std::shared_ptr<ProjectFile> ProjectFile::Create(const std::filesystem::path& path,
                                                 const std::string& projectName) {
    json::object project{{"id", GuidText(Guid::CreateUnique())}, {"name", projectName}};
    json::value document =
        json::object{{"project", std::move(project)}, {"sequences", json::array{}}};
    std::shared_ptr<ProjectFile> file(new ProjectFile(path, std::move(document)));
    const std::lock_guard lock(file->mutex);
    if (!file->SaveLocked()) {
        Fault(path, file->lastSaveError);
    }
    return file;
}

ProjectFile::Guid ProjectFile::ProjectID() const {
    const std::lock_guard lock(mutex);
    return ParseGuid(document.at("project").at("id"));
}

std::string ProjectFile::ProjectName() const {
    const std::lock_guard lock(mutex);
    return std::string(document.at("project").at("name").get_string());
}

std::vector<ProjectFile::SequenceInfo> ProjectFile::Sequences() const {
    const std::lock_guard lock(mutex);
    std::vector<SequenceInfo> result;
    for (const json::value& item : document.at("sequences").get_array()) {
        result.push_back({ParseGuid(item.at("id")), std::string(item.at("name").get_string())});
    }
    return result;
}

std::optional<ProjectFile::Guid> ProjectFile::FindSequence(const std::string& name) const {
    for (const SequenceInfo& info : Sequences()) {
        if (info.name == name) {
            return info.id;
        }
    }
    return std::nullopt;
}

ProjectFile::Guid ProjectFile::AddSequence(const sarvex::protocol::SequenceDescription& form) {
    json::value parsed = json::parse(sarvex::protocol::EncodeSequence(form));
    json::object sequence;
    const Guid id = Guid::CreateUnique();
    sequence["id"] = GuidText(id);
    for (const auto& [key, value] : parsed.get_object()) {
        sequence[key] = value;
    }
    sequence[kSettings] = json::object{};
    const std::lock_guard lock(mutex);
    const json::value previous = document;
    document.at("sequences").get_array().push_back(std::move(sequence));
    if (!SaveLocked()) {
        document = previous;
        Fault(path, lastSaveError);
    }
    return id;
}

sarvex::protocol::SequenceDescription ProjectFile::EncoderSequence(const Guid& sequence) const {
    std::string text;
    {
        const std::lock_guard lock(mutex);
        const json::object* found = FindSequenceObject(sequence);
        if (!found) {
            Fault(path, "no sequence with the id " + GuidText(sequence));
        }
        text = json::serialize(*found);
    }
    sarvex::protocol::SequenceDescription form = sarvex::protocol::DecodeSequence(text);
    const std::filesystem::path base = path.parent_path().empty()
                                           ? std::filesystem::current_path()
                                           : std::filesystem::absolute(path.parent_path());
    for (auto& clip : form.clips) {
        const std::filesystem::path clipPath(clip.path);
        if (clipPath.is_relative()) {
            clip.path = (base / clipPath).lexically_normal().string();
        }
    }
    return form;
}

std::string ProjectFile::ContentFingerprint(const Guid& sequence) const {
    std::string text;
    {
        const std::lock_guard lock(mutex);
        const json::object* found = FindSequenceObject(sequence);
        if (!found) {
            return {};
        }
        text = sarvex::protocol::EncodeSequence(
            sarvex::protocol::DecodeSequence(json::serialize(*found)));
    }
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    EVP_Digest(text.data(), text.size(), digest, &length, EVP_sha256(), nullptr);
    static constexpr char kHex[] = "0123456789abcdef";
    std::string hex;
    for (unsigned int i = 0; i < length; ++i) {
        hex += kHex[digest[i] >> 4];
        hex += kHex[digest[i] & 15];
    }
    return hex;
}

std::optional<std::string> ProjectFile::GetValue(const Guid& sequence,
                                                 const std::string& key) const {
    const std::lock_guard lock(mutex);
    const json::object* found = FindSequenceObject(sequence);
    if (!found) {
        return std::nullopt;
    }
    const json::value* settings = found->if_contains(kSettings);
    if (!settings) {
        return std::nullopt;
    }
    const json::value* value = settings->get_object().if_contains(key);
    if (!value || !value->is_string()) {
        return std::nullopt;
    }
    return std::string(value->get_string());
}

std::map<std::string, std::string> ProjectFile::Values(const Guid& sequence) const {
    std::map<std::string, std::string> values;
    const std::lock_guard lock(mutex);
    const json::object* found = FindSequenceObject(sequence);
    if (!found) {
        return values;
    }
    if (const json::value* settings = found->if_contains(kSettings)) {
        for (const auto& [key, value] : settings->get_object()) {
            if (value.is_string()) {
                values.emplace(std::string(key), std::string(value.get_string()));
            }
        }
    }
    return values;
}

template <class Change>
bool ProjectFile::ChangeAndSave(const Guid& sequence, Change&& change) {
    const std::lock_guard lock(mutex);
    json::object* found = FindSequenceObject(sequence);
    if (!found) {
        return false;
    }
    const json::value previous = document;
    change(*found);
    if (SaveLocked()) {
        return true;
    }
    document = previous;
    return false;
}

bool ProjectFile::SetValue(const Guid& sequence, const std::string& key, const std::string& value) {
    return ChangeAndSave(sequence, [&](json::object& object) {
        json::value& settings = object[kSettings];
        if (!settings.is_object()) {
            settings = json::object{};
        }
        settings.get_object()[key] = value;
    });
}

bool ProjectFile::ClearValue(const Guid& sequence, const std::string& key) {
    return ChangeAndSave(sequence, [&](json::object& object) {
        if (json::value* settings = object.if_contains(kSettings)) {
            settings->get_object().erase(key);
        }
    });
}

std::string ProjectFile::SharedFingerprint(const Guid& sequence) const {
    const std::lock_guard lock(mutex);
    const json::object* found = FindSequenceObject(sequence);
    const json::value* value = found ? found->if_contains(kSharedFingerprint) : nullptr;
    return value && value->is_string() ? std::string(value->get_string()) : std::string();
}

bool ProjectFile::SetSharedFingerprint(const Guid& sequence, const std::string& fingerprint) {
    return ChangeAndSave(sequence,
                         [&](json::object& object) { object[kSharedFingerprint] = fingerprint; });
}

std::string ProjectFile::LastSaveError() const {
    const std::lock_guard lock(mutex);
    return lastSaveError;
}

json::object* ProjectFile::FindSequenceObject(const Guid& sequence) {
    for (json::value& item : document.at("sequences").get_array()) {
        if (ParseGuid(item.at("id")) == sequence) {
            return &item.get_object();
        }
    }
    return nullptr;
}

const json::object* ProjectFile::FindSequenceObject(const Guid& sequence) const {
    for (const json::value& item : document.at("sequences").get_array()) {
        if (ParseGuid(item.at("id")) == sequence) {
            return &item.get_object();
        }
    }
    return nullptr;
}

bool ProjectFile::SaveLocked() {
    const std::string text = json::serialize(document) + "\n";
    const std::filesystem::path directory =
        path.parent_path().empty() ? std::filesystem::path(".") : path.parent_path();
    std::string pattern = (directory / ("." + path.filename().string() + ".XXXXXX")).string();
    const int fd = ::mkstemp(pattern.data());
    if (fd < 0) {
        lastSaveError = ErrnoText("cannot create a temporary file in", directory);
        return false;
    }
    const std::filesystem::path temporary(pattern);
    // mkstemp makes 0600; a project file is an ordinary document.
    (void)::fchmod(fd, 0644);
    bool written = WriteAll(fd, text);
    if (!written) {
        lastSaveError = ErrnoText("cannot write", temporary);
    } else if (::fsync(fd) != 0) {
        written = false;
        lastSaveError = ErrnoText("cannot flush", temporary);
    }
    if (::close(fd) != 0 && written) {
        written = false;
        lastSaveError = ErrnoText("cannot close", temporary);
    }
    if (written && ::rename(temporary.c_str(), path.c_str()) != 0) {
        written = false;
        lastSaveError = ErrnoText("cannot replace", path);
    }
    if (!written) {
        ::unlink(temporary.c_str());
        return false;
    }
    // The rename itself is only durable once the directory is flushed too.
    const int directoryFd = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY);
    if (directoryFd >= 0) {
        (void)::fsync(directoryFd);
        ::close(directoryFd);
    }
    lastSaveError.clear();
    return true;
}

}  // namespace vantroshare
