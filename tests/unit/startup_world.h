#pragma once
// A machine in memory for the startup tests: both Run keys, both startup
// folders, the program's folder with its stores, and the files the items run.
// The machine is a 64-bit Windows: the fake registry keeps the 32-bit view
// of HKLM\Software under Wow6432Node, where kLMRun32 reaches its Run key.
#include <string>

#include "fakes/fake_clock.h"
#include "fakes/fake_file_facts.h"
#include "fakes/fake_file_system.h"
#include "fakes/fake_registry.h"
#include "fakes/fake_shortcuts.h"
#include "fakes/fakes.h"
#include "startup/startup_commands.h"
#include "startup/startup_items.h"

namespace corvane::testing_startup {

inline constexpr const char* kApp = "C:\\Corvane";
inline constexpr const char* kCommonStartup = "C:\\All Users\\Start Menu\\Programs\\Startup";
inline constexpr const char* kUserStartup = "C:\\Me\\Start Menu\\Programs\\Startup";
inline constexpr const char* kLMRun = "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";
inline constexpr const char* kCURun = "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";
inline constexpr const char* kLMRun32 = "HKLM\\Software\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\Run";
// Where Windows 8 and later keep the user's choices of what starts.
inline constexpr const char* kLMApproved = "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\StartupApproved";
inline constexpr const char* kCUApproved = "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\StartupApproved";

// A StartupApproved value: four bytes of flags, then the FILETIME of the change.
inline std::string ApprovalBytes(uint32_t flags, FileTime changed) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) bytes += static_cast<char>((flags >> (8 * i)) & 0xFF);
    for (int i = 0; i < 8; ++i) bytes += static_cast<char>((changed.ticks >> (8 * i)) & 0xFF);
    return bytes;
}

struct World {
    fakes::FakeRegistry registry;
    fakes::FakeFileSystem files;
    fakes::FakeFileFacts facts;
    fakes::FakeClock clock;
    fakes::FakeEnvironment environment;
    fakes::FakeShortcuts shortcuts{files};
    fakes::FakePrompts prompts;
    fakes::FakeSystemInfo system;
    StartupSources sources{registry, files, facts, clock, environment, shortcuts};
    CommandPorts ports{registry, files, prompts, system};

    World() {
        const std::string shellFolders = "\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
        registry.PutString("HKLM" + shellFolders, "Common Startup", kCommonStartup);
        registry.PutString("HKCU" + shellFolders, "Startup", kUserStartup);
        registry.AddKey(kLMRun);
        registry.AddKey(kCURun);
        files.AddFolder(kCommonStartup);
        files.AddFolder(kUserStartup);
        files.AddFolder(kApp);
        MakeStoreFolders(files, kApp);
        files.changes = 0;
        system.errorTexts[5] = "Access is denied.\r\n";
        system.errorTexts[3] = "The system cannot find the path specified.\r\n";
    }

    // A program file with a version resource naming its company, product and description.
    void AddProgram(const std::string& path, uint64_t size = 3 * 1024 + 512) {
        fakes::FakeFile file;
        file.version = fakes::FakeVersionResource{fakes::TranslationBytes(0x0409, 1252),
                                                  {{"040904E4\\CompanyName", "Maker"},
                                                   {"040904E4\\ProductName", "Product"},
                                                   {"040904E4\\FileDescription", "What it does"}}};
        file.created = fakes::MakeFileTime(2003, 1, 31, 12, 0, 0);
        file.size = size;
        facts.Add(path, file);
    }

    void AddShortcut(const std::string& path, const std::string& target, const std::string& arguments = "",
                     const std::string& iconLocation = ",0") {
        files.AddFile(path, fakes::FakeShortcutBytes(target, arguments, iconLocation));
    }

    StartupPlaces Places() { return LoadStartupPlaces(sources, kApp); }
    StartupList Collect(const std::string& node = "All") { return CollectStartupItems(sources, Places(), node); }
};

}  // namespace corvane::testing_startup
