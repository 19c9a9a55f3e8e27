#include <vantroauth/BrowserOpener.h>

#include <mutex>
#include <utility>

#include <kelcore/logging/Logging.h>
#include <kelcore/utility/OpenFileInDefaultApplication.h>

#include "OpenBrowser.h"

namespace vantroauth {

namespace {

struct OpenerSlot {
    std::mutex mutex;
    BrowserOpener opener;
};

OpenerSlot& Slot() {
    // Leaked on purpose: a sign-in finishing during exit may still ask for the opener.
    static auto* slot = new OpenerSlot;
    return *slot;
}

}  // namespace

void SetBrowserOpener(BrowserOpener opener) {
    auto& slot = Slot();
    std::lock_guard lock(slot.mutex);
    slot.opener = std::move(opener);
}

namespace detail {

bool OpenBrowser(const std::string& authorizeUrl) {
    BrowserOpener opener;
    {
        auto& slot = Slot();
        std::lock_guard lock(slot.mutex);
        opener = slot.opener;
    }
    try {
        if (opener) {
            return opener(authorizeUrl);
        }
        return kelcore::utility::OpenFileInDefaultApplication(authorizeUrl);
    } catch (...) {
        // The message of an opener's exception could quote the URL: only the fact is logged.
        kelcore::logging::LogWarning("vantroauth: the browser opener threw an exception");
        return false;
    }
}

}  // namespace detail
}  // namespace vantroauth
