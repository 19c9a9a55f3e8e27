#include <kelcore/filesupport/file_delete_exception.h>

#include <system_error>

namespace kelcore::filesupport {

file_delete_exception::file_delete_exception(const std::string& path, int errorNumber)
    : kel_exception("Cannot delete " + path + ": " + std::generic_category().message(errorNumber),
                    kResultFileDeleteFailed) {
    AddAdditionalData({{kDebugFilePath, path}, {kDebugErrno, std::int64_t{errorNumber}}});
}

}  // namespace kelcore::filesupport
