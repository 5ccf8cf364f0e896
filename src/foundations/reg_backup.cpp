#include "foundations/reg_backup.h"

#include <cstdio>
#include <string_view>

#include "foundations/error_message.h"
#include "foundations/registry.h"

namespace corvane {

namespace {

// A kept file's name stays well inside the path limit, whatever the item is called.
constexpr size_t kLongestNamePart = 100;

bool NotInFileNames(char c) {
    return static_cast<unsigned char>(c) < 0x20 || std::string_view("\\/:*?\"<>|").find(c) != std::string_view::npos;
}

std::string Stamp(const SystemTime& t) {
    char text[48];
    std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u%02u%02u", t.year, t.month, t.day, t.hour, t.minute,
                  t.second);
    return text;
}

}  // namespace

std::string RegBackupFolder(const std::string& appPath) { return appPath + "\\" + kBackupFolder; }

std::string ImportHint(uint32_t view) {
    return (view & kKeyWow64_32Key)
               ? "Import this file with the 32-bit registry editor (%SystemRoot%\\SysWOW64\\regedit.exe)"
               : "Import this file";
}

bool FileNameCanHold(const std::string& name) {
    if (name.empty() || name.back() == '.' || name.back() == ' ' || name.size() > kLongestNamePart) return false;
    for (char c : name) {
        if (NotInFileNames(c)) return false;
    }
    return true;
}

std::string FileNamePart(std::string name) {
    for (char& c : name) {
        if (NotInFileNames(c)) c = '_';
    }
    if (name.size() > kLongestNamePart) name.resize(kLongestNamePart);
    while (!name.empty() && (name.back() == '.' || name.back() == ' ')) name.pop_back();
    return name.empty() ? "_" : name;
}

SysError EnsureFolder(FileSystem& files, const std::string& folder) {
    return files.IsFolder(folder) ? kNoError : files.CreateFolder(folder);
}

RegFile KeptFile(const std::string& heading, std::vector<RegFileKey> keys, uint32_t view) {
    const char* named = (view & kKeyWow64_32Key) ? kRegistryView32 : kRegistryView64;
    return RegFile{{heading, std::string(kRegistryViewComment) + named}, std::move(keys)};
}

std::optional<uint32_t> KeptFileView(const RegFile& file) {
    const std::string prefix = kRegistryViewComment;
    for (const std::string& comment : file.comments) {
        if (comment.rfind(prefix, 0) != 0) continue;
        const std::string named = comment.substr(prefix.size());
        if (named == kRegistryView64) return 0u;
        if (named == kRegistryView32) return kKeyWow64_32Key;
        return std::nullopt;
    }
    return 0u;
}

std::string FreeBackupPath(FileSystem& files, Clock& clock, const std::string& appPath, const std::string& kind,
                           const std::string& name) {
    const std::string base = RegBackupFolder(appPath) + "\\" + kind + " " + FileNamePart(name) + " " + Stamp(clock.Now());
    std::string path = base + ".reg";
    for (int n = 2; files.Exists(path); ++n) path = base + " (" + std::to_string(n) + ").reg";
    return path;
}

std::optional<std::string> WriteBackup(BackupPorts& ports, const char* procedure, const std::string& kind,
                                       const std::string& name, const std::string& heading,
                                       const std::vector<RegFileKey>& keys, uint32_t view) {
    const std::string folder = RegBackupFolder(ports.appPath);
    if (const SysError error = EnsureFolder(ports.files, folder)) {
        ShowErrorOccurred(ports.prompts, procedure,
                          "The backup folder " + folder + " could not be made: " + ErrorDescription(ports.system, error));
        return std::nullopt;
    }
    const std::string path = FreeBackupPath(ports.files, ports.clock, ports.appPath, kind, name);
    if (const SysError error = WriteDurably(ports.files, path, FormatRegFile(KeptFile(heading, keys, view)))) {
        ShowErrorOccurred(ports.prompts, procedure,
                          "The backup " + path + " could not be written, so nothing was deleted: " +
                              ErrorDescription(ports.system, error));
        return std::nullopt;
    }
    return path;
}

bool RegKeyExists(Registry& registry, RegKey root, const std::string& keyPath) {
    RegKey key = 0;
    if (registry.OpenKey(root, keyPath, kKeyRead, key) != kRegOk) return false;
    registry.CloseKey(key);
    return true;
}

bool RemoveKeyTree(Registry& registry, Prompts& prompts, SystemInfo& system, RegKey root, const std::string& keyPath,
                   const std::vector<RegFileKey>& keys) {
    if (DeleteRegKeyTree(registry, prompts, system, root, keyPath)) return true;
    ImportRegKeys(registry, keys);
    return false;
}

}  // namespace corvane
