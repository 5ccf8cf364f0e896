#pragma once
// What the logic relies on of each port, one function of checks per port, run
// against the fakes natively (tests/unit/golden_test.cpp) and against the
// Win32 adapters under Wine (wine_contract), so the two cannot drift apart.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "fakes/fakes.h"
#include "foundations/registry.h"
#include "foundations/text.h"
#include "platform/clock.h"
#include "platform/file_facts.h"
#include "platform/file_system.h"
#include "platform/process_table.h"
#include "platform/profile.h"
#include "platform/registry.h"
#include "platform/service_manager.h"
#include "platform/task_service.h"
#include "platform/shortcuts.h"

namespace corvane::contract {

// ---- What the registry functions rely on of the registry calls. The fake runs
// with its values in Wine's order (sorted like the subkeys).

// A key's subkeys in the order they enumerate, each given with its length
// and the NUL left out.
inline std::vector<std::string> SubkeyNames(Registry& reg, RegKey key) {
    std::vector<std::string> names;
    for (uint32_t i = 0;; ++i) {
        char name[256] = {};
        uint32_t length = 255;
        const RegError result = reg.EnumKey(key, i, name, &length);
        if (result != kRegOk) {
            EXPECT_EQ(result, kErrorNoMoreItems);
            return names;
        }
        EXPECT_EQ(name[length], '\0') << "the length leaves out the NUL";
        names.emplace_back(name, length);
    }
}

// `root` is a path below HKEY_CURRENT_USER that the suite owns; it must not exist.
inline void CheckRegistryContract(Registry& reg, const std::string& root) {
    auto set = [&](RegKey key, const std::string& name, uint32_t type, const std::string& data) {
        const auto bytes = reinterpret_cast<const uint8_t*>(data.data());
        ASSERT_EQ(reg.SetValue(key, name, type, bytes, static_cast<uint32_t>(data.size())), kRegOk) << name;
    };

    RegKey key = 77;
    EXPECT_EQ(reg.OpenKey(kHKeyCurrentUser, root, kKeyRead, key), kErrorFileNotFound);
    EXPECT_EQ(key, 0u) << "a failed open leaves no handle";
    EXPECT_EQ(reg.CreateKey(kHKeyCurrentUser, "\\" + root, kMaximumAllowed, key), kErrorBadPathname);

    // Creating makes every missing key on the way; names ignore case, 1252 letters too.
    ASSERT_EQ(reg.CreateKey(kHKeyCurrentUser, root + "\\Sub\\Deeper", kMaximumAllowed, key), kRegOk);
    EXPECT_EQ(reg.CloseKey(key), kRegOk);
    RegKey top = 0;
    ASSERT_EQ(reg.CreateKey(kHKeyCurrentUser, root, kKeyAllAccess, top), kRegOk) << "an existing key opens";
    for (const char* name : {"bsub", "Asub", "\xC9t\xE9"}) {
        RegKey sub = 0;
        ASSERT_EQ(reg.CreateKey(top, name, kMaximumAllowed, sub), kRegOk);
        reg.CloseKey(sub);
    }
    RegKey same = 0;
    ASSERT_EQ(reg.OpenKey(kHKeyCurrentUser, root + "\\SUB\\deeper", kKeyRead, same), kRegOk);
    reg.CloseKey(same);
    ASSERT_EQ(reg.OpenKey(top, "\xE9T\xC9", kKeyRead, same), kRegOk) << "\xE9/\xC9 are one letter";
    reg.CloseKey(same);

    // Subkeys enumerate sorted without regard to case, by their Unicode capitals.
    EXPECT_EQ(SubkeyNames(reg, top), (std::vector<std::string>{"Asub", "bsub", "Sub", "\xC9t\xE9"}));
    char shortName[4];
    uint32_t shortLength = sizeof shortName;
    EXPECT_EQ(reg.EnumKey(top, 0, shortName, &shortLength), kErrorMoreData) << "no room for Asub and its NUL";

    // Values of every kind the logic reads, in the order they enumerate (by
    // Unicode capitals, the default value first), set in another order.
    using Listed = std::tuple<std::string, uint32_t, std::string>;  // name, type, data
    const std::string longText = std::string(10000, 'x') + '\0';
    std::string binary;
    for (int i = 0; i < 256; ++i) binary += static_cast<char>(i);
    const std::vector<Listed> values = {
        {"", kRegSz, std::string("default\0", 8)},          {"Alpha", kRegExpandSz, std::string("%WINDIR%\\x\0", 11)},
        {"beta", kRegMultiSz, std::string("one\0two\0\0", 9)}, {"empty", kRegSz, ""},
        {"long", kRegSz, longText},                         {"zeta", kRegSz, std::string("text\0", 5)},
        {"\xC9t\xE9", kRegDword, std::string("\xFE\xFF\xFF\xFF", 4)}, {"\xFFy", kRegNone, ""},
        {"\x80uro", kRegBinary, binary},
    };
    for (const size_t i : {5, 1, 2, 6, 8, 0, 7, 4, 3}) std::apply([&](const auto&... v) { set(top, v...); }, values[i]);

    uint32_t type = 99, size = 0;
    ASSERT_EQ(reg.QueryValue(top, "long", &type, nullptr, &size), kRegOk) << "size only";
    EXPECT_EQ(std::pair(size, type), std::pair(10001u, kRegSz));
    std::vector<uint8_t> buffer(4096);
    size = 4096;
    EXPECT_EQ(reg.QueryValue(top, "long", &type, buffer.data(), &size), kErrorMoreData);
    EXPECT_EQ(size, 10001u) << "too small a buffer learns the size it needs";
    size = 1;
    EXPECT_EQ(reg.QueryValue(top, "missing", &type, buffer.data(), &size), kErrorFileNotFound);
    EXPECT_EQ(size, 1u) << "a missing value leaves the length as it was";
    size = 4096;
    ASSERT_EQ(reg.QueryValue(top, "ALPHA", &type, buffer.data(), &size), kRegOk);
    EXPECT_EQ(std::pair(std::string(buffer.begin(), buffer.begin() + size), type),
              std::pair(std::string("%WINDIR%\\x\0", 11), kRegExpandSz)) << "names ignore case; not expanded";
    size = 4096;
    ASSERT_EQ(reg.QueryValue(top, "\x9Fy", &type, buffer.data(), &size), kRegOk) << "\x9F is the capital of \xFF";
    EXPECT_EQ(std::pair(size, type), std::pair(0u, kRegNone));

    // Too small a data buffer gives the size it needs.
    std::vector<Listed> listed;
    for (uint32_t i = 0;; ++i) {
        char name[260];
        uint32_t nameLength = 260, dataSize = 4096;
        RegError result = reg.EnumValue(top, i, name, &nameLength, &type, buffer.data(), &dataSize);
        if (result == kErrorMoreData) {
            EXPECT_EQ(dataSize, 10001u);
            buffer.resize(dataSize);
            nameLength = 260;
            result = reg.EnumValue(top, i, name, &nameLength, &type, buffer.data(), &dataSize);
        }
        if (result != kRegOk) {
            EXPECT_EQ(result, kErrorNoMoreItems);
            break;
        }
        listed.push_back({std::string(name, nameLength), type, std::string(buffer.begin(), buffer.begin() + dataSize)});
    }
    EXPECT_EQ(listed, values);

    // A handle opened for reading cannot change anything.
    RegKey reader = 0;
    ASSERT_EQ(reg.OpenKey(kHKeyCurrentUser, root, kKeyRead, reader), kRegOk);
    EXPECT_EQ(reg.SetValue(reader, "zeta", kRegSz, reinterpret_cast<const uint8_t*>("new"), 4), kErrorAccessDenied);
    EXPECT_EQ(reg.DeleteValue(reader, "zeta"), kErrorAccessDenied);
    EXPECT_EQ(reg.CloseKey(reader), kRegOk);

    // Setting an existing value replaces it where it stands.
    set(top, "ZETA", kRegSz, std::string("new\0", 4));
    size = 4096;
    ASSERT_EQ(reg.QueryValue(top, "zeta", &type, buffer.data(), &size), kRegOk);
    EXPECT_EQ(size, 4u);

    EXPECT_EQ(reg.DeleteValue(top, "missing"), kErrorFileNotFound);
    EXPECT_EQ(reg.DeleteValue(top, "Zeta"), kRegOk);
    EXPECT_EQ(reg.QueryValue(top, "zeta", &type, nullptr, &size), kErrorFileNotFound);

    // Keys go one at a time, and only without subkeys.
    EXPECT_EQ(reg.DeleteKey(top, "Sub"), kErrorAccessDenied);
    EXPECT_EQ(reg.DeleteKey(top, "NoSuchKey"), kErrorFileNotFound);
    RegKey doomed = 0;
    ASSERT_EQ(reg.OpenKey(top, "Sub\\Deeper", kKeyRead, doomed), kRegOk);
    EXPECT_EQ(reg.DeleteKey(top, "Sub\\Deeper"), kRegOk);
    EXPECT_EQ(reg.QueryValue(doomed, "", &type, nullptr, &size), kErrorKeyDeleted)
        << "a handle outlives its key but reads nothing";
    EXPECT_EQ(reg.CloseKey(doomed), kRegOk);
    EXPECT_EQ(reg.DeleteKey(top, "Sub"), kRegOk);

    EXPECT_EQ(reg.CloseKey(top), kRegOk);
    fakes::FakePrompts prompts;
    fakes::FakeSystemInfo system;
    EXPECT_TRUE(DeleteRegKeyTree(reg, prompts, system, kHKeyCurrentUser, root));
    EXPECT_EQ(reg.OpenKey(kHKeyCurrentUser, root, kKeyRead, key), kErrorFileNotFound) << "the tree went whole";
}

// A key made in the 32-bit view of a 64-bit system, as Windows and Wine keep
// it: `path` lies at `redirected` (below a Wow6432Node) and nowhere in the
// 64-bit view; `top`, a part of `path` opened in the 32-bit view, reaches
// the rest by its plain name; a delete in the other view does not reach it.
// The key and its parent are the suite's own and must not exist in either view.
inline void CheckViewOf(Registry& reg, RegKey root, const std::string& path, const std::string& redirected,
                        const std::string& top) {
    RegKey key = 0;
    ASSERT_EQ(reg.CreateKey(root, path, kKeyAllAccess | kKeyWow64_32Key, key), kRegOk);
    EXPECT_EQ(reg.SetValue(key, "", kRegSz, reinterpret_cast<const uint8_t*>("x86"), 4), kRegOk);
    reg.CloseKey(key);
    EXPECT_EQ(reg.OpenKey(root, redirected, kKeyRead | kKeyWow64_64Key, key), kRegOk);
    reg.CloseKey(key);
    for (uint32_t view : {kKeyWow64_64Key, 0u}) EXPECT_EQ(reg.OpenKey(root, path, kKeyRead | view, key), kErrorFileNotFound);
    RegKey opened = 0;
    ASSERT_EQ(reg.OpenKey(root, top, kKeyRead | kKeyWow64_32Key, opened), kRegOk);
    ASSERT_EQ(reg.OpenKey(opened, path.substr(top.size() + 1), kKeyRead, key), kRegOk);
    char data[8] = {};
    uint32_t size = sizeof data, type = 0;
    EXPECT_EQ(reg.QueryValue(key, "", &type, reinterpret_cast<uint8_t*>(data), &size), kRegOk);
    EXPECT_STREQ(data, "x86");
    reg.CloseKey(key);
    reg.CloseKey(opened);

    const std::string parent = path.substr(0, path.rfind('\\'));
    EXPECT_EQ(reg.DeleteKey(root, path, kKeyWow64_64Key), kErrorFileNotFound);
    EXPECT_EQ(reg.DeleteKey(root, path, kKeyWow64_32Key), kRegOk);
    EXPECT_EQ(reg.DeleteKey(root, parent, kKeyWow64_32Key), kRegOk);
    EXPECT_EQ(reg.OpenKey(root, redirected.substr(0, redirected.rfind('\\')), kKeyRead | kKeyWow64_64Key, key),
              kErrorFileNotFound);
}

// `name`: a key of the suite's own to make below HKLM\Software; `clsid`: a
// class of its own, whose 32-bit key HKCR\CLSID\{id} is HKCR\Wow6432Node\CLSID\{id}.
inline void CheckRegistryViewContract(Registry& reg, const std::string& name, const std::string& clsid) {
    CheckViewOf(reg, kHKeyLocalMachine, "Software\\" + name + "\\Inner", "Software\\Wow6432Node\\" + name + "\\Inner",
                "Software\\" + name);
    CheckViewOf(reg, kHKeyClassesRoot, "CLSID\\" + clsid + "\\InprocServer32",
                "Wow6432Node\\CLSID\\" + clsid + "\\InprocServer32", "CLSID");
}

// ---- What the stores rely on of files and folders.

// `root` names an existing, empty folder.
inline void CheckFileSystemContract(FileSystem& fs, const std::string& root) {
    const std::string a = root + "\\a.txt", b = root + "\\b.txt", sub = root + "\\Sub";
    const std::string binary("x\0y\r\n\x80\xFF", 7);

    EXPECT_FALSE(fs.Exists(a));
    SysError error = kNoError;
    EXPECT_FALSE(fs.Read(a, &error).has_value());
    EXPECT_EQ(error, 2u) << "a missing file is ERROR_FILE_NOT_FOUND";

    ASSERT_EQ(fs.Write(a, binary), kNoError);
    EXPECT_EQ(fs.Read(a).value_or(""), binary) << "bytes come back unchanged";
    ASSERT_EQ(fs.Append(a, "++"), kNoError);
    EXPECT_EQ(fs.Read(a).value_or(""), binary + "++");
    ASSERT_EQ(fs.Write(a, "short"), kNoError);
    EXPECT_EQ(fs.Read(a).value_or(""), "short") << "a write replaces, it does not overlay";
    ASSERT_EQ(fs.Append(b, "new"), kNoError) << "append makes a missing file";

    ASSERT_EQ(fs.WriteAtomic(b, "atomic"), kNoError);
    EXPECT_EQ(fs.Read(b).value_or(""), "atomic");
    EXPECT_FALSE(fs.Exists(b + ".tmp")) << "no temporary file is left behind";

    EXPECT_NE(fs.Copy(a, b, false), kNoError) << "copy refuses to overwrite unless asked";
    EXPECT_EQ(fs.Read(b).value_or(""), "atomic");
    ASSERT_EQ(fs.Copy(a, b, true), kNoError);
    EXPECT_EQ(fs.Read(b).value_or(""), "short");

    EXPECT_NE(fs.Move(a, b, false), kNoError) << "move refuses to replace unless asked";
    ASSERT_EQ(fs.Move(a, b, true), kNoError);
    EXPECT_FALSE(fs.Exists(a));

    EXPECT_NE(fs.Write(root + "\\NoSuchFolder\\c.txt", "x"), kNoError) << "no folder, no file";
    ASSERT_EQ(fs.CreateFolder(sub), kNoError);
    EXPECT_NE(fs.CreateFolder(sub), kNoError) << "an existing folder is an error";
    EXPECT_TRUE(fs.IsFolder(sub));
    EXPECT_FALSE(fs.IsFolder(b));
    for (const char* name : {"Caf\xE9 \xA9.lnk", "other.txt", "UPPER.LNK"}) ASSERT_EQ(fs.Write(sub + "\\" + name, "x"), kNoError);

    auto names = [](std::vector<FolderEntry> entries) {
        std::vector<std::string> out;
        for (const auto& e : entries) out.push_back(e.name + (e.isFolder ? "\\" : ""));
        std::sort(out.begin(), out.end());
        return out;
    };
    EXPECT_EQ(names(fs.List(sub, "*.lnk")), (std::vector<std::string>{"Caf\xE9 \xA9.lnk", "UPPER.LNK"}));
    EXPECT_EQ(names(fs.List(root)), (std::vector<std::string>{"Sub\\", "b.txt"}));
    EXPECT_TRUE(fs.Exists(root + "\\SUB\\OTHER.TXT")) << "names ignore case";

    EXPECT_NE(fs.RemoveFolder(sub), kNoError) << "a folder with files stays";
    for (const char* name : {"Caf\xE9 \xA9.lnk", "other.txt", "upper.lnk"}) ASSERT_EQ(fs.Delete(sub + "\\" + name), kNoError);
    EXPECT_NE(fs.Delete(sub + "\\other.txt"), kNoError);
    ASSERT_EQ(fs.RemoveFolder(sub), kNoError);
    EXPECT_FALSE(fs.Exists(sub));

    EXPECT_EQ(fs.DeleteAtReboot(b), kNoError);
    EXPECT_TRUE(fs.Exists(b)) << "the file stays until the next start";
    EXPECT_EQ(fs.DeleteAtReboot(""), 3u) << "an empty path is ERROR_PATH_NOT_FOUND";
}

// ---- What the file columns rely on of the version, search and short-name
// calls, and of the clock.

// The files the contract looks at. `full` is shaped like fixture_full.exe: a
// version resource whose translation table names German (0x0407) in code page
// 1252, with CompanyName "Prüfwerk GmbH" and no Comments; `bare` has no version
// resource; `longName` is a file whose path has long names; `missing` does not
// exist. `folder` is the folder all of them lie in.
struct FileFactsFiles {
    std::string folder, full, bare, longName, missing;
    uint64_t fullSize = 0;
};

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
        EXPECT_EQ(std::string(company->address), "Pr\xFC" "fwerk GmbH") << "ANSI text, NUL-terminated";
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

// ---- What the process walks and the kill rely on of the process table.

// `running` is a process that runs the file at `path` and may be ended; no
// process has the id `gone`.
inline void CheckProcessTableContract(ProcessTable& table, uint32_t running, const std::string& path, uint32_t gone) {
    // A buffer too small is filled as far as it goes, never beyond.
    std::vector<uint32_t> ids(4, 0xDEADBEEF);
    uint32_t needed = 999;
    ASSERT_TRUE(table.EnumProcessIds(ids.data(), 8, needed));
    EXPECT_LE(needed, 8u);
    EXPECT_EQ(ids[2], 0xDEADBEEFu) << "nothing written past the bytes given";
    ids.assign(4096, 0);
    ASSERT_TRUE(table.EnumProcessIds(ids.data(), 4096 * 4, needed));
    EXPECT_LT(needed, 4096u * 4) << "a large buffer is not filled to the brim";
    EXPECT_EQ(needed % 4, 0u);
    ids.resize(needed / 4);
    EXPECT_NE(std::find(ids.begin(), ids.end(), running), ids.end()) << "the running process is listed";

    // The walk's rights give the first module's path.
    const ProcessHandle process = table.Open(kProcessQueryInformation | kProcessVmRead, false, running);
    ASSERT_NE(process, 0u);
    ModuleHandle modules[200 / sizeof(ModuleHandle)] = {};
    uint32_t moduleBytes = 0;
    ASSERT_TRUE(table.EnumModules(process, modules, 200, moduleBytes));
    EXPECT_GE(moduleBytes, sizeof(ModuleHandle));
    std::string buffer(260, ' ');
    const uint32_t length = table.ModuleFileName(process, modules[0], buffer.data(), 260);
    buffer.resize(length);
    EXPECT_EQ(LowerAnsi(buffer), LowerAnsi(path)) << "the length returned cuts the path exactly";
    EXPECT_TRUE(table.Close(process));

    // A snapshot lists the process under its executable's name.
    const ProcessHandle snapshot = table.CreateSnapshot();
    ASSERT_NE(snapshot, 0u);
    ProcessEntry entry;
    bool found = false;
    for (bool more = table.FirstProcess(snapshot, entry); more; more = table.NextProcess(snapshot, entry)) {
        if (entry.processId != running) continue;
        found = true;
        const std::string exe(entry.exeFile, strnlen(entry.exeFile, sizeof entry.exeFile));
        const std::string name = path.substr(path.find_last_of('\\') + 1);
        EXPECT_EQ(LowerAnsi(exe.substr(exe.size() - std::min(exe.size(), name.size()))), LowerAnsi(name));
    }
    EXPECT_TRUE(found);
    EXPECT_FALSE(table.NextProcess(snapshot, entry)) << "the end stays the end";
    EXPECT_TRUE(table.Close(snapshot));

    // A process that does not exist cannot be opened, and says why.
    EXPECT_EQ(table.Open(kProcessTerminate | kProcessQueryInformation, false, gone), 0u);
    EXPECT_EQ(table.LastError(), 87u) << "ERROR_INVALID_PARAMETER";

    // The kill: a running process reports STILL_ACTIVE and ends when terminated.
    const ProcessHandle kill = table.Open(kProcessTerminate | kProcessQueryInformation, false, running);
    ASSERT_NE(kill, 0u);
    uint32_t code = 0;
    ASSERT_TRUE(table.ExitCode(kill, code));
    EXPECT_EQ(code, kStillActive);
    EXPECT_TRUE(table.Terminate(kill, code));
    EXPECT_TRUE(table.Close(kill));
    // Termination completes on its own time; once it has, the id is free.
    ProcessHandle again = 0;
    for (int tries = 0; tries < 100; ++tries) {
        again = table.Open(kProcessQueryInformation | kProcessVmRead, false, running);
        if (!again) break;
        table.Close(again);
        table.Pause(50);
    }
    EXPECT_EQ(again, 0u) << "an ended process is gone from the table";
}

// ---- What the settings rely on of the platform's initialisation-file functions.

// `path` names a file that does not exist yet, in a folder that does.
inline void CheckProfileContract(Profile& profile, const std::string& path) {
    EXPECT_EQ(profile.Read("Main", "SusColor", "255", 255, path), "255") << "missing file gives the default";

    ASSERT_TRUE(profile.Write("Main", "SusColor", "16711680", path));
    EXPECT_EQ(profile.Read("Main", "SusColor", "255", 255, path), "16711680");
    EXPECT_EQ(profile.Read("main", "suscolor", "255", 255, path), "16711680") << "names ignore case";
    EXPECT_EQ(profile.Read("Main", "DisColor", "8421504", 255, path), "8421504") << "missing key";
    EXPECT_EQ(profile.Read("Other", "SusColor", "x", 255, path), "x") << "missing section";

    ASSERT_TRUE(profile.Write("Main", "DisColor", "", path));
    EXPECT_EQ(profile.Read("Main", "DisColor", "8421504", 255, path), "") << "an empty value is no default";

    ASSERT_TRUE(profile.Write("Main", "SusColor", "  42  ", path));
    EXPECT_EQ(profile.Read("Main", "SusColor", "255", 255, path), "42") << "blanks around a value";

    const std::string longValue(300, '7');
    ASSERT_TRUE(profile.Write("Main", "SusColor", longValue, path));
    EXPECT_EQ(profile.Read("Main", "SusColor", "255", 255, path), std::string(254, '7'))
        << "cut to the buffer less its terminator";

    const std::string ansi = "caf\xE9 \xA9";
    ASSERT_TRUE(profile.Write("Main", "Note", ansi, path));
    EXPECT_EQ(profile.Read("Main", "Note", "", 255, path), ansi) << "bytes above 127 pass through";
    EXPECT_EQ(profile.Read("Main", "SusColor", "255", 255, path), std::string(254, '7'))
        << "a second key leaves the first alone";
}

// ---- What the startup pane relies on of the shortcut reader (under Wine, the
// shell's link object).

struct ShortcutFixture {
    // Saves a shortcut at `path` with a target, arguments and an icon (an
    // empty icon file: none of its own).
    std::function<void(const std::string& path, const std::string& target, const std::string& arguments,
                       const std::string& iconFile, int iconIndex)>
        make;
    FileSystem& files;
    std::string folder;  // an existing, empty folder
    std::string target;  // an existing file
};

inline void CheckShortcutContract(ShortcutReader& reader, const ShortcutFixture& f) {
    const std::string full = f.folder + "\\full.lnk";
    // Arguments come back as written, quotes and all; without an icon file, no
    // icon of its own. Each row: path, arguments, icon file and index, icon read.
    using Made = std::tuple<std::string, std::string, std::string, int, std::string>;
    for (const auto& [path, arguments, iconFile, iconIndex, icon] :
         {Made{full, "/tray \"x y\" %TEMP%", f.target, -3, f.target + ",-3"},
          Made{f.folder + "\\plain.lnk", "", "", 0, ",0"}}) {
        f.make(path, f.target, arguments, iconFile, iconIndex);
        const auto read = reader.Read(path);
        ASSERT_TRUE(read.has_value()) << path;
        EXPECT_EQ(std::tuple(read->targetPath, read->arguments, read->iconLocation), std::tuple(f.target, arguments, icon))
            << path;
    }

    EXPECT_FALSE(reader.Read(f.folder + "\\missing.lnk").has_value());
    ASSERT_EQ(f.files.Write(f.folder + "\\text.lnk", "this is no shortcut\r\n"), kNoError);
    const auto text = reader.Read(f.folder + "\\text.lnk");
    EXPECT_TRUE(!text.has_value() || text->targetPath.empty()) << "a file that is no shortcut leads nowhere";
    // Reading never changes the file.
    const auto before = f.files.Read(full);
    reader.Read(full);
    EXPECT_EQ(f.files.Read(full), before);
}

// ---- What the service and task commands rely on of the service manager and
// the task service: a start type reads back through the manager and in the
// service's key, where the readers look; a task's switch reads back.

// Services of the suite's own, made with the start type given, and a task of
// its own, enabled; each is left as it was.
struct ServiceFixture {
    std::string name;
    uint32_t type, start;
};
inline void CheckServiceContract(ServiceManager& services, TaskService& tasks, Registry& registry,
                                 const std::vector<ServiceFixture>& made, const std::string& task, bool taskKeepsSwitch = true) {
    for (const ServiceFixture& service : made) {
        const std::string key = "SYSTEM\\CurrentControlSet\\Services\\" + service.name;
        ServiceConfig config;
        for (int step = 0; const uint32_t start : {service.start, kServiceDisabled, service.start}) {
            if (step++) { ASSERT_EQ(services.SetStart(service.name, start), kNoError) << service.name; }
            ASSERT_EQ(services.Query(service.name, config), kNoError) << service.name;
            EXPECT_EQ(config.start, start) << service.name;
            EXPECT_EQ(static_cast<uint32_t>(GetRegDword(registry, kHKeyLocalMachine, key, "Start")), start) << service.name;
        }
    }
    bool enabled = false;
    for (int step = 0; const bool to : {true, false, true}) {
        if (step++) { EXPECT_EQ(tasks.SetEnabled(task, to), kNoError); }
        ASSERT_EQ(tasks.Enabled(task, enabled), kNoError);
        EXPECT_EQ(enabled, to || !taskKeepsSwitch) << task;
    }
}

}  // namespace corvane::contract
