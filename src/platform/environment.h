#pragma once
#include <string>

namespace corvane {

class Environment {
public:
    virtual ~Environment() = default;
    // ExpandEnvironmentStringsA into a buffer of `size` NUL characters; the
    // whole buffer comes back, so the caller cuts it.
    virtual std::string Expand(const std::string& text, size_t size) = 0;
};

}  // namespace corvane
