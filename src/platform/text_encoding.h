#pragma once
#include <string>
#include <string_view>

namespace corvane {

// The program's texts are in the system's ANSI code page, as the narrow calls
// give them; files meant for other programs carry UTF-8.
class TextEncoding {
public:
    virtual ~TextEncoding() = default;
    virtual std::string Utf8OfAnsi(std::string_view ansi) = 0;
};

// The conversion for a system whose ANSI code page is Windows-1252, the code
// page of the test machines; bytes 1252 leaves undefined keep their own value.
class Windows1252Encoding final : public TextEncoding {
public:
    std::string Utf8OfAnsi(std::string_view ansi) override;
};

}  // namespace corvane
