#pragma once
// What modRegistry relies on of the registry calls, run against the fake
// natively and against the Win32 adapter under Wine. The fake runs with its
// values in Wine's order (sorted like the subkeys).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/registry.h"

namespace corvane::contract {

// Deletes `path` below `parent` with everything under it; missing is fine.
inline void DeleteRegTree(Registry& reg, RegKey parent, const std::string& path) {
    RegKey key = 0;
    if (reg.OpenKey(parent, path, kKeyAllAccess, key) != kRegOk) return;
    std::vector<std::string> subkeys;
    for (uint32_t i = 0;; ++i) {
        char name[256];
        uint32_t length = sizeof name;
        if (reg.EnumKey(key, i, name, &length) != kRegOk) break;
        subkeys.emplace_back(name, length);
    }
    for (const auto& sub : subkeys) DeleteRegTree(reg, key, sub);
    reg.CloseKey(key);
    reg.DeleteKey(parent, path);
}

// `root` is a path below HKEY_CURRENT_USER that the suite owns; it must not exist.
inline void CheckRegistryContract(Registry& reg, const std::string& root) {
    auto bytes = [](const std::string& s) { return reinterpret_cast<const uint8_t*>(s.data()); };
    auto set = [&](RegKey key, const std::string& name, uint32_t type, const std::string& data) {
        ASSERT_EQ(reg.SetValue(key, name, type, bytes(data), static_cast<uint32_t>(data.size())), kRegOk) << name;
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
    std::vector<std::string> subkeys;
    for (uint32_t i = 0;; ++i) {
        char name[255] = {};
        uint32_t length = 255;
        const RegError result = reg.EnumKey(top, i, name, &length);
        if (result != kRegOk) {
            EXPECT_EQ(result, kErrorNoMoreItems);
            break;
        }
        EXPECT_EQ(name[length], '\0') << "the length leaves out the NUL";
        subkeys.emplace_back(name, length);
    }
    EXPECT_EQ(subkeys, (std::vector<std::string>{"Asub", "bsub", "Sub", "\xC9t\xE9"}));
    char shortName[4];
    uint32_t shortLength = sizeof shortName;
    EXPECT_EQ(reg.EnumKey(top, 0, shortName, &shortLength), kErrorMoreData) << "no room for Asub and its NUL";

    // Values of every kind the logic reads, their data as stored.
    const std::string longText = std::string(10000, 'x') + '\0';
    std::string binary;
    for (int i = 0; i < 256; ++i) binary += static_cast<char>(i);
    set(top, "zeta", kRegSz, std::string("text\0", 5));
    set(top, "Alpha", kRegExpandSz, std::string("%WINDIR%\\x\0", 11));
    set(top, "beta", kRegMultiSz, std::string("one\0two\0\0", 9));
    set(top, "\xC9t\xE9", kRegDword, std::string("\xFE\xFF\xFF\xFF", 4));
    set(top, "\x80uro", kRegBinary, binary);
    set(top, "", kRegSz, std::string("default\0", 8));
    set(top, "\xFFy", kRegNone, "");
    set(top, "long", kRegSz, longText);
    set(top, "empty", kRegSz, "");

    uint32_t type = 99, size = 0;
    ASSERT_EQ(reg.QueryValue(top, "long", &type, nullptr, &size), kRegOk) << "size only";
    EXPECT_EQ(size, 10001u);
    EXPECT_EQ(type, kRegSz);
    std::vector<uint8_t> buffer(4096);
    size = 4096;
    EXPECT_EQ(reg.QueryValue(top, "long", &type, buffer.data(), &size), kErrorMoreData);
    EXPECT_EQ(size, 10001u) << "too small a buffer learns the size it needs";
    size = 1;
    EXPECT_EQ(reg.QueryValue(top, "missing", &type, buffer.data(), &size), kErrorFileNotFound);
    EXPECT_EQ(size, 1u) << "a missing value leaves the length as it was";
    size = 4096;
    ASSERT_EQ(reg.QueryValue(top, "ALPHA", &type, buffer.data(), &size), kRegOk);
    EXPECT_EQ(std::string(buffer.begin(), buffer.begin() + size), std::string("%WINDIR%\\x\0", 11))
        << "names ignore case; an expandable string is not expanded";
    EXPECT_EQ(type, kRegExpandSz);
    size = 4096;
    ASSERT_EQ(reg.QueryValue(top, "\x9Fy", &type, buffer.data(), &size), kRegOk) << "\x9F is the capital of \xFF";
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(type, kRegNone);
    size = 4096;
    ASSERT_EQ(reg.QueryValue(top, "empty", &type, buffer.data(), &size), kRegOk);
    EXPECT_EQ(size, 0u) << "a string with no data keeps none";
    EXPECT_EQ(type, kRegSz);

    // Values enumerate in Wine's order, the default value first; too small a
    // data buffer gives the size it needs.
    struct Listed {
        std::string name;
        uint32_t type;
        std::string data;
        bool operator==(const Listed&) const = default;
    };
    std::vector<Listed> listed;
    for (uint32_t i = 0;; ++i) {
        char name[260];
        uint32_t nameLength = 260, dataSize = 4096;
        const RegError result = reg.EnumValue(top, i, name, &nameLength, &type, buffer.data(), &dataSize);
        if (result == kErrorMoreData) {
            EXPECT_EQ(dataSize, 10001u);
            std::vector<uint8_t> big(dataSize);
            nameLength = 260;
            ASSERT_EQ(reg.EnumValue(top, i, name, &nameLength, &type, big.data(), &dataSize), kRegOk);
            listed.push_back({std::string(name, nameLength), type, std::string(big.begin(), big.end())});
            continue;
        }
        if (result != kRegOk) {
            EXPECT_EQ(result, kErrorNoMoreItems);
            break;
        }
        listed.push_back({std::string(name, nameLength), type,
                          std::string(buffer.begin(), buffer.begin() + dataSize)});
    }
    const std::vector<Listed> expected = {
        {"", kRegSz, std::string("default\0", 8)},
        {"Alpha", kRegExpandSz, std::string("%WINDIR%\\x\0", 11)},
        {"beta", kRegMultiSz, std::string("one\0two\0\0", 9)},
        {"empty", kRegSz, ""},
        {"long", kRegSz, longText},
        {"zeta", kRegSz, std::string("text\0", 5)},
        {"\xC9t\xE9", kRegDword, std::string("\xFE\xFF\xFF\xFF", 4)},
        {"\xFFy", kRegNone, ""},
        {"\x80uro", kRegBinary, binary},
    };
    ASSERT_EQ(listed.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) EXPECT_TRUE(listed[i] == expected[i]) << "entry " << i;

    // A handle opened for reading cannot change anything.
    RegKey reader = 0;
    ASSERT_EQ(reg.OpenKey(kHKeyCurrentUser, root, kKeyRead, reader), kRegOk);
    EXPECT_EQ(reg.SetValue(reader, "zeta", kRegSz, bytes("new"), 4), kErrorAccessDenied);
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
    EXPECT_EQ(reg.OpenKey(top, "Sub\\Deeper", kKeyRead, doomed), kErrorFileNotFound);
    EXPECT_EQ(reg.DeleteKey(top, "Sub"), kRegOk);

    EXPECT_EQ(reg.CloseKey(top), kRegOk);
    DeleteRegTree(reg, kHKeyCurrentUser, root);
    EXPECT_EQ(reg.OpenKey(kHKeyCurrentUser, root, kKeyRead, key), kErrorFileNotFound);
}

// The two views of a 64-bit system. `name` is a key of the suite's own to make
// below HKLM\Software; it must not exist in either view.
inline void CheckRegistryViewContract(Registry& reg, const std::string& name) {
    const std::string path = "Software\\" + name;
    const std::string redirected = "Software\\Wow6432Node\\" + name;
    RegKey key = 0;
    ASSERT_EQ(reg.CreateKey(kHKeyLocalMachine, path + "\\Inner", kKeyAllAccess | kKeyWow64_32Key, key), kRegOk);
    const std::string text = "thirty-two";
    EXPECT_EQ(reg.SetValue(key, "Where", kRegSz, reinterpret_cast<const uint8_t*>(text.c_str()),
                           static_cast<uint32_t>(text.size() + 1)),
              kRegOk);
    reg.CloseKey(key);

    // The 32-bit key lies under Wow6432Node, and the 64-bit view of its own path is empty.
    EXPECT_EQ(reg.OpenKey(kHKeyLocalMachine, redirected + "\\Inner", kKeyRead | kKeyWow64_64Key, key), kRegOk);
    reg.CloseKey(key);
    EXPECT_EQ(reg.OpenKey(kHKeyLocalMachine, path, kKeyRead | kKeyWow64_64Key, key), kErrorFileNotFound);
    // A key opened in the 32-bit view reaches its subkeys by their plain names.
    RegKey top = 0;
    ASSERT_EQ(reg.OpenKey(kHKeyLocalMachine, path, kKeyRead | kKeyWow64_32Key, top), kRegOk);
    EXPECT_EQ(reg.OpenKey(top, "Inner", kKeyRead, key), kRegOk);
    char data[32] = {};
    uint32_t size = sizeof data;
    uint32_t type = 0;
    EXPECT_EQ(reg.QueryValue(key, "Where", &type, reinterpret_cast<uint8_t*>(data), &size), kRegOk);
    EXPECT_STREQ(data, "thirty-two");
    reg.CloseKey(key);
    reg.CloseKey(top);

    // A delete in the other view does not reach it; one in its own view does.
    EXPECT_EQ(reg.DeleteKey(kHKeyLocalMachine, path + "\\Inner", kKeyWow64_64Key), kErrorFileNotFound);
    EXPECT_EQ(reg.DeleteKey(kHKeyLocalMachine, path + "\\Inner", kKeyWow64_32Key), kRegOk);
    EXPECT_EQ(reg.DeleteKey(kHKeyLocalMachine, path, kKeyWow64_32Key), kRegOk);
    EXPECT_EQ(reg.OpenKey(kHKeyLocalMachine, redirected, kKeyRead | kKeyWow64_64Key, key), kErrorFileNotFound);
}

// The classes in the two views: HKCR\CLSID\{id} of the 32-bit view is
// HKCR\Wow6432Node\CLSID\{id}, as a 64-bit Windows and Wine keep it. `clsid`
// is the suite's own; it must not exist in either view.
inline void CheckClassesViewContract(Registry& reg, const std::string& clsid) {
    const std::string path = "CLSID\\" + clsid;
    RegKey key = 0;
    ASSERT_EQ(reg.CreateKey(kHKeyClassesRoot, path + "\\InprocServer32", kKeyAllAccess | kKeyWow64_32Key, key),
              kRegOk);
    const std::string text = "C:\\x86.dll";
    EXPECT_EQ(reg.SetValue(key, "", kRegSz, reinterpret_cast<const uint8_t*>(text.c_str()),
                           static_cast<uint32_t>(text.size() + 1)),
              kRegOk);
    reg.CloseKey(key);

    EXPECT_EQ(reg.OpenKey(kHKeyClassesRoot, "Wow6432Node\\" + path + "\\InprocServer32", kKeyRead | kKeyWow64_64Key,
                          key),
              kRegOk);
    reg.CloseKey(key);
    EXPECT_EQ(reg.OpenKey(kHKeyClassesRoot, path, kKeyRead | kKeyWow64_64Key, key), kErrorFileNotFound);
    EXPECT_EQ(reg.OpenKey(kHKeyClassesRoot, path, kKeyRead, key), kErrorFileNotFound);
    // HKCR\CLSID opened in the 32-bit view reaches the class by its plain name.
    RegKey classes = 0;
    ASSERT_EQ(reg.OpenKey(kHKeyClassesRoot, "CLSID", kKeyRead | kKeyWow64_32Key, classes), kRegOk);
    ASSERT_EQ(reg.OpenKey(classes, clsid + "\\InprocServer32", kKeyRead, key), kRegOk);
    char data[32] = {};
    uint32_t size = sizeof data;
    uint32_t type = 0;
    EXPECT_EQ(reg.QueryValue(key, "", &type, reinterpret_cast<uint8_t*>(data), &size), kRegOk);
    EXPECT_STREQ(data, "C:\\x86.dll");
    reg.CloseKey(key);
    reg.CloseKey(classes);

    EXPECT_EQ(reg.DeleteKey(kHKeyClassesRoot, path + "\\InprocServer32", kKeyWow64_64Key), kErrorFileNotFound);
    EXPECT_EQ(reg.DeleteKey(kHKeyClassesRoot, path + "\\InprocServer32", kKeyWow64_32Key), kRegOk);
    EXPECT_EQ(reg.DeleteKey(kHKeyClassesRoot, path, kKeyWow64_32Key), kRegOk);
    EXPECT_EQ(reg.OpenKey(kHKeyClassesRoot, "Wow6432Node\\" + path, kKeyRead | kKeyWow64_64Key, key),
              kErrorFileNotFound);
}

}  // namespace corvane::contract
