#pragma once
// Keys and values the program takes out of the registry are first kept as
// REGEDIT4 files beside the program: the browser's helper-object store and
// the "backup" folder that the deletes of every pane write to. A kept file is
// written through a temporary one and read back before anything is removed.
#include <optional>
#include <string>
#include <vector>

#include "foundations/durable_file.h"
#include "foundations/reg_file.h"
#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/prompts.h"
#include "platform/registry.h"
#include "platform/system_info.h"

namespace corvane {

// The folder beside the program that what the deletes remove goes to, as
// "Toolbar {clsid} 2026-11-23 170512.reg" and the like.
inline constexpr const char* kBackupFolder = "backup";
// The comment of a kept key that names its registry view: the program's own
// (64-bit) or the 32-bit one of a 64-bit system. A file without it is of the
// program's own view.
inline constexpr const char* kRegistryViewComment = " Registry view: ";
inline constexpr const char* kRegistryView64 = "64-bit";
inline constexpr const char* kRegistryView32 = "32-bit";

std::string RegBackupFolder(const std::string& appPath);

// How a kept file of the view `view` tells the user to put it back: in the
// 32-bit view only the 32-bit registry editor imports it where it came from.
std::string ImportHint(uint32_t view);

// Whether a name can be a file name as it is (no characters a file name
// cannot hold, not too long).
bool FileNameCanHold(const std::string& name);
// A name for a kept file that says which item it holds: what a file name
// cannot hold becomes "_".
std::string FileNamePart(std::string name);

SysError EnsureFolder(FileSystem& files, const std::string& folder);

// A kept file: the heading comment, the registry view (0 or kKeyWow64_32Key),
// then the keys.
RegFile KeptFile(const std::string& heading, std::vector<RegFileKey> keys, uint32_t view = 0);
// The view a kept file names: 0 when it names the program's own or none,
// kKeyWow64_32Key for the 32-bit one; nothing for a view it cannot mean.
std::optional<uint32_t> KeptFileView(const RegFile& file);

// "backup\<kind> <name> 2026-11-23 170512.reg", with " (2)" and on when that
// second has one already.
std::string FreeBackupPath(FileSystem& files, Clock& clock, const std::string& appPath, const std::string& kind,
                           const std::string& name);

// What a delete needs to keep a copy in the backup folder and report in the
// program's style.
struct BackupPorts {
    FileSystem& files;
    Prompts& prompts;
    SystemInfo& system;
    Clock& clock;
    std::string appPath;
};

// Writes `keys` with the heading to a new file in the backup folder; on
// failure says so for `procedure` ("... so nothing was deleted") and gives
// nothing.
std::optional<std::string> WriteBackup(BackupPorts& ports, const char* procedure, const std::string& kind,
                                       const std::string& name, const std::string& heading,
                                       const std::vector<RegFileKey>& keys, uint32_t view = 0);

// Whether the key can be opened to read.
bool RegKeyExists(Registry& registry, RegKey root, const std::string& keyPath);

// Deletes a key of which `keys` is a whole copy. When it stops part-way,
// what went is written back, so the key is whole where it was.
bool RemoveKeyTree(Registry& registry, Prompts& prompts, SystemInfo& system, RegKey root, const std::string& keyPath,
                   const std::vector<RegFileKey>& keys);

}  // namespace corvane
