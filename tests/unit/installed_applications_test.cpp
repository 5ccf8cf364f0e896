#include <gtest/gtest.h>

#include <map>

#include <string>
#include <vector>

#include "applications/applications_report.h"
#include "applications/installed_applications.h"
#include "applications/slow_info_cache.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_file_facts.h"
#include "fakes/fake_file_system.h"
#include "fakes/fake_registry.h"
#include "fakes/fakes.h"
#include "options/full_report.h"

namespace corvane {
namespace {

using namespace std::string_literals;

constexpr const char* kUninstall = "HKLM\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";
constexpr const char* kArpCache = "HKLM\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Management\\ARPCache\\";
constexpr const char* kXp = "Microsoft Windows XP";

// A cache record as the control panel leaves it: `size` bytes, each field
// given as the bytes it holds, little-endian.
struct RecordFields {
    size_t size = kSlowInfoCacheSize;
    uint8_t nameFlag = 1;
    std::vector<uint8_t> sizeBytes = {0x00, 0x00, 0x10, 0x00, 0, 0, 0, 0};  // one MiB
    std::vector<uint8_t> lastUsed = {0, 0, 0, 0, 0x21, 0xc9, 0xc2, 0x01};  // 2003-01-31
    uint8_t frequency = 5;
    std::u16string imagePath;

