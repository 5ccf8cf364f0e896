#include "startup/place_store.h"

#include "foundations/app_identity.h"
#include "foundations/reg_backup.h"
#include "foundations/registry.h"
#include "startup/startup_rows.h"

namespace corvane {

namespace {

constexpr std::string_view kPosition = " Position: ";

bool Below(const std::string& path, const std::string& top) {
    return path.size() > top.size() && path[top.size()] == '\\' && SameRegName(path.substr(0, top.size()), top);
}

}  // namespace

std::string PlaceStoreFolder(const std::string& appPath) { return appPath + "\\" + kPlaceStoreFolder; }

std::string PlaceStorePath(const std::string& appPath, const std::string& location) {
    return PlaceStoreFolder(appPath) + "\\" + location + ".reg";
}

PlaceStore ReadPlaceStore(FileSystem& files, const std::string& appPath, const std::string& location, uint32_t view) {
    PlaceStore store;
    const std::string path = PlaceStorePath(appPath, location);
    if (!files.Exists(path)) return store;
    store.text = files.Read(path);
    const std::optional<RegFile> file = store.text ? ParseRegFile(*store.text) : std::nullopt;
    if (!file || KeptFileView(*file) != (view & kKeyWow64_32Key)) {
        store.readable = false;
        return store;
    }
    std::vector<int> positions;
    for (const std::string& comment : file->comments) {
        if (comment.rfind(kPosition, 0) == 0) positions.push_back(std::atoi(comment.c_str() + kPosition.size()));
    }
    for (const RegFileKey& key : file->keys) {
        if (store.items.empty() || !Below(key.path, store.items.back().keys.front().path)) {
            const size_t n = store.items.size();
            store.items.push_back({{}, n < positions.size() ? positions[n] : -1});
        }
        store.items.back().keys.push_back(key);
    }
    return store;
}

std::string FormatPlaceStore(const std::string& location, uint32_t view, const std::vector<StoreItem>& items) {
    std::vector<RegFileKey> keys;
    for (const StoreItem& item : items) keys.insert(keys.end(), item.keys.begin(), item.keys.end());
    RegFile file = KeptFile(" " + LocationCaption(location) + ": startup items disabled by " + kAppTitle + ". " +
                                ImportHint(view) + " to put them back by hand, then delete the file.",
                            std::move(keys), view);
    for (const StoreItem& item : items) {
        if (item.position >= 0) file.comments.push_back(std::string(kPosition) + std::to_string(item.position));
    }
    return FormatRegFile(file);
}

}  // namespace corvane
