#include <kelcore/config/ErrorHandling.h>

#include <new>
#include <string>

#include <kelcore/config/Localizer.h>
#include <kelcore/string/String.h>

namespace kelcore::config {

void ThrowError(std::string_view localizedKey, ResultCode code) {
    throw kel_exception(Localizer::Get().GetUTF8String(localizedKey), code);
}

void DoThrowNullPtrException(std::string_view typeName) {
    throw kel_exception("Null pointer: " + std::string(typeName), kResultNullPointer);
}

ResultCode ExtractResultFromException(const std::exception_ptr& error) noexcept {
    if (!error) {
        return kResultSuccess;
    }
    try {
        std::rethrow_exception(error);
    } catch (const kel_exception& e) {
        // A failure must read as negative even if someone built one with a bogus code.
        return e.GetCode() < 0 ? e.GetCode() : kResultUnknownFailure;
    } catch (const std::bad_alloc&) {
        return kResultOutOfMemory;
    } catch (const std::exception&) {
        return kResultStandardException;
    } catch (...) {
        return kResultUnknownFailure;
    }
}

}  // namespace kelcore::config
