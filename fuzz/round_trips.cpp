// Every format the program reads from outside, or writes and reads back, as a
// property over any bytes: what is written reads back the same, and reading
// never crashes. libFuzzer runs each as fuzz_<name> (the executable's name
// picks it); the test run replays each as roundtrip_<name> over fixed inputs
// and the seeds of fuzz/corpus/<name>/, natively and under Wine, holding a
// seed's exact reading against tests/golden/ where that is the point.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "applications/slow_info_cache.h"
#include "browser/browser_extensions.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_file_facts.h"
#include "fakes/fake_file_system.h"
#include "fakes/fake_registry.h"
#include "fakes/fakes.h"
#include "foundations/csv.h"
#include "platform/text_encoding.h"
#include "foundations/delete_on_reboot.h"
#include "foundations/inventory.h"
#include "foundations/json.h"
#include "foundations/reg_file.h"
#include "foundations/registry.h"
#include "foundations/settings.h"
#include "processes/backup_store.h"
#include "processes/reference_lists.h"
#include "startup/run_key_store.h"
#include "startup/startup_commands.h"
#include "startup/task_file.h"
#ifndef CORVANE_FUZZ
#include "support/golden.h"
#endif

using namespace corvane;

#define CHECK(...) \
    ((__VA_ARGS__) ? void() : (std::fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #__VA_ARGS__), std::abort()))

namespace {

// An input read as records, giving zeros and short runs once used up.
struct Input {
    const uint8_t* data;
    size_t size, pos = 0;

    bool AtEnd() const { return pos >= size; }
    uint8_t Byte() { return AtEnd() ? 0 : data[pos++]; }
    size_t Length() {
        const size_t low = Byte();
        return low | size_t{Byte()} << 8;
    }
    std::string Bytes(size_t count) {
        count = std::min(count, size - pos);
        pos += count;
        return std::string(reinterpret_cast<const char*>(data + pos - count), count);
    }
    std::string Rest() { return Bytes(size - pos); }
};

using Property = void (*)(Input&);
std::map<std::string, Property>& Properties() {
    static std::map<std::string, Property> properties;
    return properties;
}
#define PROPERTY(name)                                                                  \
    void name##Holds(Input& in);                                                        \
    [[maybe_unused]] const bool name##Listed = (Properties()[#name] = name##Holds, true); \
    void name##Holds(Input& in)

// The seed being replayed, and whether its output is tests/golden/<prefix><seed><suffix>.
std::string seed;
bool SeedsGolden([[maybe_unused]] const std::string& prefix, [[maybe_unused]] const std::string& suffix,
                 [[maybe_unused]] const std::string& bytes) {
#ifndef CORVANE_FUZZ
    const auto result = seed.empty() ? testing::AssertionSuccess() : golden::Matches(prefix + seed + suffix, bytes);
    if (!result) std::fprintf(stderr, "%s\n", result.message());
    return static_cast<bool>(result);
#endif
    return true;
}

int32_t Int32(std::string bytes) {
    int32_t number;
    bytes.resize(4);
    std::memcpy(&number, bytes.data(), 4);
    return number;
}

// A value as the value list shows it: text less its last byte (two for a
// list of texts), bytes as they are, a number of the first four.
RegValueEntry Listed(const std::string& name, uint32_t type, const std::string& bytes) {
    if (type == kRegSz || type == kRegExpandSz || type == kRegMultiSz) {
        return {name, bytes.substr(0, bytes.size() - std::min<size_t>(bytes.size(), type == kRegMultiSz ? 2 : 1)), kTypeCodeText};
    }
    if (type == kRegDword) return {name, Int32(bytes), kTypeCodeNumber};
    if (type == kRegBinary) return {name, std::vector<uint8_t>(bytes.begin(), bytes.end()), kTypeCodeBytes};
    return {name, std::string(), std::nullopt};
}

// Values and subkeys of any name, type and size (a byte, bit 0: Wine's sorted
// value order; then records until the input ends: a tag, bit 7 a subkey, else a
// value of type tag & 0x0F; the name and a value's data, each after a 16-bit
// length): every reader gives the stored bytes, a long name or long data never
// ends a walk early, every key opened is closed, and the tree, as a .reg backup
// imported anew, is the same tree.
PROPERTY(registry_readers) {
    const std::string path = "HKCU\\Software\\Fuzz", key = "Software\\Fuzz";
    fakes::FakeRegistry reg;
    if (in.Byte() & 1) reg.valueOrder = fakes::FakeRegistry::ValueOrder::Sorted;
    reg.AddKey(path);
    while (!in.AtEnd()) {
        const uint8_t tag = in.Byte();
        // A registry name holds no NUL, and a key's no backslash.
        std::string name = in.Bytes(in.Length());
        std::replace(name.begin(), name.end(), '\0', '_');
        if (tag & 0x80) std::replace(name.begin(), name.end(), '\\', '_');
        if (tag & 0x80 && !name.empty()) reg.AddKey(path + "\\" + name);
        if (!(tag & 0x80)) reg.Put(path, name, tag & 0x0F, in.Bytes(in.Length()));
    }
    // Only a name past the system's 16,383 characters ends the value list and,
    // like a subkey's name too long to read back, empties the tree.
    const RegValueList list = EnumRegValues(reg, kHKeyCurrentUser, key);
    const auto tree = ReadRegKeyTree(reg, kHKeyCurrentUser, key);
    const std::vector<std::string> names = reg.ValueNames(path), subkeys = reg.SubkeyNames(path);
    const auto longName = std::find_if(names.begin(), names.end(), [](const std::string& n) { return n.size() >= 16384; });
    CHECK(list.Count() == longName - names.begin());
    CHECK(tree.has_value() == (longName == names.end() && std::all_of(subkeys.begin(), subkeys.end(), [](const std::string& k) { return k.size() < 256; })));
    CHECK(!tree || (tree->size() == 1 + subkeys.size() && tree->front().values.size() == names.size()));
    for (int i = 0; i < list.Count(); ++i) {
        const auto stored = reg.Value(path, names[i]);
        const std::string& bytes = stored->data;
        const RegValueEntry &entry = list.Item(i + 1), expected = Listed(names[i], stored->type, bytes);
        CHECK(entry.name == expected.name && entry.data == expected.data && entry.typeCode == expected.typeCode);
        CHECK(!tree || tree->front().values[i] == RegFileValue{names[i], stored->type, bytes});
        CHECK(GetRegString(reg, kHKeyCurrentUser, key, entry.name) == bytes.substr(0, bytes.find('\0')));
        CHECK(GetRegDword(reg, kHKeyCurrentUser, key, entry.name) == (bytes.size() <= 4 ? Int32(bytes) : 0));
        std::vector<uint8_t> binary;
        CHECK(GetRegBinary(reg, kHKeyCurrentUser, key, entry.name, binary, kSlowInfoCacheSize) == (bytes.size() == kSlowInfoCacheSize));
        CHECK(std::string(binary.begin(), binary.end()) == bytes);
    }
    // Subkeys up to the first name that does not fit the 255-character buffer.
    std::vector<std::string> keys;
    EnumRegKeys(reg, kHKeyCurrentUser, key, keys);
    for (size_t i = 0; i < subkeys.size() && subkeys[i].size() < 255; ++i) CHECK(i < keys.size() && keys[i] == subkeys[i]);
    CHECK(reg.OpenHandles() == 0);
    if (!tree || !RegFileCanHold(*tree)) return;
    const auto file = ParseRegFile(FormatRegFile({{}, *tree}));
    fakes::FakeRegistry fresh;
    CHECK(file && file->keys == *tree && ImportRegKeys(fresh, file->keys) == kRegOk);
    CHECK(ReadRegKeyTree(fresh, kHKeyCurrentUser, key) == tree && fresh.OpenHandles() == 0);
}

// The lines of a list that are not `entry`, in order.
std::vector<std::string> Others(std::vector<std::string> lines, const std::string& entry) {
    lines.erase(std::remove(lines.begin(), lines.end(), entry), lines.end());
    return lines;
}

// The safe list on a file of any content (input: the name's length, the file,
// the name): a name added is listed once, a name removed is gone, and every
// other line keeps its place and bytes, whatever line ends stood beside it.
PROPERTY(reference_lists) {
    const size_t nameLength = in.Byte();
    const std::string all = in.Rest(), content = all.substr(0, all.size() - std::min(nameLength, all.size()));
    const std::string name = all.substr(content.size()), entry = LowerAnsi(name), file = std::string("C:\\Corvane\\") + kCommonProcessFile;
    // A process name has no line break and no NUL; the system gives none.
    if (name.find_first_of(std::string("\r\n\0", 3)) != std::string::npos) return;
    fakes::FakeFileSystem files;
    files.AddFile(file, content);
    const std::vector<std::string> before = loadReferenceList(files, file);
    const auto count = [&entry](const std::vector<std::string>& lines) { return std::count(lines.begin(), lines.end(), entry); };

    CHECK(AddToSafeList(files, "C:\\Corvane", {name}) == kNoError);
    const std::vector<std::string> added = loadReferenceList(files, file);
    CHECK(entry.empty() || isListedProcess(added, entry) || added.size() > kMaxRows);
    CHECK((entry.empty() || count(added) == std::max<std::ptrdiff_t>(1, count(before))) && Others(added, entry) == Others(before, entry));
    CHECK(RemoveFromSafeList(files, "C:\\Corvane", {name}) == kNoError);
    const std::vector<std::string> removed = loadReferenceList(files, file);
    CHECK((entry.empty() || count(removed) == 0) && Others(removed, entry) == Others(before, entry));
}

// A .reg file of any bytes: what is read, written out, reads back the same; a
// seed's text pins what a round trip cannot (wrapping, escapes, loose text).
PROPERTY(reg_file) {
    const auto file = ParseRegFile(in.Rest());
    const std::string text = file ? FormatRegFile(*file) : "not a .reg file\n";
    CHECK((!file || ParseRegFile(text) == file) && SeedsGolden("regfile-", ".reg", text));
}

bool Clean(const std::string& field) { return field.find_first_of("\x01\r\n") == std::string::npos; }

// A process backup's record of any content: fields exactly when the first line
// holds a separator, clean, and written anew from them, the same fields.
PROPERTY(backup_store) {
    const std::string content = in.Rest();
    const auto fields = ReadBackupRecord(content);
    CHECK(fields.has_value() == (content.substr(0, content.find_first_of("\r\n")).find('\x01') != std::string::npos));
    if (!fields) return;
    CHECK(Clean(fields->path) && Clean(fields->date));
    const auto again = ReadBackupRecord(BackupRecord(fields->path, fields->date));
    CHECK(again && again->path == fields->path && again->date == fields->date);
}

// What a task file's reading found, as one text.
std::string Found(const TaskFile& file) {
    std::string found(file.wellFormed ? "well-formed\n" : "not well-formed\n");
    for (const TaskExec& exec : file.execs) found += "command [" + exec.command + "] arguments [" + exec.arguments + "]\n";
    return found;
}

// Task files of any bytes: no actions unless well-formed, the same reading in
// either UTF-16, and a seed's reading its golden file's.
PROPERTY(task_file) {
    const std::string bytes = in.Rest();
    const TaskFile file = ReadTaskFile(bytes);
    CHECK((file.wellFormed || file.execs.empty()) && SeedsGolden("taskfile-", ".txt", Found(file)));
    std::string little("\xFF\xFE", 2), big("\xFE\xFF", 2);
    for (const char16_t c : TaskFileText(bytes)) {
        little += {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
        big += {static_cast<char>(c >> 8), static_cast<char>(c & 0xFF)};
    }
    CHECK(Found(ReadTaskFile(little)) == Found(file) && Found(ReadTaskFile(big)) == Found(file));
}

// The report's CSV. Input: a byte; bit 0 clear, a CSV of any bytes, whose refusal
// names its line, whose records read back the same written out, and whose rows
// have the header's width. Bit 0 set, NUL-ended fields as rows of the report
// (bit 1: with hashes), which read back field for field. Either way, the bytes
// taken as code page 1252 come back from UTF-8, and taken as UTF-8 give no more
// characters than they have bytes.
PROPERTY(csv) {
    const uint8_t mode = in.Byte();
    const std::string rest = in.Rest();
    TextEncoding& ansi = Windows1252Text();
    CHECK(ansi.AnsiOfUtf8(ansi.Utf8OfAnsi(rest)) == rest && ansi.AnsiOfUtf8(rest).size() <= rest.size());
    if ((mode & 1) == 0) {
        const CsvParse parse = ParseCsv(rest);
        CHECK(parse.error.empty() || (parse.records.empty() && parse.line >= 1));
        std::string written;
        for (const auto& record : parse.records) written += CsvRecord(record);
        const CsvParse again = ParseCsv(written);
        CHECK(again.error.empty() && again.records == parse.records);
        const InventoryTable table = ReadInventoryCsv(rest);
        CHECK((table.error.empty() || table.rows.empty()) && table.error.find('\n') == std::string::npos);
        for (const auto& row : table.rows) CHECK(row.size() == table.columns && row.size() >= kInventoryColumns.size());
        return;
    }
    const bool withHash = mode & 2;
    const size_t width = kInventoryColumns.size() + withHash;
    std::vector<std::string> fields(1);
    for (const char c : rest) c == '\0' ? fields.emplace_back() : fields.back() += c;
    fields.resize((fields.size() + width - 1) / width * width);
    std::vector<std::vector<std::string>> rows;
    for (size_t i = 0; i < fields.size(); i += width) rows.emplace_back(fields.begin() + i, fields.begin() + i + width);
    const InventoryTable table = ReadInventoryCsv(InventoryCsv(rows, withHash));
    CHECK(table.error.empty() && table.rows == rows && table.hashColumn.has_value() == withHash);
}

std::string StoreFields(const std::vector<StoreLine>& lines) {
    std::string fields;
    for (const StoreLine& line : lines) fields += line.name + '\0' + line.command + '\0' + line.location + '\n';
    return fields;
}

// The disabled run-key items' stores. Input: a byte; bit 0 clear, a store file of
// any bytes, whose clean lines per hive read back the same written out. Bit 0
// set, rows (a byte: modulo 3 the hive, bit 7 enabled; name; command), whose
// disabled rows, as a hive's store, read back as exactly that hive's.
PROPERTY(run_key_store) {
    constexpr const char* kScopes[] = {kLocHKLM, kLocHKLM32, kLocHKCU};
    const bool rowsMode = in.Byte() & 1;
    const std::string content = rowsMode ? "" : in.Rest();
    std::vector<StartupRow> rows;
    while (!in.AtEnd()) {
        const uint8_t flags = in.Byte();
        StartupRow row;
        row.cells = {in.Bytes(in.Byte()), flags & 0x80 ? "True" : "False", kScopes[flags % 3], in.Bytes(in.Byte())};
        // Disable refuses what the store cannot hold.
        if (StoreCanHold(row.cells[kStartupColName]) && StoreCanHold(row.cells[kStartupColCommand])) rows.push_back(row);
    }
    for (const char* scope : kScopes) {
        const std::vector<StoreLine> lines = ParseRunStore(rowsMode ? StoreContent(rows, scope) : content, scope);
        std::string written, expected;
        for (const StoreLine& line : lines) {
            CHECK(StoreCanHold(line.name) && StoreCanHold(line.command) && line.location == scope);
            written += FormatStoreLine(line.name, line.command, line.location);
        }
        for (const StartupRow& row : rows) {
            if (IsLive(row) || row.cells[kStartupColLocation] != scope) continue;
            expected += row.cells[kStartupColName] + '\0' + row.cells[kStartupColCommand] + '\0' + scope + '\n';
        }
        CHECK(StoreFields(ParseRunStore(written, scope)) == StoreFields(lines) && (!rowsMode || StoreFields(lines) == expected));
    }
}

// Settings.ini of any content (input: a byte, bit 0 bold, bit 1 delete; three
// colours; a text; the file): it reads within range, a seed's as its golden file
// says, and what the options pane writes reads back the same after a restart.
PROPERTY(settings) {
    const uint8_t flags = in.Byte();
    const int32_t colours[] = {Int32(in.Bytes(4)), Int32(in.Bytes(4)), Int32(in.Bytes(4))};
    const std::string note = in.Bytes(in.Byte());
    fakes::FakeProfile profile;
    profile.files["C:\\Corvane\\Settings.ini"] = in.Rest();
    Settings before(profile, "C:\\Corvane");
    SharedValues values;
    before.LoadDisplayValues(values);
    char seen[128];
    std::snprintf(seen, sizeof seen, "FontBold %d, SusColor %d, DisColor %d, SusDisColor %d, Delete %d\n", values.FontBold,
                  values.SusColor, values.DisColor, values.SusDisColor, before.ReadDeleteFlag());
    CHECK((values.FontBold == 0 || values.FontBold == 1) && before.ReadDeleteFlag() <= 1 && SeedsGolden("settings-", ".txt", seen));

    before.SetFontBold(values, flags & 1);
    before.SetColour(&SharedValues::SusColor, "SusColor", values, colours[0]);
    before.SetColour(&SharedValues::DisColor, "DisColor", values, colours[1]);
    before.SetColour(&SharedValues::SusDisColor, "SusDisColor", values, colours[2]);
    before.WriteDeleteFlag(flags >> 1 & 1);
    before.WriteSetting("Main", "Note", note);
    Settings after(profile, "C:\\Corvane");
    SharedValues read;
    after.LoadDisplayValues(read);
    CHECK(read.FontBold == (flags & 1) && after.ReadDeleteFlag() == (flags >> 1 & 1));
    CHECK(read.SusColor == colours[0] && read.DisColor == colours[1] && read.SusDisColor == colours[2]);
    // The profile drops blanks and quotes around a value and ends it at a line break, as the system does.
    const bool plain = note.find_first_of(std::string("\0\r\n", 3)) == std::string::npos &&
                       note.find_first_of(" \t\"'") != 0 && note.find_last_of(" \t\"'") + 1 != note.size();
    CHECK(!plain || after.ReadSetting("Main", "Note", "") == note.substr(0, 254));
}

// Deleting at the next start (input: a byte, bit 0 the NT family, bit 1 no
// WinInit.ini; the short path; WinInit.ini): NT takes the whole short path;
// the 95 family adds its line after every earlier byte of WinInit.ini.
PROPERTY(delete_on_reboot) {
    const uint8_t flags = in.Byte();
    const std::string path = "C:\\Program Files\\Long Folder\\Running Program.exe", winInit = "C:\\WINDOWS\\WinInit.ini";
    fakes::FakeFileFacts facts;
    fakes::FakeFile file;
    file.shortPath = in.Bytes(in.Byte());
    facts.Add(path, file);
    const std::string shortPath = file.shortPath.empty() ? path : file.shortPath;
    fakes::FakeFileSystem files;
    files.AddFolder("C:\\WINDOWS");
    if (!(flags & 2)) files.AddFile(winInit, in.Rest());
    fakes::FakeEnvironment environment;
    environment.variables = {{"WinDir", "C:\\WINDOWS"}, {"OS", flags & 1 ? "Windows_NT" : "Windows_98"}};
    fakes::FakeSystemInfo system;
    fakes::FakePrompts prompts;
    const std::optional<std::string> before = files.Content(winInit);
    DeleteFileOnReboot({facts, files, environment, system, prompts}, path);
    if (flags & 1) {
        CHECK(files.rebootDeletes == std::vector<std::string>{shortPath} && files.Content(winInit) == before);
        return;
    }
    const std::string after = files.Content(winInit).value_or(""), entry = "\r\nNUL=" + shortPath + "\r\n";
    CHECK(before ? after.compare(0, before->size(), *before) == 0 : after.rfind("[Rename]\r\n", 0) == 0);
    CHECK(after.size() <= (before ? before->size() : 8) + entry.size() && after.size() >= entry.size());
    CHECK(after.compare(after.size() - entry.size(), entry.size(), entry) == 0 && prompts.shown.empty());
}

// Today's browsers' files: one the reader turns away gives no record; every
// record has a state and an origin of the lists' words, marked as they say;
// and where the file holds no escapes, every id, name and version is text the
// input holds.
void CheckHeld(const std::vector<ExtensionRecord>& records, const std::string& input) {
    static const std::set<std::string> kStates{"Enabled", "Disabled", "Blocked by policy"};
    static const std::map<std::string, bool> kOrigins{{"Store", false},       {"Unknown", false}, {"Registry", true},
                                                      {"Policy", true},       {"Unpacked", true}, {"Sideload", true},
                                                      {"Command line", true}};
    for (const ExtensionRecord& r : records) {
        CHECK(kStates.count(r.state) && r.disabled == (r.state != "Enabled"));
        CHECK(kOrigins.count(r.installedBy) && kOrigins.at(r.installedBy) == r.suspicious);
        if (input.find('\\') != std::string::npos) continue;
        for (const std::string* text : {&r.id, &r.name, &r.version, &r.profile}) {
            CHECK(input.find(*text) != std::string::npos);
        }
    }
}

// Input: a byte, bits 0-1 the file: 0 a Chromium profile's Preferences (bit
// 2: Secure Preferences), the same bytes as Local State; 1 an extension's
// manifest.json (16-bit length), then the messages of its two locales (bit 2:
// which); 2 and 3 Firefox's extensions.json, in the profile a profiles.ini
// (16-bit length) names. Bit 3: the file behind a million opening brackets.
PROPERTY(browser_files) {
    const uint8_t flags = in.Byte();
    const std::string deep = flags & 8 ? std::string(1000000, '[') : "";
    fakes::FakeFileSystem files;
    fakes::FakeClock clock;
    if ((flags & 3) == 0) {
        const std::string bytes = deep + in.Rest();
        files.AddFile("C:\\U\\Local State", bytes);
        files.AddFile("C:\\U\\Default\\Preferences", flags & 4 ? "{}" : bytes);
        if (flags & 4) files.AddFile("C:\\U\\Default\\Secure Preferences", bytes);
        const std::vector<BrowserProfile> profiles = ChromiumProfiles(files, "C:\\U");
        CHECK(profiles.size() == 1 && profiles[0].folder == "C:\\U\\Default");
        const auto records = ChromiumExtensions(files, clock, {"C:\\L", "C:\\R", {"de"}}, "Chrome", profiles[0]);
        CHECK(JsonDocument::Parse(bytes) || (records.empty() && profiles[0].name == "Default"));
        CheckHeld(records, bytes + "Default");
    } else if ((flags & 3) == 1) {
        const std::string manifest = in.Bytes(in.Length()), messages = in.Rest();
        files.AddFile("C:\\X\\manifest.json", manifest);
        files.AddFile(std::string("C:\\X\\_locales\\") + (flags & 4 ? "de" : "en") + "\\messages.json", messages);
        const ManifestFacts facts = ReadExtensionManifest(files, "C:\\X", {"de"});
        CHECK(JsonDocument::Parse(manifest) || (facts.name.empty() && facts.version.empty()));
        ExtensionRecord record;
        record.name = facts.name, record.version = facts.version, record.state = "Enabled", record.installedBy = "Store";
        CheckHeld({record}, manifest + messages);
    } else {
        const std::string ini = in.Bytes(in.Length()), json = deep + in.Rest();
        files.AddFile("C:\\F\\profiles.ini", ini);
        files.AddFile("C:\\F\\P\\extensions.json", json);
        std::vector<ExtensionRecord> records;
        for (const BrowserProfile& profile : FirefoxProfiles(files, "C:\\F")) {
            for (ExtensionRecord& r : FirefoxExtensions(files, clock, profile)) records.push_back(std::move(r));
        }
        CHECK(JsonDocument::Parse(json) || records.empty());
        CheckHeld(records, ini + json);
    }
}

}  // namespace

#ifdef CORVANE_FUZZ
static Property chosen = nullptr;

extern "C" int LLVMFuzzerInitialize(int*, char*** argv) {
    const std::string name = std::filesystem::path((*argv)[0]).filename().string();
    chosen = Properties().at(name.substr(name.find('_') + 1));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input in{data, size};
    return chosen(in), 0;
}
#else
int main(int argc, char** argv) {
    const auto property = argc == 3 ? Properties().find(argv[1]) : Properties().end();
    if (property == Properties().end()) return std::fprintf(stderr, "usage: %s PROPERTY CORPUS_FOLDER\n", argv[0]), 2;
    const auto run = [&](const std::string& bytes) {
        Input in{reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()};
        property->second(in);
    };
    // Nothing, every single byte, and long runs of the bytes the readers treat apart.
    run("");
    for (int byte = 0; byte < 256; ++byte) run(std::string(1, static_cast<char>(byte)));
    for (const char byte : {'\0', '\x01', '\r', '\n', '"', '\xFF'}) run(std::string(5000, byte));
    size_t seeds = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[2])) {
        std::ifstream file(entry.path(), std::ios::binary);
        seed = entry.path().filename().string();
        run(std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()));
        ++seeds;
    }
    std::printf("%zu seeds of %s held\n", seeds, argv[2]);
    return seeds == 0;
}
#endif
