#include <gtest/gtest.h>

#include "fakes/fakes.h"
#include "foundations/settings.h"

namespace corvane {
namespace {

constexpr const char* kIni = "C:\\Corvane\\Settings.ini";

TEST(Settings, MissingFileGivesDefaultsAndCreatesNothing) {
    fakes::FakeProfile profile;
    Settings settings(profile, "C:\\Corvane");
    SharedValues values;
    values.FontBold = 0;
    values.SusColor = values.DisColor = values.SusDisColor = -1;
    settings.LoadDisplayValues(values);
    EXPECT_EQ(values.FontBold, 1);
    EXPECT_EQ(values.SusColor, 255);
    EXPECT_EQ(values.DisColor, 8421504);
    EXPECT_EQ(values.SusDisColor, 64);
    EXPECT_EQ(settings.ReadDeleteFlag(), 0);
    EXPECT_EQ(profile.writes, 0);
    EXPECT_TRUE(profile.files.empty()) << "a start writes no file";
}

TEST(Settings, HandEditedValues) {
    const struct {
        const char* file;
        int16_t fontBold;
        int32_t sus, dis, susDis;
    } cases[] = {
        {"[Main]\r\nSusColor=\r\nDisColor=\r\n", 1, 0, 0, 64},  // an empty value is 0, not the default
        {"[Main]\r\nFontBold=0\r\nSusColor=16711680\r\n", 0, 16711680, 8421504, 64},
        {"[Main]\r\nFontBold=yes\r\nSusColor=255 red\r\nDisColor=red\r\n", 1, 255, 0, 64},
        {"[Main]\r\nFontBold=2\r\nSusColor=&HFF00\r\nDisColor=&HFFFFFFFF\r\n", 1, 65280, -1, 64},
        {"[Main]\r\nFontBold= 0.0 \r\nSusColor=1 2 3\r\nSusDisColor=-12.5\r\n", 0, 123, 8421504, -12},
        {"[Main]\r\nFontBold=-1\r\nSusColor=99999999999\r\nDisColor=2.5e3\r\n", 1, 255, 2500, 64},
        {"[main]\r\nfontbold=0\r\n", 0, 255, 8421504, 64},  // names ignore case
    };
    for (const auto& c : cases) {
        fakes::FakeProfile profile;
        profile.files[kIni] = c.file;
        Settings settings(profile, "C:\\Corvane");
        SharedValues values;
        settings.LoadDisplayValues(values);
        EXPECT_EQ(values.FontBold, c.fontBold) << c.file;
        EXPECT_EQ(values.SusColor, c.sus) << c.file;
        EXPECT_EQ(values.DisColor, c.dis) << c.file;
        EXPECT_EQ(values.SusDisColor, c.susDis) << c.file;
    }
}

TEST(Settings, LongValueIsCutByTheBuffer) {
    fakes::FakeProfile profile;
    profile.files[kIni] = "[Main]\r\nSusColor=" + std::string(300, '9') + "\r\nNote=" + std::string(254, 'n') + "\r\n";
    Settings settings(profile, "C:\\Corvane");
    EXPECT_EQ(settings.ReadSetting("Main", "SusColor", "255"), std::string(254, '9'));
    EXPECT_EQ(settings.ReadSetting("Main", "Note", ""), std::string(254, 'n')) << "254 characters come whole";
    SharedValues values;
    settings.LoadDisplayValues(values);
    EXPECT_EQ(values.SusColor, 255) << "a number past 32 bits falls back to the default";
}

TEST(Settings, DeleteFlag) {
    const struct {
        const char* value;
        int16_t flag;
    } cases[] = {{"1", 1}, {"0", 0}, {"1 (on)", 1}, {"x", 0}, {"3", 0}, {"0.6", 1}, {"", 0}};
    for (const auto& c : cases) {
        fakes::FakeProfile profile;
        profile.files[kIni] = std::string("[Main]\r\nDelete=") + c.value + "\r\n";
        EXPECT_EQ(Settings(profile, "C:\\Corvane").ReadDeleteFlag(), c.flag) << c.value;
    }
}

TEST(Settings, ChangesAreWrittenAtOnceAndLastEvenWhenTheWriteFails) {
    for (bool fail : {false, true}) {
        fakes::FakeProfile profile;
        profile.failWrites = fail;
        Settings settings(profile, "C:\\Corvane");
        SharedValues values;
        settings.SetColour(&SharedValues::DisColor, "DisColor", values, 0x123456);
        settings.SetFontBold(values, 0);
        settings.WriteDeleteFlag(1);
        EXPECT_EQ(values.DisColor, 0x123456);
        EXPECT_EQ(values.FontBold, 0);
        if (fail) {
            EXPECT_TRUE(profile.files.empty());
            continue;
        }
        SharedValues reread;
        settings.LoadDisplayValues(reread);
        EXPECT_EQ(reread.DisColor, 0x123456);
        EXPECT_EQ(reread.FontBold, 0);
        EXPECT_EQ(settings.ReadDeleteFlag(), 1);
        EXPECT_EQ(settings.ReadSetting("Main", "DisColor", "", "C:\\Other\\x.ini"), "") << "another file";
    }
}

}  // namespace
}  // namespace corvane
