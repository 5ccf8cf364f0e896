#pragma once
#include <string>

namespace corvane {

class Shell {
public:
    virtual ~Shell() = default;
    // Hands a file, folder or address to the shell's "Open" verb.
    virtual void Open(const std::string& target) = 0;
};

}  // namespace corvane
