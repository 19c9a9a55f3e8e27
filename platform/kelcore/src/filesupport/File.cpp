#include <kelcore/filesupport/File.h>

#include <cerrno>

namespace kelcore::filesupport {
namespace fs = std::filesystem;

File::File(string::string_view fullPath) : path(string::UTF16toStdString(fullPath)) {}

File::File(string::string_view directory, string::string_view name)
    : path(fs::path(string::UTF16toStdString(directory)) / string::UTF16toStdString(name)) {}

bool File::Exists() const {
    std::error_code error;
    return fs::exists(fs::symlink_status(path, error));
}

void File::Delete() const {
    std::error_code error;
    const fs::file_status status = fs::symlink_status(path, error);
    if (status.type() == fs::file_type::not_found) {
        return;
    }
    if (error) {
        throw file_delete_exception(path.string(), error.value());
    }
    // remove() would take an empty directory too; a File is never a directory.
    if (fs::is_directory(status)) {
        throw file_delete_exception(path.string(), EISDIR);
    }
    if (!fs::remove(path, error) && error) {
        throw file_delete_exception(path.string(), error.value());
    }
}

string::string File::FullPath() const {
    return string::StdToUTF16String(path.native());
}

}  // namespace kelcore::filesupport
