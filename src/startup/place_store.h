#pragma once
// The store of what a command took out of an other place: one REGEDIT4 file
// per Location code in the folder DOther beside the program, as the registry
// editor writes it, so that importing it by hand puts the items back.
//
// Each item is kept under its full key path: a value as the key holding only
// it, a whole key (an Active Setup component) as the key and all below it.
// A list value (Winlogon's Shell and Userinit, AppInit_DLLs) is kept as it
// stood before its program was taken out, and a comment "Position: n" per
// item, in the order of the items, says which of its programs (from 0) was
// taken; importing it puts the whole list back as it was then.
#include <optional>
#include <string>
#include <vector>

#include "foundations/reg_file.h"
#include "platform/file_system.h"

namespace corvane {

inline constexpr const char* kPlaceStoreFolder = "DOther";

std::string PlaceStoreFolder(const std::string& appPath);
std::string PlaceStorePath(const std::string& appPath, const std::string& location);

// One item of a store: its keys (the first is the top, the others below
// it) and, for a list value, which program was taken out.
struct StoreItem {
    std::vector<RegFileKey> keys;
    int position = -1;

    bool operator==(const StoreItem&) const = default;
};

struct PlaceStore {
    bool readable = true;             // false: the file is there and cannot be read as a store
    std::optional<std::string> text;  // the file as read; nothing when there is none
    std::vector<StoreItem> items;
};

// A file of another view than `view` (0, kKeyWow64_64Key or kKeyWow64_32Key) cannot be read as the store.
PlaceStore ReadPlaceStore(FileSystem& files, const std::string& appPath, const std::string& location, uint32_t view);

// The store's file for the items, of the registry view `view`.
std::string FormatPlaceStore(const std::string& location, uint32_t view, const std::vector<StoreItem>& items);

}  // namespace corvane
