#pragma once
#include <string>

namespace corvane {

class Environment {
public:
    virtual ~Environment() = default;
    // ExpandEnvironmentStringsA into a buffer of `size` NUL characters; the
    // whole buffer comes back, so the caller cuts it.
    virtual std::string Expand(const std::string& text, size_t size) = 0;
    // The user's interface language as "de-AT" (ISO 639 language, ISO 3166
    // country), or "de" when the system names no country; empty when it
    // cannot say.
    virtual std::string UiLanguage() { return ""; }
};

}  // namespace corvane
