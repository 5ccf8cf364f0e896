#pragma once
// One machine in memory with every area, every kind of place and the data
// that once broke the readers, for the golden files: processes, startup items
// of every source, store and other place, the browser's extensions and
// addresses, installed applications with cache records good and hostile.
// Names carry Windows-1252 letters, quotes, commas and CR LF. Its registry is
// tests/golden/machine.reg, its files and processes tests/golden/machine.txt.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "fakes/fake_clock.h"
#include "fakes/fake_file_facts.h"
#include "fakes/fake_file_hasher.h"
#include "fakes/fake_file_system.h"
#include "fakes/fake_process_table.h"
#include "fakes/fake_registry.h"
#include "fakes/fake_shortcuts.h"
#include "fakes/fakes.h"
#include "foundations/reg_file.h"
#include "platform/text_encoding.h"
#include "shell/report_cli.h"
#include "startup/run_key_store.h"
#include "support/golden.h"

namespace corvane::golden {

inline constexpr const char* kApp = "C:\\Corvane";
inline constexpr const char* kCommonStartup = "C:\\All Users\\Start Menu\\Programs\\Startup";
inline constexpr const char* kUserStartup = "C:\\Me\\Start Menu\\Programs\\Startup";
inline const std::string kLM = "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion";
inline const std::string kCU = "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion";
// Class ids of helper objects, told apart by their first letter.
inline constexpr const char* kA = "{aaaaaaaa-1111-2222-3333-444444444444}";
inline constexpr const char* kC = "{cccccccc-1111-2222-3333-444444444444}";

struct Machine {
    fakes::FakeRegistry registry;
    fakes::FakeFileSystem files;
    fakes::FakeFileFacts facts;
    fakes::FakeClock clock;
    fakes::FakeEnvironment environment;
    fakes::FakeShortcuts shortcuts{files};
    fakes::FakeProcessTable processes;
    fakes::FakeSystemInfo system;
    fakes::FakeShell shell;
    fakes::FakeFileHasher hasher;
    Windows1252Encoding encoding;
    ConsolePrompts prompts;
    ReportPorts report{files, system, clock, prompts, shell};
    FullReportPlatform platform{report};

    // A program with a version resource in `block`'s language (empty: none).
    void Program(const std::string& path, uint64_t size, const std::string& block = "040704E4",
                 const std::string& company = "Pr\xFC" "fwerk GmbH", const std::string& shortPath = "") {
        fakes::FakeFile file;
        file.created = fakes::MakeFileTime(2003, 1, 31, 23, 30);  // a day later in local time
        file.size = size;
        file.shortPath = shortPath;
        if (!block.empty()) {
            const uint16_t language = static_cast<uint16_t>(std::stoul(block.substr(0, 4), nullptr, 16));
            const uint16_t codePage = static_cast<uint16_t>(std::stoul(block.substr(4), nullptr, 16));
            file.version = fakes::FakeVersionResource{fakes::TranslationBytes(language, codePage),
                                                      {{block + "\\CompanyName", company},
                                                       {block + "\\ProductName", "Product"},
                                                       {block + "\\FileDescription", "Does\r\nthings"},
                                                       {block + "\\FileVersion", "1.0"}}};
        }
        facts.Add(path, file);
        hasher.Add(path, "h" + std::to_string(size));
    }
    void Link(const std::string& path, const std::string& target, const std::string& args = "",
              const std::string& icon = ",0") {
        files.AddFile(path, fakes::FakeShortcutBytes(target, args, icon));
    }

    Machine();

    // `r `n `t and `xNN in machine.txt.
    static std::string Unescaped(const std::string& text) {
        std::string out;
        for (size_t i = 0; i < text.size(); ++i) {
            const char c = text[i] == '`' && i + 1 < text.size() ? text[++i] : 0;
            if (c == 'x') out += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16)), i += 2;
            else out += c == 'r' ? '\r' : c == 'n' ? '\n' : c == 't' ? '\t' : c ? c : text[i];
        }
        return out;
    }
    static std::string Utf16(const std::string& text) {
        std::string bytes("\xFF\xFE", 2);
        for (const char c : text) bytes += std::string{c, '\0'};
        return bytes;
    }
};

inline Machine::Machine() {
    system.version = {5, 1, 2600, 2, "Service Pack 3"};
    system.computerName = "PC1";
    system.userName = "M\xFCller";
    system.errorTexts = {{3, "The system cannot find the path specified.\r\n"}, {5, "Access is denied.\r\n"}};
    clock.utcOffsetMinutes = 60;
    environment.variables = {{"WINDIR", "C:\\Windows"}, {"SystemRoot", "C:\\Windows"},
                             {"ProgramFiles", "C:\\Program Files"}};
    platform.registry = &registry;
    platform.facts = &facts;
    platform.environment = &environment;
    platform.shortcuts = &shortcuts;
    platform.processes = &processes;
    platform.encoding = &encoding;
    platform.appPath = kApp;
    files.AddFolder("C:\\r");

    // The registry, but for a name with a line break, which a .reg file cannot hold.
    registry.PutString(kCU + "\\Run", "Two\r\nlines", "C:\\TOOLS\\ALPHA.EXE");
    std::ifstream in(Path("machine.reg"), std::ios::binary);
    const auto reg = ParseRegFile(std::string(std::istreambuf_iterator<char>(in), {}));
    if (!reg || ImportRegKeys(registry, reg->keys) != kRegOk) throw std::runtime_error("tests/golden/machine.reg");
    // The rest, but for two programs of paths too long to read there: just within
    // and just past 32,767 characters from the drive's letter to the end of ".exe".
    Program("C:" + std::string(32761, 'z') + ".exe", 1, "");
    Program("C:" + std::string(32762, 'z') + ".exe", 2, "");
    std::ifstream list(Path("machine.txt"), std::ios::binary);
    for (std::string line; std::getline(list, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::vector<std::string> f;
        for (size_t at = 0, tab = 0; tab < line.size(); at = tab + 1) {
            tab = std::min(line.find('\t', at), line.size());
            f.push_back(Unescaped(line.substr(at, tab - at)));
        }
        f.resize(6);
        if (f[0] == "F") Program(f[1], std::stoull(f[2]), f[3], f[4], f[5]);
        if (f[0] == "D") facts.Add(f[1], fakes::FakeFile{std::nullopt, {}, {}, 0, true, ""});
        if (f[0] == "T") files.AddFile(f[1], f[2]);
        if (f[0] == "U") files.AddFile(f[1], Utf16(f[2]));
        if (f[0] == "L") Link(f[1], f[2], f[3], f[4]);
        if (f[0] == "H") files.SetHiddenOrSystem(f[1]);
        if (f[0] != "P") continue;
        fakes::FakeProcess& process = processes.Add(static_cast<uint32_t>(std::stoul(f[1])), f[2], f[3]);
        process.refuseOpen = f[4] == "o";
        process.refuseQuery = f[4] == "q";
        process.modulesFail = f[4] == "m";
        process.noModulesYet = f[4] == "s";
    }
}

}  // namespace corvane::golden
