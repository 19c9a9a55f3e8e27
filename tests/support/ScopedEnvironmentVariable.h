// Sets (or unsets) an environment variable for the life of a test and puts back what was
// there before.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace testsupport {

class ScopedEnvironmentVariable {
public:
    /// Sets `name` to `value`, or unsets it when `value` is std::nullopt.
    ScopedEnvironmentVariable(std::string name, std::optional<std::string> value)
        : name(std::move(name)) {
        if (const char* old = std::getenv(this->name.c_str())) {
            previous = old;
        }
        Apply(value);
    }
    ~ScopedEnvironmentVariable() { Apply(previous); }
    ScopedEnvironmentVariable(const ScopedEnvironmentVariable&) = delete;
    ScopedEnvironmentVariable& operator=(const ScopedEnvironmentVariable&) = delete;

private:
    void Apply(const std::optional<std::string>& value) {
        if (value) {
            ::setenv(name.c_str(), value->c_str(), 1);
        } else {
            ::unsetenv(name.c_str());
        }
    }

    std::string name;
    std::optional<std::string> previous;
};

}  // namespace testsupport
