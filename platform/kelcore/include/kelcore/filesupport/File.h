// A file named by its path, to ask whether it is there and to delete it. A plain value that
// touches the disk only when asked; any thread. The path is kept as given: it is not made
// absolute and symbolic links are not resolved.
//
//   File output(commondirs::UserCacheDir(), u"Clip 2.mp4");
//   if (output.Exists()) output.Delete();
#pragma once

#include <concepts>
#include <filesystem>

#include <kelcore/filesupport/file_delete_exception.h>
#include <kelcore/string/String.h>

namespace kelcore::filesupport {

class File {
public:
    /// The file at `fullPath` (UTF-16). Any thread.
    explicit File(string::string_view fullPath);
    /// The file `name` in `directory` (UTF-16); an empty name names the directory itself.
    /// Any thread.
    File(string::string_view directory, string::string_view name);
    /// The file at `path` (UTF-8 on Linux). Only a std::filesystem::path binds here, so UTF-16
    /// text always takes the constructor above. Any thread.
    template <std::same_as<std::filesystem::path> Path>
    explicit File(const Path& path) : path(path) {}

    /// True when something, even a dangling symbolic link, stands at the path. False also when
    /// the path cannot be examined. Any thread.
    bool Exists() const;
    /// Removes the file, or the symbolic link itself. Does nothing when nothing stands at the
    /// path. Throws file_delete_exception when it stays, such as for a directory or in a
    /// directory the process cannot write. Any thread.
    void Delete() const;

    /// The path as given, UTF-16. Any thread.
    string::string FullPath() const;
    /// The path as given. Any thread.
    const std::filesystem::path& Path() const noexcept { return path; }

private:
    std::filesystem::path path;
};

}  // namespace kelcore::filesupport
