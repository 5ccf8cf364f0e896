#include <gtest/gtest.h>

#include <array>
#include <stdexcept>

#include "contract/file_facts_contract.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_file_facts.h"
#include "foundations/file_description.h"

namespace corvane {
namespace {

using fakes::FakeFile;
using fakes::FakeVersionResource;
using fakes::MakeFileTime;
using fakes::TranslationBytes;
using Values = std::array<std::string, 13>;

constexpr const char* kNames[12] = {"ProductName",  "ProductVersion",   "FileDescription", "FileVersion",
                                    "InternalName", "OriginalFilename", "Comments",        "CompanyName",
                                    "LegalCopyright", "LegalTrademarks", "PrivateBuild",   "SpecialBuild"};

// A resource with every string present, each value naming its row.
FakeVersionResource FullResource(const std::string& block, const std::string& translation) {
    FakeVersionResource r{translation, {}};
    for (int i = 0; i < 12; ++i) r.strings[block + "\\" + kNames[i]] = std::string("v") + std::to_string(i);
    return r;
}

FakeFile File(std::optional<FakeVersionResource> version) {
    FakeFile f;
    f.version = std::move(version);
    f.created = MakeFileTime(2003, 1, 31, 12, 0, 0);
    f.lastWritten = MakeFileTime(2010, 6, 15, 12, 0, 0);
    f.size = 2048;
    return f;
}

Values Read(FileFacts& facts, Clock& clock, const std::string& path) {
    clsProcess process(facts, clock);
    EXPECT_EQ(process.GetFileDescription(path), "");
    Values values;
    for (int16_t i = 0; i < 13; ++i) values[static_cast<size_t>(i)] = process.getItem(i);
    return values;
}

Values DateOnly() {
    Values v;
    v[kCreatedOn] = "01/31/2003";
    return v;
}

TEST(FileDescription, VersionStringsGoThroughTheFilesOwnTranslation) {
    const std::string german = TranslationBytes(0x0407, 1252);
    Values all;
    for (int i = 0; i < 12; ++i) all[static_cast<size_t>(i)] = "v" + std::to_string(i);
    all[kCreatedOn] = "01/31/2003";

    FakeVersionResource emptyComment = FullResource("040704E4", german);
    emptyComment.strings["040704E4\\Comments"] = "";
    Values withoutComment = all;
    withoutComment[kComments] = "";

    FakeVersionResource twoLanguages = FullResource("040704E4", german + TranslationBytes(0x0409, 1200));
    twoLanguages.strings["040904B0\\CompanyName"] = "second language";

    FakeVersionResource sparse{german, {{"040704E4\\CompanyName", "Pr\xFC" "fwerk"}}};
    Values companyOnly = DateOnly();
    companyOnly[kCompanyName] = "Pr\xFC" "fwerk";

    const struct {
        const char* name;
        std::optional<FakeVersionResource> version;
        Values expected;
    } cases[] = {
        {"all twelve strings", FullResource("040704E4", german), all},
        {"block named in lower case", FullResource("040704e4", german), all},
        {"an empty string stays empty", emptyComment, withoutComment},
        {"only the first language counts", twoLanguages, all},
        {"missing strings stay empty", sparse, companyOnly},
        {"language without strings: no fallback to the second",
         FullResource("040904B0", german + TranslationBytes(0x0409, 1200)), DateOnly()},
        {"no translation table", FullResource("040704E4", ""), DateOnly()},
        {"a table too short to name a language", FullResource("040704E4", "\x07\x04"), DateOnly()},
        {"no version resource", std::nullopt, DateOnly()},
    };
    for (const auto& c : cases) {
        fakes::FakeFileFacts facts;
        fakes::FakeClock clock;
        facts.Add("C:\\Programs\\App.exe", File(c.version));
        EXPECT_EQ(Read(facts, clock, "C:\\Programs\\App.exe"), c.expected) << c.name;
    }
}

TEST(FileDescription, FailuresLeaveTheRowsEmpty) {
    fakes::FakeFileFacts facts;
    fakes::FakeClock clock;
    facts.Add("C:\\App.exe", File(FullResource("040704E4", TranslationBytes(0x0407, 1252))));

    EXPECT_EQ(Read(facts, clock, "C:\\Missing.exe"), Values{}) << "a missing file has no date either";

    facts.failVersionRead = true;
    EXPECT_EQ(Read(facts, clock, "C:\\App.exe"), DateOnly()) << "the block cannot be read";

    clock.failConversions = true;
    EXPECT_EQ(Read(facts, clock, "C:\\App.exe")[kCreatedOn], "") << "a time the system cannot convert";
}

TEST(FileDescription, ASecondFileLeavesNothingOfTheFirst) {
    fakes::FakeFileFacts facts;
    fakes::FakeClock clock;
    facts.Add("C:\\First.exe", File(FullResource("040704E4", TranslationBytes(0x0407, 1252))));
    facts.Add("C:\\Second.exe", File(std::nullopt));
    clsProcess process(facts, clock);
    process.GetFileDescription("C:\\First.exe");
    ASSERT_EQ(process.getItem(kCompanyName), "v7");
    process.GetFileDescription("C:\\Second.exe");
    for (int16_t i = 0; i < 12; ++i) EXPECT_EQ(process.getItem(i), "") << "row " << i;
    process.GetFileDescription("C:\\Missing.exe");
    EXPECT_EQ(process.getItem(kCreatedOn), "");
}

TEST(FileDescription, CreationDateInLocalTimeWithTheLocalesSeparator) {
    const struct {
        FileTime created;
        int offsetMinutes;
        const char* separator;
        const char* expected;
    } cases[] = {
        {MakeFileTime(2003, 1, 31, 12, 0, 0), 0, "/", "01/31/2003"},
        {MakeFileTime(2003, 1, 31, 12, 0, 0), 0, ".", "01.31.2003"},  // the order stays, only the sign changes
        {MakeFileTime(2003, 1, 31, 23, 30, 0), 60, "/", "02/01/2003"},
        {MakeFileTime(2003, 1, 1, 0, 30, 0), -60, "-", "12-31-2002"},
        {MakeFileTime(1601, 1, 1, 0, 0, 0), 0, "/", "01/01/1601"},
    };
    for (const auto& c : cases) {
        fakes::FakeFileFacts facts;
        fakes::FakeClock clock;
        clock.utcOffsetMinutes = c.offsetMinutes;
        clock.dateSeparator = c.separator;
        FakeFile file = File(std::nullopt);
        file.created = c.created;  // differs from the last write time, which must not show
        facts.Add("C:\\App.exe", file);
        EXPECT_EQ(Read(facts, clock, "C:\\App.exe")[kCreatedOn], c.expected) << c.expected;
    }
}

TEST(FileDescription, IndexOutsideTheTableIsRefused) {
    fakes::FakeFileFacts facts;
    fakes::FakeClock clock;
    clsProcess process(facts, clock);
    EXPECT_THROW(process.getItem(-1), std::out_of_range);
    EXPECT_THROW(process.getItem(13), std::out_of_range);
    EXPECT_NO_THROW(process.getItem(12));
}

TEST(FileDescription, TranslationKey) {
    const struct {
        std::string table, key;
    } cases[] = {
        {std::string("\x09\x04\xB0\x04", 4), "040904B0"},
        {std::string("\x07\x04\xE4\x04", 4), "040704E4"},
        {std::string("\x00\x00\x00\x00", 4), "00000000"},
        {std::string("\xFF\x7F\x01\x80\x09\x04", 6), "7FFF8001"},  // the first entry only
        {std::string("\x09\x04\xB0", 3), ""},
    };
    for (const auto& c : cases) EXPECT_EQ(TranslationKey(c.table), c.key) << c.key;
}

TEST(FileDescription, SizesInKilobytes) {
    const struct {
        uint64_t bytes;
        const char* sign;
        const char* text;
    } sizes[] = {
        {0, ".", "0.0"},      {51, ".", "0.0"},        {52, ".", "0.1"},
        {256, ".", "0.3"},    // exactly 0.25 rounds up
        {1023, ".", "1.0"},   {1536, ",", "1,5"},      {1048576, ".", "1024.0"},
        {5'000'000'000ull, ".", "4882812.5"},
    };
    for (const auto& c : sizes) EXPECT_EQ(FormatKilobytes(c.bytes, c.sign), c.text) << c.bytes;
}

TEST(GeneralDate, DateAndTimeOrTheDateAloneAtMidnight) {
    fakes::FakeClock clock;
    EXPECT_EQ(FormatGeneralDate(clock, clock.Now()), "1/31/2003 2:05:09 PM");
    EXPECT_EQ(FormatGeneralDate(clock, SystemTime{2003, 1, 5, 31, 0, 0, 0, 0}), "1/31/2003");
    EXPECT_EQ(FormatGeneralDate(clock, SystemTime{2003, 1, 5, 31, 0, 0, 1, 0}), "1/31/2003 12:00:01 AM");
}

TEST(FileFactsContract, Fake) {
    fakes::FakeFileFacts facts;
    FakeFile full = File(FakeVersionResource{TranslationBytes(0x0407, 1252),
                                             {{"040704E4\\CompanyName", "Pr\xFC" "fwerk GmbH"}}});
    full.size = 52224;
    facts.Add("C:\\corvane-tests\\facts\\fixture_full.exe", full);
    facts.Add("C:\\corvane-tests\\facts\\fixture_bare.exe", File(std::nullopt));
    FakeFile longName = File(std::nullopt);
    longName.shortPath = "C:\\CORVAN~1\\facts\\AVERYL~1.EXE";
    facts.Add("C:\\corvane-tests\\facts\\A very long file name.exe", longName);
    FakeFile folder;
    folder.isFolder = true;
    facts.Add("C:\\corvane-tests\\facts", folder);
    contract::CheckFileFactsContract(facts, {"C:\\corvane-tests\\facts", "C:\\corvane-tests\\facts\\fixture_full.exe",
                                             "C:\\corvane-tests\\facts\\fixture_bare.exe",
                                             "C:\\corvane-tests\\facts\\A very long file name.exe",
                                             "C:\\corvane-tests\\facts\\missing.exe", 52224});
}

TEST(ClockContract, Fake) {
    fakes::FakeClock clock;
    contract::CheckClockContract(clock);
}

}  // namespace
}  // namespace corvane