    RecordFields& Size(size_t n) { return size = n, *this; }
    RecordFields& NameFlag(uint8_t b) { return nameFlag = b, *this; }
    RecordFields& SizeBytes(std::vector<uint8_t> b) { return sizeBytes = std::move(b), *this; }
    RecordFields& LastUsed(std::vector<uint8_t> b) { return lastUsed = std::move(b), *this; }
    RecordFields& Frequency(uint8_t b) { return frequency = b, *this; }
    RecordFields& ImagePath(std::u16string p) { return imagePath = std::move(p), *this; }
};

std::string MakeRecord(const RecordFields& fields) {
    std::string bytes(fields.size, '\0');
    auto put = [&](size_t at, const std::vector<uint8_t>& what) {
        for (size_t i = 0; i < what.size() && at + i < bytes.size(); ++i) bytes[at + i] = static_cast<char>(what[i]);
    };
    put(kSlowInfoNameFlag, {fields.nameFlag});
    put(kSlowInfoSize, fields.sizeBytes);
    put(kSlowInfoLastUsed, fields.lastUsed);
    put(kSlowInfoFrequency, {fields.frequency});
    for (size_t i = 0; i < fields.imagePath.size(); ++i) {
        put(kSlowInfoImagePath + 2 * i, {static_cast<uint8_t>(fields.imagePath[i] & 0xFF),
                                         static_cast<uint8_t>(fields.imagePath[i] >> 8)});
    }
    return bytes;
}

std::span<const uint8_t, kSlowInfoCacheSize> Fields(const std::string& record) {
    return std::span<const uint8_t, kSlowInfoCacheSize>(reinterpret_cast<const uint8_t*>(record.data()),
                                                        kSlowInfoCacheSize);
}

TEST(SlowInfoCache, SizeShowsOnlyTheLowHalfInMegabytesWithOneDecimal) {
    const struct {
        uint8_t b0, b1, b2, b3;
        const char* text;
    } cases[] = {
        {0x00, 0x00, 0x10, 0x00, "1.0"},  // exactly one MiB
        {0x00, 0x00, 0x00, 0x00, "0.0"},
        {0x00, 0x00, 0x04, 0x00, "0.3"},  // 0.25 exactly: half rounds up
        {0xff, 0xff, 0x03, 0x00, "0.2"},  // one byte below 0.25
        {0x2d, 0xcd, 0x00, 0x00, "0.1"},  // 52,525 bytes: past 0.05 by less than a kilobyte
        {0x00, 0x00, 0x68, 0x01, "22.5"},
        {0xff, 0xff, 0xff, 0x7f, "2048.0"},  // the largest the signed number held
        {0x00, 0x00, 0x00, 0x80, ""},       // 2 GiB overflowed it: empty
        {0xff, 0xff, 0xff, 0xff, ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(sizeText(c.b0, c.b1, c.b2, c.b3), c.text) << int(c.b0) << " " << int(c.b1) << " " << int(c.b2)
                                                            << " " << int(c.b3);
    }
    EXPECT_EQ(sizeText(0x00, 0x00, 0x68, 0x01, ","), "22,5") << "the locale's decimal sign";
}

TEST(SlowInfoCache, FrequencyHasThreeWordsForTheLowByte) {
    const struct {
        uint8_t count;
        const char* word;
    } cases[] = {
        {0, "Rarely"},         {2, "Rarely"},         {3, "Occasionally"}, {10, "Occasionally"},
        {11, "Frequently"},    {254, "Frequently"},   {255, "Frequently"},
    };
    for (const auto& c : cases) EXPECT_EQ(frequencyText(c.count), c.word) << int(c.count);
}

TEST(SlowInfoCache, DateFromTheHighHalfAloneStandingInForTheLowHalf) {
    // The expected days were worked out apart from this code, in Python:
    //   h = b0 + 256*b1 + 65536*b2 + 16777216*b3;  ft = h * 2**32 + h
    //   datetime(1601, 1, 1) + timedelta(microseconds=ft // 10)
    // Past the year 9999, where datetime stops, the day was taken 400 years
    // (146,097 days) earlier at a time, the Gregorian calendar's cycle, and
    // the year then moved to 7999 by hand.
    const struct {
        uint8_t b0, b1, b2, b3;
        const char* xp;
        const char* windows2000;
    } cases[] = {
        {0x21, 0xc9, 0xc2, 0x01, "2003-01-31", "2003-02-01"},  // 2003-01-31 12:05
        {0x56, 0xfe, 0xc3, 0x01, "2004-02-28", "2004-02-29"},  // 2004-02-28 23:53
        {0x57, 0xfe, 0xc3, 0x01, "2004-02-29", "2004-03-01"},  // 2004-02-29 00:00
        {0x96, 0xcf, 0xc3, 0x01, "2003-12-31", "2004-01-01"},
        {0xa1, 0xe7, 0xa8, 0x01, "1980-01-01", "1980-01-02"},
        {0x43, 0x7b, 0xdd, 0x01, "2026-11-23", "2026-11-24"},
        {0x01, 0x00, 0x00, 0x00, "1601-01-01", "1601-01-02"},
        {0x00, 0x00, 0x00, 0x01, "1829-05-05", "1829-05-06"},
        {0x78, 0x56, 0x34, 0x12, "5757-10-30", "5757-10-31"},
        // 9999-12-31 12:06; a day later no longer fit the date and stayed empty.
        {0xfb, 0x59, 0xc8, 0x24, "9999-12-31", ""},
        // 30828-09-14, 30600-05-13: past 9999 the year became 7999.
        {0xff, 0xff, 0xff, 0x7f, "7999-09-14", "7999-09-15"},
        {0x00, 0x00, 0x00, 0x7f, "7999-05-13", "7999-05-14"},
        // 23524-02-29: 7999 has no 29 February, so the date ran on into March.
        {0xdf, 0xab, 0x02, 0x60, "7999-03-01", "7999-03-02"},
        // A high half of 2^31 or more did not fit the signed number: empty.
        {0x00, 0x00, 0x00, 0x80, "", ""},
        {0x00, 0x00, 0x00, 0xfe, "", ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(lastUsedText(c.b0, c.b1, c.b2, c.b3, false), c.xp) << int(c.b3) << " " << int(c.b2);
        EXPECT_EQ(lastUsedText(c.b0, c.b1, c.b2, c.b3, true), c.windows2000) << int(c.b3) << " " << int(c.b2);
    }
}

TEST(SlowInfoCache, UnknownFieldsAndTheHalvesNotReadLeaveTheirColumns) {
    const struct {
        const char* what;
        RecordFields fields;
        SlowInfoTexts texts;
    } cases[] = {
        {"a whole record", {}, {"1.0", "2003-01-31", "Occasionally"}},
        {"size unknown (byte 11 at 255)", RecordFields().SizeBytes({0, 0, 0x10, 0xff}), {"", "2003-01-31", "Occasionally"}},
        {"size overflowing (byte 11 at 128)", RecordFields().SizeBytes({0, 0, 0x10, 0x80}), {"", "2003-01-31", "Occasionally"}},
        {"the size's high half is not read", RecordFields().SizeBytes({0, 0, 0x10, 0, 1, 2, 3, 4}),
         {"1.0", "2003-01-31", "Occasionally"}},
        {"time unknown (byte 23 at 255)", RecordFields().LastUsed({0, 0, 0, 0, 0x21, 0xc9, 0xc2, 0xff}),
         {"1.0", "", "Occasionally"}},
        {"time unknown (byte 23 at 0)", RecordFields().LastUsed({0, 0, 0, 0, 0x21, 0xc9, 0xc2, 0x00}),
         {"1.0", "", "Occasionally"}},
        {"the time's low half is not read", RecordFields().LastUsed({0xff, 0xff, 0xff, 0xff, 0x21, 0xc9, 0xc2, 0x01}),
         {"1.0", "2003-01-31", "Occasionally"}},
        {"count unknown (255)", RecordFields().Frequency(255), {"1.0", "2003-01-31", ""}},
        {"count 2", RecordFields().Frequency(2), {"1.0", "2003-01-31", "Rarely"}},
        {"count 11", RecordFields().Frequency(11), {"1.0", "2003-01-31", "Frequently"}},
    };
    for (const auto& c : cases) {
        const std::string record = MakeRecord(c.fields);
        const SlowInfoTexts texts = DecodeSlowInfoCache(Fields(record), false, ".");
        EXPECT_EQ(texts.size, c.texts.size) << c.what;
        EXPECT_EQ(texts.lastUsed, c.texts.lastUsed) << c.what;
        EXPECT_EQ(texts.frequency, c.texts.frequency) << c.what;
    }
}

TEST(SlowInfoCache, ImagePathInTheAnsiCodePage) {
    const std::u16string full(262, u'x');  // 524 bytes: up to the record's end, with no NUL
    const struct {
        const char* what;
        uint8_t nameFlag;
        std::u16string path;
        std::string ansi;
    } cases[] = {
        {"a path", 1, u"C:\\Apps\\app.exe", "C:\\Apps\\app.exe"},
        {"any flag but 0", 0x80, u"C:\\a.exe", "C:\\a.exe"},
        {"flag 0: not valid", 0, u"C:\\a.exe", ""},
        {"cut at the first NUL", 1, u"C:\\a.exe\0C:\\b.exe"s, "C:\\a.exe"},
        {"Windows-1252 letters", 1, u"C:\\Caf\u00e9\\\u20ac\u0160.exe", "C:\\Caf\xe9\\\x80\x8a.exe"},
        {"others become ?", 1, u"C:\\\u0100\u4e2d\U0001F600.exe", "C:\\???.exe"},
        {"a lone half of a pair", 1, u"C:\\\xd800x.exe", "C:\\?x.exe"},
        {"to the end", 1, full, std::string(262, 'x')},
    };
    for (const auto& c : cases) {
        const std::string record = MakeRecord(RecordFields().NameFlag(c.nameFlag).ImagePath(c.path));
        EXPECT_EQ(SlowInfoImagePath(Fields(record)), c.ansi) << c.what;
    }
}

// The machine the walk reads: the Uninstall and ARPCache keys, and files.
struct Machine {
    fakes::FakeRegistry registry;
    fakes::FakeFileFacts facts;
    ApplicationSources sources{registry, facts};

    // An application with a name and a command; `extra` values may follow.
    void AddApp(const std::string& name, const std::string& displayName = "App",
                const std::string& command = "C:\\Apps\\uninst.exe") {
        registry.AddKey(kUninstall + name);
        if (!displayName.empty()) registry.PutString(kUninstall + name, "DisplayName", displayName);
        if (!command.empty()) registry.PutString(kUninstall + name, "UninstallString", command);
    }
    void AddRecord(const std::string& name, const std::string& record) {
        registry.Put(kArpCache + name, "SlowInfoCache", kRegBinary, record);
    }
    void AddFile(const std::string& path) { facts.Add(path, {}); }
};

struct Expected {
    std::vector<std::string> cells;  // empty: no row
    std::string iconFile;
    int32_t iconIndex = 0;
};

TEST(CollectApplications, EachEntryAsTheControlPanelShowedIt) {
    const std::string good = "C:\\Apps\\good.exe";
    const std::string record = MakeRecord(RecordFields().ImagePath(u"C:\\Apps\\good.exe"));
    const std::vector<std::string> recordCells = {"App", "1.0", "2003-01-31", "Occasionally", "C:\\Apps\\uninst.exe", ""};
    const std::vector<std::string> bareCells = {"App", "", "", "", "C:\\Apps\\uninst.exe", ""};
    const struct {
        const char* what;
        std::function<void(Machine&)> setUp;  // on an entry "A" with a name and command
        Expected row;
    } cases[] = {
        {"NoRemove 1: no row", [](Machine& m) { m.registry.PutDword(kUninstall + "A"s, "NoRemove", 1); }, {}},
        {"NoRemove 0: a row", [](Machine& m) { m.registry.PutDword(kUninstall + "A"s, "NoRemove", 0); },
         {bareCells, "", 0}},
        {"NoRemove 2: a row", [](Machine& m) { m.registry.PutDword(kUninstall + "A"s, "NoRemove", 2); },
         {bareCells, "", 0}},
        {"no DisplayName", [](Machine& m) { m.registry.PutString(kUninstall + "A"s, "DisplayName", ""); }, {}},
        {"no UninstallString", [](Machine& m) { m.registry.PutString(kUninstall + "A"s, "UninstallString", ""); },
         {}},
        {"a record", [&](Machine& m) { m.AddRecord("A", record); }, {recordCells, "", 0}},
        {"a record of 551 bytes", [&](Machine& m) { m.AddRecord("A", record.substr(0, 551)); }, {bareCells, "", 0}},
        {"a record of 553 bytes", [&](Machine& m) { m.AddRecord("A", record + "x"); }, {bareCells, "", 0}},
        {"the record names a program that is there",
         [&](Machine& m) {
             m.AddRecord("A", record);
             m.AddFile(good);
         },
         {recordCells, good, 0}},
        {"the record's name flag is 0",
         [&](Machine& m) {
             m.AddRecord("A", MakeRecord(RecordFields().NameFlag(0).ImagePath(u"C:\\Apps\\good.exe")));
             m.AddFile(good);
         },
         {recordCells, "", 0}},
        {"the record names a program that is not there", [&](Machine& m) { m.AddRecord("A", record); },
         {recordCells, "", 0}},
        {"DisplayIcon quoted with a number",
         [&](Machine& m) {
             m.registry.PutString(kUninstall + "A"s, "DisplayIcon", "\"C:\\Apps\\good.exe\",3");
             m.AddFile(good);
         },
         {bareCells, good, 3}},
        {"DisplayIcon cut at its last comma",
         [&](Machine& m) {
             m.registry.PutString(kUninstall + "A"s, "DisplayIcon", "C:\\Apps\\a,b.exe,-2");
             m.AddFile("C:\\Apps\\a,b.exe");
         },
         {bareCells, "C:\\Apps\\a,b.exe", -2}},
        {"DisplayIcon with no number behind its comma",
         [&](Machine& m) {
             m.registry.PutString(kUninstall + "A"s, "DisplayIcon", "C:\\Apps\\good.exe,icon");
             m.AddFile(good);
         },
         {bareCells, good, 0}},
        {"DisplayIcon starting with a comma is a path as a whole",
         [&](Machine& m) {
             m.registry.PutString(kUninstall + "A"s, "DisplayIcon", ",1");
             m.AddFile(",1");
         },
         {bareCells, ",1", 0}},
        {"DisplayIcon missing wins over the record's good program",
         [&](Machine& m) {
             m.registry.PutString(kUninstall + "A"s, "DisplayIcon", "C:\\Apps\\gone.exe,1");
             m.AddRecord("A", record);
             m.AddFile(good);
         },
         {recordCells, "", 0}},
        {"DisplayIcon of quotes alone",
         [&](Machine& m) {
             m.registry.PutString(kUninstall + "A"s, "DisplayIcon", "\"\"");
             m.AddRecord("A", record);
             m.AddFile(good);
         },
         {recordCells, "", 0}},
    };
    for (const auto& c : cases) {
        Machine m;
        m.AddApp("A");
        c.setUp(m);
        const std::vector<Row> rows = CollectApplications(m.sources, kXp);
        if (c.row.cells.empty()) {
            EXPECT_TRUE(rows.empty()) << c.what;
            continue;
        }
        ASSERT_EQ(rows.size(), 1u) << c.what;
        EXPECT_EQ(rows[0].key, "A") << c.what;
        EXPECT_EQ(rows[0].cells, c.row.cells) << c.what;
        EXPECT_EQ(rows[0].iconFile, c.row.iconFile) << c.what;
        EXPECT_EQ(rows[0].iconIndex, c.row.iconIndex) << c.what;
        EXPECT_EQ(m.registry.OpenHandles(), 0u) << c.what;
    }
}

TEST(CollectApplications, TheWindowsVersionDecidesWhetherAndHowTheRecordIsRead) {
    const struct {
        const char* version;
        bool recordRead;
        const char* date;
    } cases[] = {
        {"Microsoft Windows XP", true, "2003-01-31"},
        {"Microsoft Windows 2000", true, "2003-02-01"},
        {"Microsoft Windows Sever 2003", true, "2003-01-31"},
        {"Microsoft Windows Millennium Edition", true, "2003-01-31"},
        {"", true, "2003-01-31"},
        {"Microsoft Windows 98", false, ""},
        {"Microsoft Windows 98 Second Edition", false, ""},
        {"Microsoft Windows 95", false, ""},
    };
    for (const auto& c : cases) {
        Machine m;
        m.AddApp("A");
        m.AddRecord("A", MakeRecord(RecordFields().ImagePath(u"C:\\Apps\\good.exe")));
        m.AddFile("C:\\Apps\\good.exe");
        bool cacheTouched = false;
        m.registry.failIf = [&](const std::string&, const std::string& key, const std::string&) {
            if (key.find("ARPCache") != std::string::npos) cacheTouched = true;
            return false;
        };
        const std::vector<Row> rows = CollectApplications(m.sources, c.version);
        ASSERT_EQ(rows.size(), 1u) << c.version;
        EXPECT_EQ(cacheTouched, c.recordRead) << c.version;
        EXPECT_EQ(rows[0].cells[kAppColLastUsed], c.date) << c.version;
        EXPECT_EQ(rows[0].cells[kAppColSize], c.recordRead ? "1.0" : "") << c.version;
        EXPECT_EQ(rows[0].iconFile, c.recordRead ? "C:\\Apps\\good.exe" : "") << c.version;
    }
}

TEST(CollectApplications, RowsInTheRegistrysOrderEachWithItsOwnRecord) {
    Machine m;
    m.AddApp("Zeta", "Last");
    m.AddApp("alpha", "First", "a.exe /u");
    m.AddApp("Mid", "Middle");
    m.AddRecord("Mid", MakeRecord(RecordFields().SizeBytes({0, 0, 0x20, 0}).Frequency(20)));
    m.AddRecord("alpha", MakeRecord(RecordFields().Frequency(1)));
    ApplicationListOptions options;
    options.windowsVersionName = kXp;
    options.decimalSign = ",";
    const std::vector<Row> rows = CollectApplications(m.sources, options);
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0].key, "alpha");
    EXPECT_EQ(rows[0].cells, (std::vector<std::string>{"First", "1,0", "2003-01-31", "Rarely", "a.exe /u", ""}));
    EXPECT_EQ(rows[1].key, "Mid");
    EXPECT_EQ(rows[1].cells[kAppColSize], "2,0");
    EXPECT_EQ(rows[1].cells[kAppColFrequency], "Frequently");
    EXPECT_EQ(rows[2].key, "Zeta");
    EXPECT_EQ(rows[2].cells[kAppColSize], "");
}

TEST(CollectApplications, AMissingUninstallKeyGivesNoRows) {
    Machine m;
    EXPECT_TRUE(CollectApplications(m.sources, kXp).empty());
    EXPECT_EQ(m.registry.OpenHandles(), 0u);
}

// The 32-bit view of a 64-bit system, as the fake keeps it.
constexpr const char* kUninstall32 = "HKLM\\SOFTWARE\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";
constexpr const char* kArpCache32 =
    "HKLM\\SOFTWARE\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\App Management\\ARPCache\\";

TEST(CollectApplications, TheThirtyTwoBitViewFollowsWithItsOwnRecordsAndKeys) {
    Machine m;
    m.AddApp("Same", "Native", "native.exe /u");
    m.AddRecord("Same", MakeRecord(RecordFields().Frequency(20)));
    // One name in both views, each with its own record.
    m.registry.PutString(kUninstall32 + "Same"s, "DisplayName", "Wow");
    m.registry.PutString(kUninstall32 + "Same"s, "UninstallString", "wow.exe /u");
    m.registry.Put(kArpCache32 + "Same"s, "SlowInfoCache", kRegBinary, MakeRecord(RecordFields().Frequency(1)));
    // A 32-bit entry whose only record is the other view's: it has none.
    m.registry.PutString(kUninstall32 + "Only32"s, "DisplayName", "Only");
    m.registry.PutString(kUninstall32 + "Only32"s, "UninstallString", "only.exe");
    m.AddRecord("Only32", MakeRecord(RecordFields().Frequency(20)));
    // Wrong-typed values and a record that is text: passed over or read as
    // text, never a crash.
    m.registry.PutDword(kUninstall32 + "Bad"s, "DisplayName", 7);
    m.registry.Put(kUninstall32 + "Bad"s, "UninstallString", kRegMultiSz, "a\0b\0\0"s);
    m.registry.PutString(kUninstall32 + "Bad"s, "NoRemove", "1");
    m.registry.Put(kArpCache32 + "Bad"s, "SlowInfoCache", kRegSz, std::string(552, 'x'));
    m.registry.AddKey(kUninstall32 + "Empty"s);

    const std::vector<Row> rows = CollectApplications(m.sources, kXp);
    std::map<std::string, const Row*> byKey;
    for (const Row& row : rows) EXPECT_TRUE(byKey.emplace(row.key, &row).second) << "two rows keyed " << row.key;
    ASSERT_EQ(rows.front().key, "Same");
    EXPECT_EQ(rows.front().cells,
              (std::vector<std::string>{"Native", "1.0", "2003-01-31", "Frequently", "native.exe /u", ""}));
    for (const Row& row : rows) {
        EXPECT_EQ(ApplicationView(row), row.key == "Same" ? 0u : kKeyWow64_32Key) << row.key;
        EXPECT_EQ(row.cells[kAppColView], row.key == "Same" ? "" : "32-bit") << row.key;
    }
    ASSERT_TRUE(byKey.count("32-bit\\Same"));
    const Row& wow = *byKey["32-bit\\Same"];
    EXPECT_EQ(ApplicationSubkey(wow), "Same");
    EXPECT_EQ(wow.cells, (std::vector<std::string>{"Wow", "1.0", "2003-01-31", "Rarely", "wow.exe /u", "32-bit"}));
    ASSERT_TRUE(byKey.count("32-bit\\Only32"));
    EXPECT_EQ(byKey["32-bit\\Only32"]->cells[kAppColFrequency], "");
    EXPECT_FALSE(byKey.count("32-bit\\Empty"));
    EXPECT_EQ(m.registry.OpenHandles(), 0u);
}

TEST(CollectApplications, WithoutAThirtyTwoBitViewTheListIsAsItWas) {
    // The 64-bit view alone, however many of its names look like a view's key.
    Machine m;
    m.AddApp("Wow6432Node", "Named like the node");
    m.AddApp("32-bit", "Named like the view");
    const std::vector<Row> rows = CollectApplications(m.sources, kXp);
    ASSERT_EQ(rows.size(), 2u);
    for (const Row& row : rows) {
        EXPECT_EQ(ApplicationView(row), 0u);
        EXPECT_EQ(ApplicationSubkey(row), row.key);
        EXPECT_EQ(row.cells[kAppColView], "");
    }
}

// A 32-bit Windows, which ignores the view flags: every view is its one registry.
class ViewBlindRegistry final : public Registry {
public:
    explicit ViewBlindRegistry(Registry& inner) : inner_(inner) {}
    RegError OpenKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) override {
        return inner_.OpenKey(parent, subKey, access & ~kKeyWow64Views, key);
    }
    RegError CreateKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) override {
        return inner_.CreateKey(parent, subKey, access & ~kKeyWow64Views, key);
    }
    RegError CloseKey(RegKey key) override { return inner_.CloseKey(key); }
    RegError QueryValue(RegKey key, const std::string& name, uint32_t* type, uint8_t* data, uint32_t* size) override {
        return inner_.QueryValue(key, name, type, data, size);
    }
    RegError EnumKey(RegKey key, uint32_t index, char* name, uint32_t* nameLength) override {
        return inner_.EnumKey(key, index, name, nameLength);
    }
    RegError EnumValue(RegKey key, uint32_t index, char* name, uint32_t* nameLength, uint32_t* type, uint8_t* data,
                       uint32_t* dataSize) override {
        return inner_.EnumValue(key, index, name, nameLength, type, data, dataSize);
    }
    RegError SetValue(RegKey key, const std::string& name, uint32_t type, const uint8_t* data, uint32_t size) override {
        return inner_.SetValue(key, name, type, data, size);
    }
    RegError DeleteValue(RegKey key, const std::string& name) override { return inner_.DeleteValue(key, name); }
    RegError DeleteKey(RegKey parent, const std::string& subKey, uint32_t) override {
        return inner_.DeleteKey(parent, subKey, 0);
    }

private:
    Registry& inner_;
};

