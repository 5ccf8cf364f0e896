// The Extensions list: 20 Chrome profiles with 50 extensions each, their
// Preferences files about 1 MB as a browser in use leaves them, collected
// into records and rows as the list and the reports do it, against reading
// and parsing the same files bare (CreateFileA, ReadFile, the JSON parser),
// side by side in one run. The files are the bench's own, below
// C:\corvane-bench-extensions, named to the collector as the user's local
// application data.
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "bench/harness.h"
#include "browser/browser_extensions.h"
#include "platform/win32/adapters.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_hasher_win32.h"
#include "platform/win32/file_system_win32.h"
#include "platform/win32/registry_win32.h"

using namespace corvane;
using namespace corvane::bench;

namespace {

constexpr const char* kRoot = "C:\\corvane-bench-extensions";
constexpr int kExtensions = 50;
int profiles = 20;  // two with --quick, which proves the bench works and times nothing
const std::string kUserData = std::string(kRoot) + "\\Google\\Chrome\\User Data";

void Put(const std::string& path, const std::string& text) {
    for (size_t at = path.find('\\', 3); at != std::string::npos; at = path.find('\\', at + 1)) {
        CreateDirectoryA(path.substr(0, at).c_str(), nullptr);
    }
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    CloseHandle(file);
}

std::string Id(int profile, int extension) {
    std::string id(32, 'a');
    id[0] = static_cast<char>('a' + profile % 16);
    id[1] = static_cast<char>('a' + extension % 16);
    id[2] = static_cast<char>('a' + extension / 16);
    return id;
}

std::string ProfileFolder(int profile) { return kUserData + "\\Profile " + std::to_string(profile); }

// A profile as a browser in use leaves it: the extensions' entries among a
// megabyte of other preferences (sites, engagement scores, sync state).
void MakeMachine() {
    std::string localState = R"({"profile":{"info_cache":{)";
    for (int p = 0; p < profiles; ++p) {
        localState += (p ? "," : "") + std::string("\"Profile ") + std::to_string(p) + R"(":{"name":"Person )" +
                      std::to_string(p) + "\"}";
        std::string settings;
        for (int e = 0; e < kExtensions; ++e) {
            const std::string id = Id(p, e);
            settings += (e ? "," : "") + ("\"" + id + R"(":{"location":1,"path":")" + id +
                                          R"(\\1.0.)" + std::to_string(e) + R"(_0","from_webstore":true,)" +
                                          R"("first_install_time":"13340000000000000","disable_reasons":[)" +
                                          (e % 7 ? "" : "1") + R"(],"granted_permissions":{"api":["storage","tabs",)" +
                                          R"("contextMenus"],"explicit_host":["https://*/*"]}})");
            const std::string folder = ProfileFolder(p) + "\\Extensions\\" + id + "\\1.0." + std::to_string(e) + "_0";
            const bool localised = e % 2 == 0;
            Put(folder + "\\manifest.json",
                R"({"manifest_version":3,"name":")" + std::string(localised ? "__MSG_appName__" : "Extension") +
                    R"(","version":"1.0.)" + std::to_string(e) + R"(","default_locale":"en","description":")" +
                    std::string(1500, 'd') + R"(","permissions":["storage","tabs"]})");
            if (localised) Put(folder + "\\_locales\\en\\messages.json", R"({"appName":{"message":"Extension"}})");
        }
        std::string padding;
        for (int site = 0; padding.size() < 1000000; ++site) {
            padding += (site ? "," : "") + ("\"https://site" + std::to_string(site) + R"(.example:443,*":)" +
                                            R"({"last_modified":"13340000000000000","setting":{"rawScore":4.5,)" +
                                            R"("pointsAddedToday":0.0,"lastEngagementTime":1.334e16}})");
        }
        Put(ProfileFolder(p) + "\\Preferences", R"({"extensions":{"settings":{)" + settings +
                                                    R"(}},"profile":{"content_settings":{"exceptions":{"engagement":{)" +
                                                    padding + "}}}}}");
        Put(ProfileFolder(p) + "\\Secure Preferences", R"({"protection":{"macs":{}}})");
    }
    Put(kUserData + "\\Local State", localState + "}}}");
}

