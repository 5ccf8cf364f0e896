// The cache record of an installed application, any 552 bytes of it: the
// texts its fields give must keep their forms whatever the bytes say, and a
// walk over a registry holding the record must show those same texts.
//
// Input: one byte of switches (bit 0: Windows 2000; bit 1: a decimal comma),
// then the record; a short input is filled up with zeros.
#include <chrono>
#include <regex>

#include "applications/installed_applications.h"
#include "applications/slow_info_cache.h"
#include "fakes/fake_file_facts.h"
#include "fakes/fake_registry.h"
#include "fuzz_input.h"

using namespace corvane;

// yyyy-mm-dd, a day the calendar has, from 1601 on.
static bool ValidDate(const std::string& text) {
    unsigned year = 0, month = 0, day = 0;
    return std::regex_match(text, std::regex(R"(\d{4}-\d\d-\d\d)")) && std::sscanf(text.c_str(), "%u-%u-%u", &year, &month, &day) == 3 &&
           year >= 1601 && std::chrono::year_month_day(std::chrono::year(static_cast<int>(year)), std::chrono::month(month), std::chrono::day(day)).ok();
}

FUZZ_PROPERTY(in) {
    const uint8_t switches = in.Byte();
    const bool windows2000 = switches & 1;
    const std::string decimalSign = switches & 2 ? "," : ".", bytes = in.Bytes(kSlowInfoCacheSize);
    std::vector<uint8_t> record(kSlowInfoCacheSize);
    std::copy(bytes.begin(), bytes.end(), record.begin());
    const std::span<const uint8_t, kSlowInfoCacheSize> fields(record.data(), kSlowInfoCacheSize);

    const SlowInfoTexts texts = DecodeSlowInfoCache(fields, windows2000, decimalSign);
    CHECK(texts.size.empty() || (std::regex_match(texts.size, std::regex(R"(\d{1,4}[.,]\d)")) &&
                                 texts.size.find(decimalSign) != std::string::npos));
    CHECK(texts.lastUsed.empty() || ValidDate(texts.lastUsed));
    CHECK(std::regex_match(texts.frequency, std::regex("|Rarely|Occasionally|Frequently")));
    // Each column is empty exactly where its field says "unknown" or overflows.
    CHECK(texts.size.empty() == (record[11] >= 128) && texts.frequency.empty() == (record[24] == 255));
    CHECK(!texts.lastUsed.empty() || record[23] == 0 || record[23] >= 128 || windows2000);
    const std::string path = SlowInfoImagePath(fields);
    CHECK(path.size() <= (kSlowInfoCacheSize - kSlowInfoImagePath) / 2 && path.find('\0') == std::string::npos &&
          (record[kSlowInfoNameFlag] != 0 || path.empty()));

    // The same record through the registry and the walk.
    fakes::FakeRegistry registry;
    fakes::FakeFileFacts facts;
    for (const char* value : {"DisplayName", "UninstallString"}) registry.PutString(std::string("HKLM\\") + kUninstallKey + "\\App", value, "App");
    registry.Put(std::string("HKLM\\") + kArpCacheKey + "\\App", "SlowInfoCache", kRegBinary, std::string(record.begin(), record.end()));
    if (!path.empty()) facts.Add(path, {});
    ApplicationSources sources{registry, facts};
    const std::vector<Row> rows = CollectApplications(
        sources, {.windowsVersionName = windows2000 ? "Microsoft Windows 2000" : "Microsoft Windows XP", .decimalSign = decimalSign});
    CHECK(rows.size() == 1 && rows[0].cells[kAppColSize] == texts.size && rows[0].cells[kAppColLastUsed] == texts.lastUsed);
    CHECK(rows[0].cells[kAppColFrequency] == texts.frequency && rows[0].iconFile == path && registry.OpenHandles() == 0);
}
