#include <kelcore/filesupport/file_delete_exception.h>

#include <cstring>

namespace kelcore::filesupport {

file_delete_exception::file_delete_exception(const std::string& path, int errorNumber)
    : kel_exception("Cannot delete " + path + ": " + std::strerror(errorNumber),
                    kResultFileDeleteFailed) {
    AddAdditionalData({{kDebugFilePath, path}, {kDebugErrno, std::int64_t{errorNumber}}});
}

}  // namespace kelcore::filesupport
