#pragma once
// What the file columns rely on of the version, search and short-name calls,
// and of the clock: run against the fakes natively and against the Win32
// adapters under Wine, so the two cannot drift apart.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/file_facts.h"

namespace corvane::contract {

// The files the contract looks at. `full` is shaped like fixture_full.exe: a
// version resource whose translation table names German (0x0407) in code page
// 1252, with CompanyName "Prüfwerk GmbH" and no Comments; `bare` has no version
// resource; `longName` is a file whose path has long names; `missing` does not
// exist. `folder` is the folder all of them lie in.
struct FileFactsFiles {
    std::string folder, full, bare, longName, missing;
    uint64_t fullSize = 0;
};

inline std::string TextOf(const VersionValue& value) { return std::string(value.address); }

inline void CheckFileFactsContract(FileFacts& facts, const FileFactsFiles& f) {
    EXPECT_EQ(facts.VersionInfoSize(f.missing), 0u);
    EXPECT_EQ(facts.VersionInfoSize(f.bare), 0u) << "no version resource";
    const uint32_t size = facts.VersionInfoSize(f.full);
    ASSERT_GT(size, 0u);
    std::vector<unsigned char> block(size);
    ASSERT_TRUE(facts.VersionInfo(f.full, block));

    const auto table = facts.QueryVersionValue(block, "\\VarFileInfo\\Translation");
    ASSERT_TRUE(table.has_value());
    EXPECT_EQ(table->length, 4u) << "the table's length is in bytes";
    EXPECT_EQ(std::string(table->address, 4), std::string("\x07\x04\xE4\x04", 4)) << "language, then code page";

    const char* begin = reinterpret_cast<const char*>(block.data());
    for (const char* key : {"\\StringFileInfo\\040704E4\\CompanyName", "\\StringFileInfo\\040704e4\\companyname"}) {
        const auto company = facts.QueryVersionValue(block, key);
        ASSERT_TRUE(company.has_value()) << key << ": names ignore case";
        EXPECT_GE(company->address, begin) << "values lie inside the block";
        EXPECT_LT(company->address, begin + block.size());
        EXPECT_EQ(TextOf(*company), "Pr\xFC" "fwerk GmbH") << "ANSI text, NUL-terminated";
    }
    EXPECT_FALSE(facts.QueryVersionValue(block, "\\StringFileInfo\\040704E4\\Comments").has_value())
        << "a string the file does not have";
    EXPECT_FALSE(facts.QueryVersionValue(block, "\\StringFileInfo\\040904B0\\CompanyName").has_value())
        << "a language the file has no strings for";

    EXPECT_TRUE(facts.Exists(f.folder)) << "a folder exists too";
    EXPECT_FALSE(facts.Exists(f.missing));
    EXPECT_FALSE(facts.Find(f.missing).has_value());
    const auto found = facts.Find(f.full);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->size, f.fullSize);
    EXPECT_FALSE(found->isFolder);
    EXPECT_NE(found->created.ticks, 0u);

    std::string buffer(165, '\0');
    EXPECT_EQ(facts.ShortPathName(f.missing, buffer), 0u);
    const uint32_t length = facts.ShortPathName(f.longName, buffer);
    ASSERT_TRUE(length > 0 && length < buffer.size()) << length;
    EXPECT_EQ(buffer[length], '\0') << "the result is the length without terminator";
    const std::string shortPath = buffer.substr(0, length);
    EXPECT_NE(shortPath, f.longName) << "long names have a short form";
    EXPECT_TRUE(facts.Exists(shortPath)) << "and the short form names the same file";
    std::string small(length, '\0');
    EXPECT_EQ(facts.ShortPathName(f.longName, small), length + 1) << "too small: the size needed";
}

inline void CheckClockContract(Clock& clock) {
    // 31 January 2003 14:05:09.250 UTC.
    const FileTime time{126'884'955'092'500'000ull};
    const auto s = clock.FileTimeToSystemTime(time);
    ASSERT_TRUE(s.has_value());
    EXPECT_EQ((std::vector<int>{s->year, s->month, s->day, s->dayOfWeek, s->hour, s->minute, s->second, s->milliseconds}),
              (std::vector<int>{2003, 1, 31, 5 /* a Friday */, 14, 5, 9, 250}));
    EXPECT_FALSE(clock.FileTimeToSystemTime(FileTime{0x8000'0000'0000'0000ull}).has_value()) << "out of range";
    EXPECT_TRUE(clock.FileTimeToLocalFileTime(time).has_value());

    // A default prefix and the fake both speak United States English.
    EXPECT_EQ(clock.DateSeparator(), "/");
    EXPECT_EQ(clock.DecimalSign(), ".");
    EXPECT_EQ(clock.ShortDate(*s), "1/31/2003");
    EXPECT_EQ(clock.LongTime(*s), "2:05:09 PM");
}

}  // namespace corvane::contract
