#pragma once
#include <string>

namespace corvane {

// The platform's initialisation-file functions.
class Profile {
public:
    virtual ~Profile() = default;
    // GetPrivateProfileStringA into a buffer of `size` characters: the value
    // (or `fallback` when the key is missing), cut to size - 1 characters.
    virtual std::string Read(const std::string& section, const std::string& key,
                             const std::string& fallback, size_t size, const std::string& path) = 0;
    // WritePrivateProfileStringA; false when the file could not be written.
    virtual bool Write(const std::string& section, const std::string& key,
                       const std::string& value, const std::string& path) = 0;
};

}  // namespace corvane