void RemoveFolder(const std::string& folder) {
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA((folder + "\\*").c_str(), &data);
    if (find == INVALID_HANDLE_VALUE) return;
    do {
        const std::string name = data.cFileName;
        if (name == "." || name == "..") continue;
        if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) RemoveFolder(folder + "\\" + name);
        else DeleteFileA((folder + "\\" + name).c_str());
    } while (FindNextFileA(find, &data));
    FindClose(find);
    RemoveDirectoryA(folder.c_str());
}

// The user's local application data is the bench's folder.
class BenchEnvironment final : public Environment {
public:
    std::string Expand(const std::string& text, size_t size) override {
        std::string expanded = text == "%LOCALAPPDATA%" ? std::string(kRoot) : text == "%APPDATA%" ? "" : text;
        expanded.resize(size, '\0');
        return expanded;
    }
};

// ---- the bare calls ----

std::string ReadBare(const std::string& path) {
    HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                              nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return "";
    std::string text(GetFileSize(file, nullptr), '\0');
    DWORD read = 0;
    ReadFile(file, text.data(), static_cast<DWORD>(text.size()), &read, nullptr);
    CloseHandle(file);
    return text;
}

size_t ParseBare(const std::string& path) {
    const nlohmann::json document = nlohmann::json::parse(ReadBare(path), nullptr, false);
    return document.is_discarded() ? 0 : document.size();
}

// Every file the list reads, each read and parsed once: Local State, each
// profile's two preference files, each manifest and each message file.
size_t Bare() {
    size_t seen = ParseBare(kUserData + "\\Local State");
    for (int p = 0; p < profiles; ++p) {
        seen += ParseBare(ProfileFolder(p) + "\\Secure Preferences") + ParseBare(ProfileFolder(p) + "\\Preferences");
        for (int e = 0; e < kExtensions; ++e) {
            const std::string folder =
                ProfileFolder(p) + "\\Extensions\\" + Id(p, e) + "\\1.0." + std::to_string(e) + "_0";
            seen += ParseBare(folder + "\\manifest.json");
            if (e % 2 == 0) seen += ParseBare(folder + "\\_locales\\en\\messages.json");
        }
    }
    return seen;
}

}  // namespace

int main(int argc, char** argv) {
    ParseArgs(argc, argv);
    if (QuickMode()) profiles = 2;
    RemoveFolder(kRoot);
    MakeMachine();
    Win32Registry registry;
    Win32FileSystem files;
    Win32Clock clock;
    Win32TextEncoding encoding;
    BenchEnvironment environment;
    ExtensionSources sources{registry, files, clock, environment, &encoding};

    size_t rows = 0, bareSeen = 0;
    auto ours = [&] {
        std::vector<Row> shown;
        for (const ExtensionRecord& record : CollectExtensions(sources)) shown.push_back(ExtensionRow(record, &encoding));
        rows = shown.size();
    };
    auto bare = [&] { bareSeen = Bare(); };
    // The sides take turns, after one warming run each, so a busy machine slows both alike.
    std::vector<double> oursSeconds, bareSeconds;
    if (!QuickMode()) ours(), bare();
    for (int run = 0; run < (QuickMode() ? 1 : 11); ++run) {
        oursSeconds.push_back(TimeOnce(ours));
        bareSeconds.push_back(TimeOnce(bare));
    }
    const Measurement oursTime = Median("extensions: records and rows", oursSeconds);
    const Measurement bareTime = Median("extensions: files read and parsed bare", bareSeconds);
    std::printf("%zu rows from %d profiles (bare: %zu top-level members)\n", rows, profiles, bareSeen);
    PrintRatio(oursTime, bareTime, 1.3);
    RemoveFolder(kRoot);
    return rows >= static_cast<size_t>(profiles * kExtensions) ? 0 : 1;
}
