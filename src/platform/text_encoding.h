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
    // Text the system keeps in UTF-16 where no narrow call reads it (a cache
    // record's path, a task file), in the ANSI code page as a narrow call
    // would pass it on: a character the code page lacks becomes "?", the
    // system's default character.
    virtual std::string AnsiOfUtf16(std::u16string_view text) = 0;
    // Text other programs keep in UTF-8 (a browser's files), in the ANSI
    // code page as the lists show every text; bytes that are no UTF-8 count
    // as one U+FFFD each.
    virtual std::string AnsiOfUtf8(std::string_view utf8) { return AnsiOfUtf16(Utf16OfUtf8(utf8)); }

    static std::u16string Utf16OfUtf8(std::string_view utf8);
};

// The conversion for a system whose ANSI code page is Windows-1252, the code
// page of the test machines; bytes 1252 leaves undefined keep their own value.
// The system's best-fit forms (an "A" for an "\u0100") are not made: such a
// name is not one a narrow call could open either way.
class Windows1252Encoding final : public TextEncoding {
public:
    std::string Utf8OfAnsi(std::string_view ansi) override;
    std::string AnsiOfUtf16(std::u16string_view text) override;
};

// One Windows-1252 conversion for code that is given no platform of its own
// (the tests' machines, the fuzz targets), which are of that code page.
TextEncoding& Windows1252Text();

}  // namespace corvane
