#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string>
#include <vector>

#include "contract/file_facts_contract.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_file_facts.h"
#include "fakes/fake_process_table.h"
#include "fakes/fake_file_system.h"
#include "foundations/file_description.h"
#include "foundations/file_facts_cache.h"
#include "processes/process_collector.h"
#include "startup_world.h"

namespace corvane {
namespace {

using fakes::FakeFile;
using fakes::FakeVersionResource;
using fakes::TranslationBytes;

// Everything a row reads of its file.
struct RowFacts {
    bool exists = false;
    std::array<std::string, 13> values;
    bool found = false;
    uint64_t size = 0;
    bool operator==(const RowFacts&) const = default;
};

RowFacts ReadAsARow(FileFacts& facts, Clock& clock, const std::string& path) {
    RowFacts row;
    row.exists = facts.Exists(path);
    clsProcess info(facts, clock);
    info.GetFileDescription(path);
    for (int16_t i = 0; i < clsProcess::kItemCount; ++i) row.values[static_cast<size_t>(i)] = info.getItem(i);
    if (const auto found = facts.Find(path)) {
        row.found = true;
        row.size = found->size;
    }
    return row;
}

FakeFile Program(const std::string& company, uint64_t size = 4096) {
    FakeFile file;
    file.version = FakeVersionResource{TranslationBytes(0x0409, 1252),
                                       {{"040904E4\\CompanyName", company}, {"040904E4\\ProductName", "Product"}}};
    file.created = fakes::MakeFileTime(2003, 1, 31, 12);
    file.size = size;
    return file;
}

void AddFiles(fakes::FakeFileFacts& facts) {
    facts.Add("C:\\Tools\\app.exe", Program("Maker"));
    FakeFile bare;  // no version resource: the date alone
    bare.created = fakes::MakeFileTime(2004, 2, 29, 12);
    bare.size = 100;
    facts.Add("C:\\Tools\\bare.exe", bare);
    facts.Add("C:\\Tools\\caf\xE9.exe", Program("Caf\xE9"));  // its capital \xC9 is another name here
    FakeFile noTable = Program("Hidden");  // a resource without translation table
    noTable.version->translation.clear();
    facts.Add("C:\\Tools\\notable.exe", noTable);
}

TEST(FileFactsCache, EachFileIsReadOnceAndAnsweredAsTheFileItself) {
    const struct {
        const char* fault;
        std::vector<std::string> asked;
        std::vector<std::string> readOnce;  // the files that must be read, each once
    } cases[] = {
        {"the same path read again", {"C:\\Tools\\app.exe", "C:\\Tools\\app.exe"}, {"C:\\Tools\\app.exe"}},
        {"paths that differ only in the case of ASCII letters read as two files",
         {"C:\\Tools\\app.exe", "c:\\tools\\APP.EXE", "C:\\TOOLS\\App.Exe"},
         {"C:\\Tools\\app.exe"}},
        {"paths that differ otherwise merged into one",
         {"C:\\Tools\\caf\xE9.exe", "C:\\Tools\\caf\xC9.exe", "C:\\Tools\\app.exe ", "C:\\Tools\\app.exe"},
         {"C:\\Tools\\caf\xE9.exe", "C:\\Tools\\caf\xC9.exe", "C:\\Tools\\app.exe ", "C:\\Tools\\app.exe"}},
        {"a missing file read again, or cached as existing",
         {"C:\\Tools\\gone.exe", "C:\\Tools\\GONE.exe", "C:\\Tools\\app.exe"},
         {"C:\\Tools\\gone.exe", "C:\\Tools\\app.exe"}},
        {"a file without version resource read again, or given another file's strings",
         {"C:\\Tools\\app.exe", "C:\\Tools\\bare.exe", "C:\\Tools\\bare.exe", "C:\\Tools\\app.exe"},
         {"C:\\Tools\\app.exe", "C:\\Tools\\bare.exe"}},
        {"a resource without translation table read again",
         {"C:\\Tools\\notable.exe", "C:\\Tools\\notable.exe"},
         {"C:\\Tools\\notable.exe"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.fault);
        fakes::FakeFileFacts plain, cached;
        AddFiles(plain);
        AddFiles(cached);
        fakes::FakeClock clock;
        FileFactsCache cache(cached);
        for (const std::string& path : c.asked) {
            EXPECT_EQ(ReadAsARow(cache, clock, path), ReadAsARow(plain, clock, path)) << path;
        }
        // What reading each file once costs, measured on a fresh fake.
        fakes::FakeFileFacts once;
        AddFiles(once);
        FileFactsCache onceCache(once);
        for (const std::string& path : c.readOnce) ReadAsARow(onceCache, clock, path);
        EXPECT_EQ(cached.DiskReads(), once.DiskReads());
        EXPECT_EQ(cache.FileCount(), c.readOnce.size());
    }
}

TEST(FileFactsCache, AFailedVersionReadStaysFailedAndShowsTheDateAlone) {
    fakes::FakeFileFacts facts;
    AddFiles(facts);
    facts.failVersionRead = true;
    fakes::FakeClock clock;
    FileFactsCache cache(facts);
    const RowFacts first = ReadAsARow(cache, clock, "C:\\Tools\\app.exe");
    EXPECT_EQ(ReadAsARow(cache, clock, "C:\\Tools\\app.exe"), first);
    EXPECT_EQ(first.values[kCompanyName], "");
    EXPECT_EQ(first.values[kCreatedOn], "01/31/2003");
    EXPECT_EQ(facts.calls["VersionInfo"], 1);
}

TEST(FileFactsCache, AQueryThatWritesIntoItsBlockLeavesTheNextCopyWhole) {
    // The narrow query may convert texts into the caller's block; the next
    // row must get the block as the file holds it.
    fakes::FakeFileFacts facts;
    AddFiles(facts);
    FileFactsCache cache(facts);
    const std::string path = "C:\\Tools\\app.exe";
    std::vector<unsigned char> first(cache.VersionInfoSize(path));
    ASSERT_TRUE(cache.VersionInfo(path, first));
    const std::vector<unsigned char> pristine = first;
    std::fill(first.begin(), first.end(), 0xCC);
    std::vector<unsigned char> second(cache.VersionInfoSize(path));
    ASSERT_TRUE(cache.VersionInfo(path, second));
    EXPECT_EQ(second, pristine);
    // A block of another size than the first read's is the caller's own business.
    std::vector<unsigned char> larger(pristine.size() + 16);
    EXPECT_TRUE(cache.VersionInfo(path, larger));
    EXPECT_EQ(facts.calls["VersionInfo"], 2);
}

TEST(FileFactsCache, ShortPathsKeepTheSpellingAndTheBufferRuleOfEachCall) {
    fakes::FakeFileFacts facts;
    FakeFile file = Program("Maker");
    file.shortPath = "C:\\PROGRA~1\\APP.EXE";
    facts.Add("C:\\Program Files\\app.exe", file);
    FileFactsCache cache(facts);
    for (int pass = 0; pass < 2; ++pass) {
        SCOPED_TRACE(pass == 0 ? "read" : "cached");
        std::string small(5, 'x');
        EXPECT_EQ(cache.ShortPathName("C:\\Program Files\\app.exe", small), 20u) << "too small: the size needed";
        EXPECT_EQ(small, "xxxxx") << "and the buffer untouched";
        std::string buffer(64, '\0');
        ASSERT_EQ(cache.ShortPathName("C:\\Program Files\\app.exe", buffer), 19u);
        EXPECT_EQ(buffer.substr(0, 19), "C:\\PROGRA~1\\APP.EXE");
        std::string missing(64, '\0');
        EXPECT_EQ(cache.ShortPathName("C:\\Program Files\\gone.exe", missing), 0u);
    }
    EXPECT_EQ(facts.calls["ShortPathName"], 3);
}

TEST(FileFactsContract, ThroughACache) {
    fakes::FakeFileFacts facts;
    FakeFile full = Program("Pr\xFC" "fwerk GmbH", 52224);
    full.version = FakeVersionResource{TranslationBytes(0x0407, 1252),
                                       {{"040704E4\\CompanyName", "Pr\xFC" "fwerk GmbH"}}};
    facts.Add("C:\\facts\\fixture_full.exe", full);
    facts.Add("C:\\facts\\fixture_bare.exe", FakeFile{});
    FakeFile longName;
    longName.shortPath = "C:\\facts\\AVERYL~1.EXE";
    facts.Add("C:\\facts\\A very long file name.exe", longName);
    FakeFile folder;
    folder.isFolder = true;
    facts.Add("C:\\facts", folder);
    FileFactsCache cache(facts);
    // Twice: first through to the fake, then from what the cache kept.
    for (int pass = 0; pass < 2; ++pass) {
        contract::CheckFileFactsContract(cache, {"C:\\facts", "C:\\facts\\fixture_full.exe", "C:\\facts\\fixture_bare.exe",
                                                 "C:\\facts\\A very long file name.exe", "C:\\facts\\missing.exe",
                                                 52224});
    }
}

// ---- the collectors with and without the cache ----

using testing_startup::World;

// A machine whose items name three programs over and over, in several
// spellings, beside a missing file, a file without version resource and
// shortcuts to the same programs.
void FillRepeatedWorld(World& w) {
    w.AddProgram("C:\\Apps\\one.exe", 1536);
    w.AddProgram("C:\\Apps\\two.exe", 20000);
    FakeFile bare;
    bare.created = fakes::MakeFileTime(2005, 5, 5, 5);
    bare.size = 10;
    w.facts.Add("C:\\Apps\\bare.exe", bare);
    w.files.AddFile(std::string(testing_startup::kApp) + "\\SusProcess.qdl", "two.exe\r\n");
    const char* commands[] = {"C:\\Apps\\one.exe /a", "\"C:\\Apps\\one.exe\" /b", "c:\\apps\\ONE.EXE",
                              "C:\\Apps\\two.exe",    "C:\\Apps\\bare.exe -x",  "C:\\Apps\\gone.exe",
                              "C:\\APPS\\TWO.EXE /q", "%ProgramFiles%\\x.exe"};
    for (int i = 0; i < 40; ++i) {
        w.registry.PutString(i % 2 ? testing_startup::kLMRun : testing_startup::kCURun, "Item " + std::to_string(i),
                             commands[i % 8]);
    }
    w.AddShortcut(std::string(testing_startup::kUserStartup) + "\\One.lnk", "C:\\Apps\\one.exe", "/tray");
    w.AddShortcut(std::string(testing_startup::kCommonStartup) + "\\Two.lnk", "C:\\APPS\\two.exe", "",
                  "C:\\Apps\\one.exe,1");
}

TEST(FileFactsCache, StartupRowsWithTheCacheAreTheRowsWithout) {
    World w;
    FillRepeatedWorld(w);
    const StartupList plain = w.Collect();
    const int plainReads = w.facts.DiskReads();
    w.facts.calls.clear();

    FileFactsCache cache(w.facts);
    StartupSources sources{w.registry, w.files, cache, w.clock, w.environment, w.shortcuts};
    const StartupList cached = CollectStartupItems(sources, w.Places(), "All");

    ASSERT_EQ(cached.rows.size(), plain.rows.size());
    ASSERT_EQ(plain.rows.size(), 42u);
    for (size_t i = 0; i < plain.rows.size(); ++i) {
        EXPECT_EQ(cached.rows[i].cells, plain.rows[i].cells) << "row " << i;
        EXPECT_EQ(cached.rows[i].mark, plain.rows[i].mark) << "row " << i;
        EXPECT_EQ(cached.rows[i].iconFile, plain.rows[i].iconFile) << "row " << i;
        EXPECT_EQ(cached.rows[i].iconIndex, plain.rows[i].iconIndex) << "row " << i;
    }
    // Five distinct files and the expanded path, whatever the rows' spellings.
    EXPECT_LE(w.facts.calls["VersionInfo"], 2);
    EXPECT_LE(w.facts.calls["Exists"], 6);
    EXPECT_LT(w.facts.DiskReads(), plainReads / 5);
}

TEST(FileFactsCache, ANewFillSeesTheFilesAsTheyAreNow) {
    // The pane makes a cache per fill: after a command changed a file, the
    // next fill must not show what the last one read.
    World w;
    w.AddProgram("C:\\Apps\\one.exe", 1536);
    w.AddProgram("C:\\Apps\\two.exe", 1536);
    w.registry.PutString(testing_startup::kCURun, "One", "C:\\Apps\\one.exe");
    w.registry.PutString(testing_startup::kCURun, "Two", "C:\\Apps\\two.exe");
    auto fill = [&] {
        FileFactsCache cache(w.facts);
        StartupSources sources{w.registry, w.files, cache, w.clock, w.environment, w.shortcuts};
        return CollectStartupItems(sources, w.Places(), "All").rows;
    };
    const auto before = fill();
    ASSERT_EQ(before.size(), 2u);
    EXPECT_EQ(before[0].cells[kStartupColSize], "1.5");

    w.facts.Remove("C:\\Apps\\one.exe");
    FakeFile changed = Program("Other Maker", 10240);
    w.facts.Add("C:\\Apps\\two.exe", changed);
    const auto after = fill();
    ASSERT_EQ(after.size(), 2u);
    EXPECT_EQ(after[0].cells[kStartupColSize], "") << "deleted: the short row";
    EXPECT_EQ(after[0].iconFile, "");
    EXPECT_EQ(after[1].cells[kStartupColSize], "10.0");
    EXPECT_EQ(after[1].cells[kStartupColCompany], "Other Maker");
}

TEST(FileFactsCache, ProcessRowsWithTheCacheAreTheRowsWithout) {
    fakes::FakeProcessTable table;
    fakes::FakeFileFacts facts;
    fakes::FakeClock clock;
    fakes::FakeFileSystem files;
    files.AddFolder("C:\\Corvane");
    files.AddFile("C:\\Corvane\\SusProcess.qdl", "worker.exe\r\n");
    facts.Add("C:\\Apps\\worker.exe", Program("Maker"));
    FakeFile bare;
    bare.size = 3000;
    facts.Add("C:\\Apps\\bare.exe", bare);
    const char* paths[] = {"C:\\Apps\\worker.exe", "C:\\APPS\\WORKER.EXE", "C:\\Apps\\bare.exe",
                           "C:\\Apps\\gone.exe"};
    for (uint32_t id = 1; id <= 40; ++id) table.Add(id * 4, paths[id % 4]);
    ProcessSources plainSources{table, facts, clock, files};
    const ProcessListOptions options{"C:\\Corvane", "Microsoft Windows XP", true};
    const std::vector<ProcessRow> plain = CollectProcessRows(plainSources, options);
    facts.calls.clear();

    FileFactsCache cache(facts);
    ProcessSources cachedSources{table, cache, clock, files};
    const std::vector<ProcessRow> cached = CollectProcessRows(cachedSources, options);
    ASSERT_EQ(plain.size(), 40u);
    ASSERT_EQ(cached.size(), plain.size());
    for (size_t i = 0; i < plain.size(); ++i) {
        EXPECT_EQ(cached[i].key, plain[i].key);
        EXPECT_EQ(cached[i].cells, plain[i].cells) << "row " << i;
        EXPECT_EQ(cached[i].mark, plain[i].mark) << "row " << i;
        EXPECT_EQ(cached[i].iconFile, plain[i].iconFile) << "row " << i;
    }
    EXPECT_EQ(facts.calls["VersionInfo"], 1) << "one file with a version resource, in two spellings";
}

}  // namespace
}  // namespace corvane
