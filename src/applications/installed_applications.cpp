#include "applications/installed_applications.h"

#include <algorithm>

#include "foundations/registry.h"
#include "foundations/settings.h"

namespace corvane {

namespace {

bool Holds(const std::string& text, const char* part) { return text.find(part) != std::string::npos; }

// The icon a DisplayIcon names: "path,number" with the quotes taken out.
// A comma in first place cuts nothing off, so the whole text is the path.
void IconFromDisplayIcon(std::string displayIcon, std::string& path, int32_t& index) {
    displayIcon.erase(std::remove(displayIcon.begin(), displayIcon.end(), '"'), displayIcon.end());
    const size_t comma = displayIcon.rfind(',');
    if (comma != std::string::npos && comma >= 1) {
        index = IconIndexFromText(displayIcon.substr(comma + 1));
        path = displayIcon.substr(0, comma);
    } else {
        index = 0;
        path = std::move(displayIcon);
    }
}

// What tells a 32-bit view's row key from a subkey name: a name holds no backslash.
std::string KeyPrefix32() { return std::string(kView32Text) + "\\"; }

// The rows of one registry view, appended to `rows`.
void CollectInView(ApplicationSources& sources, const ApplicationListOptions& options, uint32_t view,
                   std::vector<Row>& rows) {
    RegistryInView registry(sources.registry, view);
    // Windows 95 and 98 kept no such record; Windows 2000's control panel
    // showed its dates a day later than the others.
    const bool readRecords = !Holds(options.windowsVersionName, "98") && !Holds(options.windowsVersionName, "95");
    const bool windows2000 = Holds(options.windowsVersionName, "2000");

    std::vector<std::string> names;
    EnumRegKeys(registry, kHKeyLocalMachine, kUninstallKey, names);
    // Each reader opens the entry's key anew; below keys held open for the
    // fill, the system walks one name for it instead of seven.
    RegKey uninstall = 0, cache = 0;
    if (!names.empty() && registry.OpenKey(kHKeyLocalMachine, kUninstallKey, kKeyRead, uninstall) != kRegOk) return;
    if (!names.empty() && readRecords && registry.OpenKey(kHKeyLocalMachine, kArpCacheKey, kKeyRead, cache) != kRegOk) {
        cache = 0;
    }
    std::vector<uint8_t> record;
    for (const std::string& name : names) {
        if (rows.size() >= kMaxRows) break;
        if (GetRegDword(registry, uninstall, name, "NoRemove") == 1) continue;
        std::string command = GetRegString(registry, uninstall, name, "UninstallString");
        if (command.empty()) continue;
        std::string displayName = GetRegString(registry, uninstall, name, "DisplayName");
        if (displayName.empty()) continue;
        std::string displayIcon = GetRegString(registry, uninstall, name, "DisplayIcon");

        bool recordAtHand = false;
        if (cache != 0) recordAtHand = GetRegBinary(registry, cache, name, "SlowInfoCache", record, kSlowInfoCacheSize);
        // GetRegBinary answers true only for a record of exactly this size.
        const auto fields = [&record] {
            return std::span<const uint8_t, kSlowInfoCacheSize>(record.data(), kSlowInfoCacheSize);
        };

        Row row(kAddRemoveColumns.size());
        row.key = view ? KeyPrefix32() + name : name;
        row.cells[kAppColName] = std::move(displayName);
        row.cells[kAppColCommand] = std::move(command);
        row.cells[kAppColView] = TextOfView(view);
        if (options.icons) {
            // A DisplayIcon is the icon's one source, even when its file is
            // missing; only without one does the record's program stand in.
            std::string path;
            int32_t index = 0;
            if (!displayIcon.empty()) {
                IconFromDisplayIcon(std::move(displayIcon), path, index);
            } else if (recordAtHand) {
                path = SlowInfoImagePath(fields(), sources.ansi);
            }
            if (!path.empty() && sources.facts.Exists(path)) {
                row.iconFile = std::move(path);
                row.iconIndex = index;
            }
        }
        if (recordAtHand) {
            SlowInfoTexts texts = DecodeSlowInfoCache(fields(), windows2000, options.decimalSign);
            row.cells[kAppColSize] = std::move(texts.size);
            row.cells[kAppColLastUsed] = std::move(texts.lastUsed);
            row.cells[kAppColFrequency] = std::move(texts.frequency);
        }
        rows.push_back(std::move(row));
    }
    if (cache != 0) registry.CloseKey(cache);
    if (uninstall != 0) registry.CloseKey(uninstall);
}

}  // namespace

std::vector<Row> CollectApplications(ApplicationSources& sources, const ApplicationListOptions& options) {
    std::vector<Row> rows;
    for (uint32_t view : MachineRegistryViews(sources.registry)) CollectInView(sources, options, view, rows);
    return rows;
}

std::string ApplicationSubkey(const Row& row) {
    const std::string prefix = KeyPrefix32();
    return row.key.rfind(prefix, 0) == 0 ? row.key.substr(prefix.size()) : row.key;
}

uint32_t ApplicationView(const Row& row) {
    return row.key.rfind(KeyPrefix32(), 0) == 0 ? kKeyWow64_32Key : 0;
}

std::vector<Row> CollectApplications(ApplicationSources& sources, const std::string& windowsVersionName) {
    ApplicationListOptions options;
    options.windowsVersionName = windowsVersionName;
    return CollectApplications(sources, options);
}

std::string sizeText(uint8_t b0, uint8_t b1, uint8_t b2, uint8_t b3, const std::string& decimalSign) {
    return SizeInMegabytes(b0, b1, b2, b3, decimalSign);
}

std::string frequencyText(uint8_t count) { return FrequencyWord(count); }

std::string lastUsedText(uint8_t b0, uint8_t b1, uint8_t b2, uint8_t b3, bool windows2000) {
    return LastUsedDate(b0, b1, b2, b3, windows2000);
}

}  // namespace corvane
