// The process backup store's reader on records of any content: whatever a
// .prc file holds (no separator, several, any line ends, NULs, bytes above
// 127), the reader gives at most one row, its fields hold no separator and no
// line break, the row's folder and file name make up the record's path, and a
// record written from those fields reads back to the same row.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "fakes/fake_file_system.h"
#include "processes/backup_store.h"

namespace {

constexpr const char* kApp = "C:\\Corvane";

void Check(bool condition) {
    if (!condition) std::abort();
}

bool Clean(const std::string& field) { return field.find_first_of("\x01\r\n") == std::string::npos; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string content(reinterpret_cast<const char*>(data), size);
    const auto fields = corvane::ReadBackupRecord(content);
    const std::string firstLine = content.substr(0, content.find_first_of("\r\n"));
    Check(fields.has_value() == (firstLine.find('\x01') != std::string::npos));

    corvane::fakes::FakeFileSystem files;
    files.AddFile(corvane::BackupRecordPath(kApp, "1_1_1_0_0_0"), content);
    files.AddFile(corvane::BackupCopyPath(kApp, "1_1_1_0_0_0"), "copy");
    const auto entries = corvane::ListBackups(files, kApp);
    Check(entries.size() == (fields ? 1u : 0u));
    if (!fields) return 0;

    Check(Clean(fields->path) && Clean(fields->date));
    const corvane::BackupEntry& entry = entries[0];
    Check(entry.recordName == "1_1_1_0_0_0.prc");
    Check(corvane::BackupCopyName(entry.recordName) == "1_1_1_0_0_0.bup");
    Check(entry.date == fields->date);
    Check(entry.folder + entry.fileName == fields->path);
    Check(entry.fileName.find('\\') == std::string::npos);
    Check(entry.folder.empty() || entry.folder.back() == '\\');

    const auto again = corvane::ReadBackupRecord(corvane::BackupRecord(fields->path, fields->date));
    Check(again && again->path == fields->path && again->date == fields->date);
    return 0;
}
