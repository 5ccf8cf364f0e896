// The process backup store's reader on records of any content: whatever a
// .prc file holds (no separator, several, any line ends, NULs, bytes above
// 127), the reader gives at most one row, its fields hold no separator and no
// line break, the row's folder and file name make up the record's path, and a
// record written from those fields reads back to the same row.
#include "fakes/fake_file_system.h"
#include "fuzz_input.h"
#include "processes/backup_store.h"

using namespace corvane;

static bool Clean(const std::string& field) { return field.find_first_of("\x01\r\n") == std::string::npos; }

FUZZ_PROPERTY(in) {
    const std::string content = in.Rest();
    const auto fields = ReadBackupRecord(content);
    CHECK(fields.has_value() == (content.substr(0, content.find_first_of("\r\n")).find('\x01') != std::string::npos));

    fakes::FakeFileSystem files;
    files.AddFile(BackupRecordPath("C:\\Corvane", "1_1_1_0_0_0"), content);
    files.AddFile(BackupCopyPath("C:\\Corvane", "1_1_1_0_0_0"), "copy");
    const auto entries = ListBackups(files, "C:\\Corvane");
    CHECK(entries.size() == (fields ? 1u : 0u));
    if (!fields) return;
    const BackupEntry& entry = entries[0];
    CHECK(Clean(fields->path) && Clean(fields->date) && entry.date == fields->date);
    CHECK(entry.recordName == "1_1_1_0_0_0.prc" && BackupCopyName(entry.recordName) == "1_1_1_0_0_0.bup");
    CHECK(entry.folder + entry.fileName == fields->path && entry.fileName.find('\\') == std::string::npos &&
          (entry.folder.empty() || entry.folder.back() == '\\'));
    const auto again = ReadBackupRecord(BackupRecord(fields->path, fields->date));
    CHECK(again && again->path == fields->path && again->date == fields->date);
}
