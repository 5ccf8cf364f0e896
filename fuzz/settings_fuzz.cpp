// Settings.ini through the profile fake. Whatever the file held before, the
// display values and the delete flag read from it keep their ranges (a
// seed's, replayed, are those of its golden file tests/golden/settings-*), and
// what the options pane writes into it reads back the same after a restart:
// every colour of 32 bits, the bold flag, the delete flag, and a text of up
// to 254 characters.
//
// Input: one byte (bit 0: bold, bit 1: delete), 12 bytes of colours, a byte
// of length and a text, then the file as it was.
#include <cstring>

#include "fakes/fakes.h"
#include "foundations/settings.h"
#include "fuzz_input.h"

using namespace corvane;

FUZZ_PROPERTY(in) {
    const uint8_t flags = in.Byte();
    int32_t colours[3];
    for (int32_t& colour : colours) std::memcpy(&colour, in.Bytes(4).append(4, '\0').data(), 4);
    const std::string note = in.Bytes(in.Byte());
    fakes::FakeProfile profile;
    profile.files["C:\\Corvane\\Settings.ini"] = in.Rest();

    Settings before(profile, "C:\\Corvane");
    SharedValues values;
    before.LoadDisplayValues(values);
    CHECK((values.FontBold == 0 || values.FontBold == 1) && before.ReadDeleteFlag() <= 1);
    // A seed's hand-edited file reads as its golden file says (blanks, "&H", fractions, numbers past 32 bits).
    char seen[128];
    std::snprintf(seen, sizeof seen, "FontBold %d, SusColor %d, DisColor %d, SusDisColor %d, Delete %d\n", values.FontBold,
                  values.SusColor, values.DisColor, values.SusDisColor, before.ReadDeleteFlag());
    CHECK(!fuzz::seedMatchesGolden || fuzz::seedMatchesGolden("settings-" + fuzz::replaySeed + ".txt", seen));

    before.SetFontBold(values, flags & 1);
    before.SetColour(&SharedValues::SusColor, "SusColor", values, colours[0]);
    before.SetColour(&SharedValues::DisColor, "DisColor", values, colours[1]);
    before.SetColour(&SharedValues::SusDisColor, "SusDisColor", values, colours[2]);
    before.WriteDeleteFlag(flags >> 1 & 1);
    before.WriteSetting("Main", "Note", note);

    Settings after(profile, "C:\\Corvane");
    SharedValues read;
    after.LoadDisplayValues(read);
    CHECK(read.FontBold == (flags & 1) && after.ReadDeleteFlag() == (flags >> 1 & 1));
    CHECK(read.SusColor == colours[0] && read.DisColor == colours[1] && read.SusDisColor == colours[2]);
    // The profile drops blanks and quotes around a value and ends it at a line break, as the system does.
    const bool plain = note.find_first_of(std::string("\0\r\n", 3)) == std::string::npos &&
                       note.find_first_of(" \t\"'") != 0 && note.find_last_of(" \t\"'") + 1 != note.size();
    CHECK(!plain || after.ReadSetting("Main", "Note", "") == note.substr(0, 254));
}
