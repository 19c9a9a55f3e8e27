// Locale files are UTF-8 text named "<locale>.strings" in a resource directory, one entry a
// line: the key exactly as written in the code up to its first '=', then '=' and the text.
// "\n" in a text stands for a line break. Empty lines and lines starting with '#' are skipped.
//
//   $$$/Corvane/vantrokelui/Share=Teilen
#include <kelcore/config/Localizer.h>

#include <fstream>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

namespace kelcore::config {
namespace {

constexpr std::string_view kKeyPrefix = "$$$/";

std::string_view KeyOf(std::string_view keyWithDefault) {
    return keyWithDefault.substr(0, keyWithDefault.find('='));
}

std::string_view DefaultOf(std::string_view keyWithDefault) {
    const auto equals = keyWithDefault.find('=');
    return equals == std::string_view::npos ? std::string_view{}
                                            : keyWithDefault.substr(equals + 1);
}

std::string Unescape(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size() && text[i + 1] == 'n') {
            out += '\n';
            ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

// Heterogeneous lookup, so a lookup by string_view allocates nothing.
struct StringHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept {
        return std::hash<std::string_view>{}(text);
    }
};

}  // namespace

struct Localizer::State {
    mutable std::shared_mutex mutex;
    std::unordered_map<std::string, std::string, StringHash, std::equal_to<>> overrides;
};

Localizer::Localizer() : state(std::make_unique<State>()) {}
Localizer::~Localizer() = default;

Localizer& Localizer::Get() {
    // Never destroyed: static destructors elsewhere may still need text.
    static auto* instance = new Localizer;
    return *instance;
}

std::string Localizer::GetUTF8String(std::string_view keyWithDefault) const {
    if (!keyWithDefault.starts_with(kKeyPrefix)) {
        return std::string(keyWithDefault);
    }
    {
        std::shared_lock lock(state->mutex);
        if (const auto found = state->overrides.find(KeyOf(keyWithDefault));
            found != state->overrides.end()) {
            return found->second;
        }
    }
    return std::string(DefaultOf(keyWithDefault));
}

string::string Localizer::GetString(std::string_view keyWithDefault) const {
    return string::StdToUTF16String(GetUTF8String(keyWithDefault));
}

bool Localizer::LoadLocale(const std::filesystem::path& resourceDir, std::string_view locale) {
    std::ifstream file(resourceDir / (std::string(locale) + ".strings"));
    if (!file) {
        return false;
    }
    decltype(State::overrides) loaded;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (line.empty() || line.front() == '#') {
            continue;
        }
        const auto equals = line.find('=');
        if (equals == std::string::npos || !std::string_view(line).starts_with(kKeyPrefix)) {
            continue;
        }
        loaded.insert_or_assign(line.substr(0, equals),
                                Unescape(std::string_view(line).substr(equals + 1)));
    }
    std::unique_lock lock(state->mutex);
    state->overrides = std::move(loaded);
    return true;
}

void Localizer::Reset() {
    std::unique_lock lock(state->mutex);
    state->overrides.clear();
}

}  // namespace kelcore::config
