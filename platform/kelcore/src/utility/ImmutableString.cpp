#include <kelcore/utility/ImmutableString.h>

#include <functional>
#include <mutex>
#include <ostream>
#include <unordered_map>

namespace kelcore::utility {

namespace {

// Keys view the text owned by the mapped rep, so each interned text is stored once.
struct InternPool {
    std::mutex mutex;
    std::unordered_map<std::string_view, std::shared_ptr<const detail::ImmutableStringRep>> texts;
};

// Function-local so that namespace-scope constant tags in other files can intern safely
// during static initialisation.
InternPool& GetInternPool() {
    static InternPool pool;
    return pool;
}

std::shared_ptr<const detail::ImmutableStringRep> MakeRep(std::string_view text) {
    if (text.empty()) {
        return nullptr;
    }
    return std::make_shared<const detail::ImmutableStringRep>(text);
}

}  // namespace

ImmutableString::ImmutableString(std::string_view text) : rep(MakeRep(text)) {}

ImmutableString::ImmutableString(const char* text)
    : rep(text == nullptr ? nullptr : MakeRep(text)) {}

ImmutableString::ImmutableString(const std::string& text) : rep(MakeRep(text)) {}

ImmutableString ImmutableString::Intern(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    InternPool& pool = GetInternPool();
    std::lock_guard lock(pool.mutex);
    auto found = pool.texts.find(text);
    if (found == pool.texts.end()) {
        auto rep = MakeRep(text);
        const std::string_view key = rep->text;
        found = pool.texts.emplace(key, std::move(rep)).first;
    }
    return ImmutableString(found->second);
}

void ImmutableString::ForgetInternedStringsForTesting() {
    InternPool& pool = GetInternPool();
    decltype(pool.texts) forgotten;
    {
        std::lock_guard lock(pool.mutex);
        forgotten.swap(pool.texts);
    }
}

const std::string& ImmutableString::EmptyStdString() noexcept {
    static const std::string empty;
    return empty;
}

std::strong_ordering operator<=>(const ImmutableString& a, const ImmutableString& b) noexcept {
    if (a.rep == b.rep) {
        return std::strong_ordering::equal;
    }
    return a.AsStringView().compare(b.AsStringView()) <=> 0;
}

std::ostream& operator<<(std::ostream& out, const ImmutableString& text) {
    return out << text.AsStringView();
}

}  // namespace kelcore::utility
