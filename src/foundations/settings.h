#pragma once
#include <cstdint>
#include <string>

#include "platform/profile.h"

namespace corvane {

// The values every pane reads when it builds a row. Held once for the run,
// filled when the main window loads, changed by the options pane.
struct SharedValues {
    int16_t FontBold = 1;
    int32_t SusColor = 255;          // red, 0x00BBGGRR
    int32_t DisColor = 8421504;      // grey
    int32_t SusDisColor = 64;        // dark red
    std::string WindowsVersionName;  // empty on a system the program does not know
};

// Settings.ini: one "Main" section beside the program. An empty `file` means
// that default path.
class Settings {
public:
    Settings(Profile& profile, std::string appPath) : profile_(profile), appPath_(std::move(appPath)) {}

    std::string ReadSetting(const std::string& section, const std::string& key, const std::string& fallback,
                            const std::string& file = "");
    void WriteSetting(const std::string& section, const std::string& key, const std::string& value,
                      const std::string& file = "");

    // Reads FontBold, SusColor, DisColor and SusDisColor into `values`, in that order.
    void LoadDisplayValues(SharedValues& values);
    // A change is written at once and holds for the run even when the file
    // cannot be written; nothing is reported.
    void SetFontBold(SharedValues& values, int16_t fontBold);
    void SetColour(int32_t SharedValues::*colour, const char* key, SharedValues& values, int32_t value);
    // "Delete": whether a restored backup is deleted, read each time the options pane loads.
    int16_t ReadDeleteFlag();
    void WriteDeleteFlag(int16_t value);

    std::string Path(const std::string& file) const;
    void SetAppPath(std::string appPath) { appPath_ = std::move(appPath); }

private:
    Profile& profile_;
    std::string appPath_;
};

// The number at the start of a text, as the settings read their colours:
// blanks are skipped, a sign, "&H"/"&O" prefixes, a fraction and an exponent
// are taken; no leading digits gives 0.
double LeadingNumber(const std::string& text);
// A colour: the leading number rounded to signed 32 bits; `fallback` when it does not fit.
int32_t ColourFromText(const std::string& text, int32_t fallback);
// The icon number of an icon location ("file,number"): read as a colour is,
// 0 when there is none or it does not fit.
inline int32_t IconIndexFromText(const std::string& text) { return ColourFromText(text, 0); }
// "FontBold": the whole text as a number, rounded. The program only ever writes
// 0 or 1; anything else (not a number, 2, -7) is taken as the default, 1.
int16_t FontBoldFromText(const std::string& text);
// "Delete": the leading number, rounded; anything but 0 or 1 is the default, 0.
int16_t DeleteFlagFromText(const std::string& text);

}  // namespace corvane