TEST(CollectApplications, ASystemWithoutAThirtyTwoBitViewIsNotReadTwice) {
    Machine m;
    m.AddApp("Only", "Only one");
    ViewBlindRegistry blind(m.registry);
    fakes::FakeFileFacts facts;
    ApplicationSources sources{blind, facts};
    const std::vector<Row> rows = CollectApplications(sources, kXp);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].key, "Only");
}

struct ReportWorld {
    fakes::FakeFileSystem files;
    fakes::FakeSystemInfo system;
    fakes::FakeClock clock;
    fakes::FakePrompts prompts;
    fakes::FakeShell shell;
    ReportPorts report{files, system, clock, prompts, shell};
};

Row AppRow(const std::string& name, const std::string& command) {
    Row row(kAddRemoveColumns.size());
    row.cells = {name, "1.0", "2003-01-31", "Rarely", command, ""};
    return row;
}

TEST(AddRemoveReport, TwoLinesARowAndAnEmptyLineBetweenRows) {
    const struct {
        std::vector<Row> rows;
        const char* body;
    } cases[] = {
        {{}, ""},
        {{AppRow("App", "C:\\u.exe /x")}, "Program Name : App\r\nCommand      : C:\\u.exe /x\r\n"},
        {{AppRow("B", "b"), AppRow("A", "a")},
         "Program Name : B\r\nCommand      : b\r\n\r\nProgram Name : A\r\nCommand      : a\r\n"},
    };
    for (const auto& c : cases) {
        ReportWorld w;
        w.files.AddFile("C:\\r.txt", "banner\r\n");
        ASSERT_TRUE(printReportAddRemove(w.report, "C:\\r.txt", c.rows));
        EXPECT_EQ(*w.files.Content("C:\\r.txt"), "banner\r\n"s + c.body);
        EXPECT_TRUE(w.prompts.shown.empty());
    }
}

