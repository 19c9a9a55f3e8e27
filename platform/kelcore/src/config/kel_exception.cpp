#include <kelcore/config/kel_exception.h>

#include <utility>

namespace kelcore::config {

kel_exception::kel_exception(std::string text, ResultCode code)
    : text(std::move(text)), code(code) {}

void kel_exception::AddAdditionalData(const AdditionalData& data) {
    for (const auto& [key, value] : data) {
        additionalData.insert_or_assign(key, value);
    }
}

}  // namespace kelcore::config
