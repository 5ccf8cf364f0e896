// The .reg writer and the helper-object store against Wine's real registry,
// its registry editor (regedit /s imports what we wrote) and reg.exe, whose
// export of a key before and after tells whether it came back exactly.
#include <gtest/gtest.h>

#include "browser/browser_commands.h"
#include "browser/browser_items.h"
#include "contract/registry_contract.h"
#include "fakes/fakes.h"
#include "foundations/reg_file.h"
#include "foundations/registry.h"
#include "foundations/registry_view.h"
#include "platform/win32/adapters.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_system_win32.h"
#include "platform/win32/registry_win32.h"
#include "wine/wine_support.h"

namespace corvane {
namespace {

using namespace std::string_literals;

const std::string kAwkwardName = "a=b \"q\" c\\d";

// Every kind of value that is hard to give back, and subkeys.
void PutAwkwardKey(Registry& reg, RegKey root, const std::string& path) {
    const auto put = [&](const std::string& sub, const std::string& name, uint32_t type, const std::string& data) {
        RegKey key = 0;
        ASSERT_EQ(reg.CreateKey(root, sub.empty() ? path : path + "\\" + sub, kKeyAllAccess, key), kRegOk);
        ASSERT_EQ(reg.SetValue(key, name, type, reinterpret_cast<const uint8_t*>(data.data()),
                               static_cast<uint32_t>(data.size())),
                  kRegOk);
        reg.CloseKey(key);
    };
    put("", "NoExplorer", kRegDword, "\x01\0\0\0"s);
    put("", "", kRegSz, "Awkward helper\0"s);
    put("", "Empty", kRegBinary, "");
    put("", "Multi", kRegMultiSz, "one\0two words\0\0"s);
    put("", kAwkwardName, kRegSz, "line\r\nnext\x01" "end\0"s);
    put("", "Path", kRegExpandSz, "%SystemRoot%\\system32\\a.dll\0"s);
    put("", "NoNul", kRegSz, "abc");
    put("", "Long", kRegBinary, std::string(100, '\x5A'));
    put("Settings", "Level", kRegDword, "\x07\0\0\0"s);
    put("Settings\\Deep", "", kRegSz, "deep\0"s);
}

// reg.exe's export of a key and all below it.
// reg.exe's export of a key; `view` "/reg:32" or "/reg:64" names the view to read.
std::string RegExport(const std::string& key, const std::string& view = "") {
    const std::string file = wine::FreshFolder("reg-export") + "\\export.reg";
    const wine::RunResult result =
        wine::Run("reg.exe export \"" + key + "\" \"" + file + "\" /y" + (view.empty() ? "" : " " + view));
    EXPECT_EQ(result.exitCode, 0u) << result.output;
    return wine::FileBytes(file);
}

// The awkward key made afresh at `path` of `root`, and reg.exe's export of it (`full`).
std::string FreshAwkwardKey(Registry& reg, RegKey root, const std::string& path, const std::string& full) {
    contract::DeleteRegTree(reg, root, path);
    PutAwkwardKey(reg, root, path);
    const std::string exported = RegExport(full);
    EXPECT_NE(exported.size(), 0u);
    return exported;
}

// The registry editor's own export of a key, its UTF-16 text taken down to
// the ANSI bytes (the test's names and data are all ASCII).
std::string RegeditExport(const std::string& key) {
    const std::string file = wine::FreshFolder("regedit-export") + "\\export.reg";
    const wine::RunResult result = wine::Run("regedit.exe /e \"" + file + "\" \"" + key + "\"");
    EXPECT_EQ(result.exitCode, 0u) << result.output;
    const std::string wide = wine::FileBytes(file);
    std::string narrow;
    for (size_t i = 0; i + 1 < wide.size(); i += 2) narrow += wide[i];
    return narrow;
}

bool Write(const std::string& path, const std::string& text) {
    Win32FileSystem files;
    return files.Write(path, text) == kNoError;
}

TEST(RegFileUnderWine, AValueAndAKeyTreeWeWroteImportBackAsTheyWere) {
    Win32Registry reg;
    fakes::FakePrompts prompts;
    Win32SystemInfo system;
    const std::string path = "Software\\CorvaneTests\\RegFileExport";
    const std::string full = "HKCU\\" + path;
    const std::string before = FreshAwkwardKey(reg, kHKeyCurrentUser, path, full);
    const std::string folder = wine::FreshFolder("reg-file");
    const auto tree = ReadRegKeyTree(reg, kHKeyCurrentUser, path);
    ASSERT_TRUE(tree);

    // Binary data and numbers come out line for line as the registry editor
    // writes them, wrapped lines included. (Its own export is of the newer,
    // Unicode kind, which writes text and text lists otherwise.)
    const std::string regedit = RegeditExport("HKEY_CURRENT_USER\\" + path);
    for (const RegFileValue& value : tree->front().values) {
        if (value.type != kRegBinary && value.type != kRegDword) continue;
        EXPECT_NE(regedit.find(FormatRegValue(value)), std::string::npos) << FormatRegValue(value) << regedit;
    }

    // One value.
    const auto value = ReadRegValue(reg, kHKeyCurrentUser, path, kAwkwardName);
    ASSERT_TRUE(value);
    ASSERT_TRUE(Write(folder + "\\value.reg", FormatRegFile({{}, {*value}})));
    ASSERT_TRUE(DeleteRegValue(reg, prompts, system, kHKeyCurrentUser, path, kAwkwardName));
    ASSERT_NE(RegExport(full), before);
    ASSERT_TRUE(wine::ImportRegFile(folder + "\\value.reg"));
    EXPECT_EQ(RegExport(full), before);

    // The key with all below it.
    const auto keys = ReadRegKeyTree(reg, kHKeyCurrentUser, path);
    ASSERT_TRUE(keys);
    ASSERT_TRUE(Write(folder + "\\key.reg", FormatRegFile({{" kept by a test"}, *keys})));
    ASSERT_TRUE(DeleteRegKeyTree(reg, prompts, system, kHKeyCurrentUser, path));
    RegKey gone = 0;
    ASSERT_NE(reg.OpenKey(kHKeyCurrentUser, path, kKeyRead, gone), kRegOk);
    ASSERT_TRUE(wine::ImportRegFile(folder + "\\key.reg"));
    EXPECT_EQ(RegExport(full), before);
    EXPECT_EQ(ReadRegKeyTree(reg, kHKeyCurrentUser, path), tree);
    EXPECT_TRUE(prompts.shown.empty());

    contract::DeleteRegTree(reg, kHKeyCurrentUser, path);
}

TEST(BrowserStoreUnderWine, ADisabledHelperObjectComesBackByteForByte) {
    Win32Registry reg;
    Win32FileSystem files;
    fakes::FakePrompts prompts;
    Win32SystemInfo system;
    Win32Clock clock;
    const std::string clsid = "{C0A7E5E5-0000-4000-8000-00000000C0DE}";
    const std::string path = std::string(kHelperObjectsKey) + "\\" + clsid;
    const std::string full = "HKLM\\" + path;
    const std::string before = FreshAwkwardKey(reg, kHKeyLocalMachine, path, full);

    const auto tree = ReadRegKeyTree(reg, kHKeyLocalMachine, path);
    const std::string app = wine::FreshFolder("browser-store");
    BrowserCommandPorts ports{reg, files, prompts, system, clock, app};
    Row row(kBHOColumns.size());
    row.cells[kBrowserColId] = clsid;
    row.cells[kBrowserColState] = "True";
    row.checked = true;
    const auto keyExists = [&] {
        RegKey key = 0;
        if (reg.OpenKey(kHKeyLocalMachine, path, kKeyRead, key) != kRegOk) return false;
        reg.CloseKey(key);
        return true;
    };

    EXPECT_TRUE(DisableCheckedHelperObjects(ports, {row}));
    EXPECT_FALSE(keyExists());
    EXPECT_EQ(DisabledHelperObjects(files, app), std::vector<std::string>{clsid});

    // Restored by hand, as the help tells: the registry editor imports the stored file.
    const std::string store = HelperObjectStorePath(app, clsid);
    ASSERT_TRUE(wine::ImportRegFile(store));
    EXPECT_EQ(RegExport(full), before);
    EXPECT_EQ(ReadRegKeyTree(reg, kHKeyLocalMachine, path), tree);
    ASSERT_TRUE(DeleteRegKeyTree(reg, prompts, system, kHKeyLocalMachine, path));

    row.cells[kBrowserColState] = "False";
    EXPECT_TRUE(EnableCheckedHelperObjects(ports, {row}));
    EXPECT_TRUE(keyExists());
    EXPECT_EQ(RegExport(full), before);
    EXPECT_EQ(ReadRegKeyTree(reg, kHKeyLocalMachine, path), tree);
    EXPECT_FALSE(files.Exists(store));
    EXPECT_TRUE(DisabledHelperObjects(files, app).empty());
    EXPECT_TRUE(prompts.shown.empty());

    contract::DeleteRegTree(reg, kHKeyLocalMachine, path);
}

TEST(BrowserStoreUnderWine, AThirtyTwoBitHelperObjectComesBackToItsOwnViewOnly) {
    Win32Registry reg;
    RegistryInView reg32(reg, kKeyWow64_32Key);
    Win32FileSystem files;
    fakes::FakePrompts prompts;
    Win32SystemInfo system;
    Win32Clock clock;
    const std::string clsid = "{C0A7E5E5-0000-4000-8000-00000000C0DF}";
    const std::string path = std::string(kHelperObjectsKey) + "\\" + clsid;
    const std::string full = "HKLM\\" + path;
    // The awkward key in the 32-bit view, and one of the same class id in the 64-bit view.
    contract::DeleteRegTree(reg32, kHKeyLocalMachine, path);
    contract::DeleteRegTree(reg, kHKeyLocalMachine, path);
    PutAwkwardKey(reg32, kHKeyLocalMachine, path);
    ASSERT_EQ(wine::Run("reg.exe add \"" + full + "\" /v Native /d sixty-four /f /reg:64").exitCode, 0u);
    const std::string before32 = RegExport(full, "/reg:32");
    const std::string before64 = RegExport(full, "/reg:64");
    ASSERT_NE(before32, before64);
    ASSERT_NE(before32.size(), 0u);

    const std::string app = wine::FreshFolder("browser-store-32");
    BrowserCommandPorts ports{reg, files, prompts, system, clock, app};
    Row row(kBHOColumns.size());
    row.cells[kBrowserColId] = clsid;
    row.cells[kBrowserColState] = "True";
    row.cells[kBrowserColView] = "32-bit";
    row.checked = true;
    const auto has = [&](const char* view) { return wine::Run("reg.exe query \"" + full + "\" " + view).exitCode == 0; };

    EXPECT_TRUE(DisableCheckedHelperObjects(ports, {row}));
    EXPECT_FALSE(has("/reg:32"));
    EXPECT_EQ(RegExport(full, "/reg:64"), before64);
    EXPECT_EQ(DisabledHelperObjects(files, app, kKeyWow64_32Key), std::vector<std::string>{clsid});
    EXPECT_TRUE(DisabledHelperObjects(files, app).empty());
    const std::string store = HelperObjectStorePath(app, clsid, kKeyWow64_32Key);
    EXPECT_NE(wine::FileBytes(store).find("; Registry view: 32-bit\r\n"), std::string::npos);

    row.cells[kBrowserColState] = "False";
    EXPECT_TRUE(EnableCheckedHelperObjects(ports, {row}));
    EXPECT_EQ(RegExport(full, "/reg:32"), before32);
    EXPECT_EQ(RegExport(full, "/reg:64"), before64);
    EXPECT_FALSE(files.Exists(store));
    EXPECT_TRUE(prompts.shown.empty());

    contract::DeleteRegTree(reg32, kHKeyLocalMachine, path);
    contract::DeleteRegTree(reg, kHKeyLocalMachine, path);
}

}  // namespace
}  // namespace corvane