TEST(AddRemoveReport, AFailedWriteIsToldWithTheCriticalIcon) {
    ReportWorld w;
    w.system.errorTexts[5] = "Access is denied.\r\n";
    w.files.failIf = [](const std::string& op, const std::string&) { return op == "Append"; };
    EXPECT_FALSE(printReportAddRemove(w.report, "C:\\r.txt", {AppRow("App", "u")}));
    ASSERT_EQ(w.prompts.shown.size(), 1u);
    EXPECT_EQ(w.prompts.shown[0].text, "Error Occurred AddRemove prinReport: \r\nAccess is denied.");
    EXPECT_EQ(w.prompts.shown[0].icon, PromptIcon::Critical);
    EXPECT_EQ(w.prompts.shown[0].buttons, PromptButtons::Ok);
}

TEST(AddRemoveReport, FullReportAreaCollectsAnewWithoutLookingForIcons) {
    ReportWorld w;
    Machine m;
    m.AddApp("A", "App", "u.exe");
    m.registry.PutString(kUninstall + "A"s, "DisplayIcon", "C:\\Apps\\good.exe");
    m.AddApp("B", "Hidden");
    m.registry.PutDword(kUninstall + "B"s, "NoRemove", 1);
    m.AddRecord("A", MakeRecord(RecordFields().ImagePath(u"C:\\Apps\\good.exe")));
    FullReportPlatform platform{w.report};
    platform.registry = &m.registry;
    platform.facts = &m.facts;
    w.files.AddFile("C:\\r.txt", "");
    ASSERT_TRUE(WriteFullReportBody(platform, "C:\\r.txt", {"AddRemove"}));
    EXPECT_EQ(*w.files.Content("C:\\r.txt"), "Add/Remove\r\n----------\r\nProgram Name : App\r\nCommand      : u.exe\r\n");
    EXPECT_EQ(m.facts.DiskReads(), 0) << "a report shows no icons";

    Machine empty;
    platform.registry = &empty.registry;
    w.files.AddFile("C:\\r.txt", "");
    ASSERT_TRUE(WriteFullReportBody(platform, "C:\\r.txt", {"addremove"}));
    EXPECT_EQ(*w.files.Content("C:\\r.txt"), "Add/Remove\r\n----------\r\n(nothing listed)\r\n");
}

}  // namespace
}  // namespace corvane
