#pragma once
// What modRegistry relies on of the registry calls, run against the fake
// natively and against the Win32 adapter under Wine. The fake runs with its
// values in Wine's order (sorted like the subkeys).
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include "platform/registry.h"

namespace corvane::contract {

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

// Deletes `path` below `parent` with everything under it; missing is fine.
inline void DeleteRegTree(Registry& reg, RegKey parent, const std::string& path) {
    RegKey key = 0;
    if (reg.OpenKey(parent, path, kKeyAllAccess, key) != kRegOk) return;
    for (const std::string& sub : SubkeyNames(reg, key)) DeleteRegTree(reg, key, sub);
    reg.CloseKey(key);
    reg.DeleteKey(parent, path);
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

    // Values of every kind the logic reads, set in this order.
    using Listed = std::tuple<std::string, uint32_t, std::string>;  // name, type, data
    const std::string longText = std::string(10000, 'x') + '\0';
    std::string binary;
    for (int i = 0; i < 256; ++i) binary += static_cast<char>(i);
    const std::vector<Listed> values = {
        {"zeta", kRegSz, std::string("text\0", 5)},           {"Alpha", kRegExpandSz, std::string("%WINDIR%\\x\0", 11)},
        {"beta", kRegMultiSz, std::string("one\0two\0\0", 9)}, {"\xC9t\xE9", kRegDword, std::string("\xFE\xFF\xFF\xFF", 4)},
        {"\x80uro", kRegBinary, binary},                      {"", kRegSz, std::string("default\0", 8)},
        {"\xFFy", kRegNone, ""},                              {"long", kRegSz, longText},
        {"empty", kRegSz, ""},
    };
    for (const auto& [name, type, data] : values) set(top, name, type, data);

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

    // Values enumerate in Wine's order (sorted like the subkeys, the default
    // value first); too small a data buffer gives the size it needs.
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
    std::vector<std::string> names;
    for (const Listed& value : listed) names.push_back(std::get<0>(value));
    EXPECT_EQ(names, (std::vector<std::string>{"", "Alpha", "beta", "empty", "long", "zeta", "\xC9t\xE9", "\xFFy", "\x80uro"}));
    for (const Listed& value : listed) {
        EXPECT_TRUE(std::find(values.begin(), values.end(), value) != values.end()) << "data of " << std::get<0>(value);
    }

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
    DeleteRegTree(reg, kHKeyCurrentUser, root);
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

// `name`: a key of the suite's own to make below HKLM\Software.
inline void CheckRegistryViewContract(Registry& reg, const std::string& name) {
    CheckViewOf(reg, kHKeyLocalMachine, "Software\\" + name + "\\Inner", "Software\\Wow6432Node\\" + name + "\\Inner",
                "Software\\" + name);
}

// HKCR\CLSID\{id} of the 32-bit view is HKCR\Wow6432Node\CLSID\{id}.
inline void CheckClassesViewContract(Registry& reg, const std::string& clsid) {
    CheckViewOf(reg, kHKeyClassesRoot, "CLSID\\" + clsid + "\\InprocServer32",
                "Wow6432Node\\CLSID\\" + clsid + "\\InprocServer32", "CLSID");
}

}  // namespace corvane::contract
