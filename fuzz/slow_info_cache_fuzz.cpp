// The cache record of an installed application, any 552 bytes of it: the
// texts its fields give must keep their forms whatever the bytes say, and a
// walk over a registry holding the record must show those same texts.
//
// Input: one byte of switches (bit 0: Windows 2000; bit 1: a decimal comma),
// then the record; a short input is filled up with zeros.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <regex>
#include <string>
#include <vector>

#include "applications/installed_applications.h"
#include "applications/slow_info_cache.h"
#include "fakes/fake_file_facts.h"
#include "fakes/fake_registry.h"

namespace {

void Check(bool ok) {
    if (!ok) std::abort();
}

bool ValidDate(const std::string& text) {
    static const std::regex form(R"((\d{4})-(\d\d)-(\d\d))");
    std::smatch m;
    if (!std::regex_match(text, m, form)) return false;
    const int year = std::stoi(m[1]), month = std::stoi(m[2]), day = std::stoi(m[3]);
    static const int days[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    return year >= 1601 && year <= 9999 && month >= 1 && month <= 12 && day >= 1 &&
           day <= (month == 2 && !leap ? 28 : days[month - 1]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvane;
    const uint8_t switches = size > 0 ? data[0] : 0;
    const bool windows2000 = switches & 1;
    const std::string decimalSign = switches & 2 ? "," : ".";
    std::vector<uint8_t> record(kSlowInfoCacheSize, 0);
    for (size_t i = 1; i < size && i - 1 < kSlowInfoCacheSize; ++i) record[i - 1] = data[i];
    const std::span<const uint8_t, kSlowInfoCacheSize> fields(record.data(), kSlowInfoCacheSize);

    const SlowInfoTexts texts = DecodeSlowInfoCache(fields, windows2000, decimalSign);
    static const std::regex sizeForm(R"(\d{1,4}[.,]\d)");
    Check(texts.size.empty() || (std::regex_match(texts.size, sizeForm) &&
                                 texts.size.find(decimalSign) != std::string::npos));
    Check(texts.lastUsed.empty() || ValidDate(texts.lastUsed));
    Check(texts.frequency.empty() || texts.frequency == "Rarely" || texts.frequency == "Occasionally" ||
          texts.frequency == "Frequently");
    // Each column is empty exactly where its field says "unknown" or overflows.
    Check(texts.size.empty() == (record[11] >= 128));
    Check(texts.frequency.empty() == (record[24] == 255));
    Check(!texts.lastUsed.empty() || record[23] == 0 || record[23] >= 128 || windows2000);

    const std::string path = SlowInfoImagePath(fields);
    Check(path.size() <= (kSlowInfoCacheSize - kSlowInfoImagePath) / 2);
    Check(path.find('\0') == std::string::npos);
    Check(record[kSlowInfoNameFlag] != 0 || path.empty());

    // The same record through the registry and the walk.
    fakes::FakeRegistry registry;
    fakes::FakeFileFacts facts;
    const std::string uninstall = std::string("HKLM\\") + kUninstallKey + "\\App";
    registry.PutString(uninstall, "DisplayName", "App");
    registry.PutString(uninstall, "UninstallString", "u.exe");
    registry.Put(std::string("HKLM\\") + kArpCacheKey + "\\App", "SlowInfoCache", kRegBinary,
                 std::string(record.begin(), record.end()));
    if (!path.empty()) facts.Add(path, {});
    ApplicationSources sources{registry, facts};
    ApplicationListOptions options;
    options.windowsVersionName = windows2000 ? "Microsoft Windows 2000" : "Microsoft Windows XP";
    options.decimalSign = decimalSign;
    const std::vector<Row> rows = CollectApplications(sources, options);
    Check(rows.size() == 1);
    Check(rows[0].cells[kAppColSize] == texts.size);
    Check(rows[0].cells[kAppColLastUsed] == texts.lastUsed);
    Check(rows[0].cells[kAppColFrequency] == texts.frequency);
    Check(rows[0].iconFile == path);
    Check(registry.OpenHandles() == 0);
    return 0;
}
