#include "startup/other_places.h"

#include <algorithm>

#include "foundations/functions.h"
#include "foundations/json.h"

namespace corvane {

namespace {

// Where each browser looks up the programs its extensions may start.
struct MessagingPlace {
    const char* browser;
    const char* key;
};
constexpr MessagingPlace kMessagingPlaces[] = {
    {"Chrome", "Software\\Google\\Chrome\\NativeMessagingHosts"},
    {"Edge", "Software\\Microsoft\\Edge\\NativeMessagingHosts"},
    {"Firefox", "Software\\Mozilla\\NativeMessagingHosts"},
};

RegValueList ValuesAt(Registry& registry, RegKey hive, const std::string& path, uint32_t view) {
    RegKey key = 0;
    if (registry.OpenKey(hive, path, kKeyRead | view, key) != kRegOk) return {};
    RegValueList values = EnumRegValues(registry, key, "");
    registry.CloseKey(key);
    return values;
}

std::vector<std::string> SubkeysAt(Registry& registry, RegKey hive, const std::string& path, uint32_t view) {
    std::vector<std::string> names;
    RegKey key = 0;
    if (registry.OpenKey(hive, path, kKeyRead | view, key) != kRegOk) return names;
    for (uint32_t index = 0;; ++index) {
        char name[256] = {};
        uint32_t length = sizeof name;
        if (registry.EnumKey(key, index, name, &length) != kRegOk) break;
        names.push_back(TrimAtNull(std::string_view(name, std::min<size_t>(length, sizeof name))));
    }
    registry.CloseKey(key);
    return names;
}

// A key's full path as a store file names it.
std::string FullPath(RegKey hive, const std::string& path) { return RegRootName(hive) + "\\" + path; }

// A value's text as a list cell shows it: up to its first NUL.
std::string TextOf(const RegValueEntry& entry) { return TrimAtNull(entry.Text()); }

std::string ValueText(const RegValueList& values, std::string_view name) {
    const RegValueEntry* entry = values.Find(name);
    return entry ? TextOf(*entry) : std::string();
}

std::string Below(const char* key, const std::string& name) { return std::string(key) + "\\" + name; }

}  // namespace

PlaceReader::PlaceReader(StartupSources& sources, const RegFile* store) : sources(sources), store_(store) {
    systemRoot = ExpandEnvString(sources.environment, "%SystemRoot%");
    if (systemRoot.empty() || systemRoot.find('%') != std::string::npos) systemRoot = "C:\\Windows";
    while (!systemRoot.empty() && systemRoot.back() == '\\') systemRoot.pop_back();
}

RegValueList PlaceReader::Values(RegKey hive, const std::string& path, uint32_t view) const {
    if (!store_) return ValuesAt(sources.registry, hive, path, view);
    RegValueList values;
    const std::string full = FullPath(hive, path);
    for (const RegFileKey& key : store_->keys) {
        if (!SameRegName(key.path, full)) continue;
        for (const RegFileValue& value : key.values) {
            DecodedRegData decoded = DecodeRegData(value.type, {reinterpret_cast<const uint8_t*>(value.data.data()),
                                                                value.data.size()});
            values.Add({value.name, std::move(decoded.data), decoded.typeCode});
        }
    }
    return values;
}

std::vector<std::string> PlaceReader::Subkeys(RegKey hive, const std::string& path, uint32_t view) const {
    if (!store_) return SubkeysAt(sources.registry, hive, path, view);
    std::vector<std::string> names;
    const std::string full = FullPath(hive, path) + "\\";
    for (const RegFileKey& key : store_->keys) {
        if (key.path.size() <= full.size() || !SameRegName(key.path.substr(0, full.size()), full)) continue;
        const std::string name = key.path.substr(full.size(), key.path.find('\\', full.size()) - full.size());
        const bool seen = std::any_of(names.begin(), names.end(), [&](const std::string& n) { return SameRegName(n, name); });
        if (!seen) names.push_back(name);
    }
    return names;
}

bool PlaceReader::Exists(const std::string& path) const { return !path.empty() && sources.facts.Exists(path); }

std::string PlaceReader::FileOf(const std::string& command) const {
    std::string path = CommandToPath(command);
    if (path.find('%') != std::string::npos) path = ExpandEnvString(sources.environment, path);
    if (path != command && Exists(path)) return path;
    return ProgramFile(command);
}

std::string PlaceReader::ProgramFile(const std::string& text) const {
    std::string expanded = text;
    if (expanded.find('%') != std::string::npos) expanded = ExpandEnvString(sources.environment, expanded);
    return ResolveProgram(expanded, systemRoot, [this](const std::string& p) { return Exists(p); });
}

// A value without a command starts nothing.
std::vector<PlaceItem> ReadCommandValues(const PlaceReader& r, const PlaceLayout& layout, RegKey hive, uint32_t view) {
    std::vector<PlaceItem> found;
    for (const RegValueEntry& entry : r.Values(hive, layout.key, view)) {
        const std::string command = TextOf(entry);
        if (!TrimBlanks(command).empty()) found.push_back({entry.name, command, command, {}, nullptr, true, layout.key, entry.name});
    }
    return found;
}

// RunOnceEx: a subkey per section, a value per entry, "file|function|arguments"
// or "||command line"; the section's default value is its title.
std::vector<PlaceItem> ReadRunOnceEx(const PlaceReader& r, const PlaceLayout& layout, RegKey hive, uint32_t view) {
    std::vector<PlaceItem> found;
    for (const std::string& section : r.Subkeys(hive, layout.key, view)) {
        const std::string path = Below(layout.key, section);
        for (const RegValueEntry& entry : r.Values(hive, path, view)) {
            const std::string command = TextOf(entry);
            if (entry.name.empty() || TrimBlanks(command).empty()) continue;
            std::string program = command;
            if (const size_t bar = command.find('|'); bar != std::string::npos) {
                program = command.substr(0, bar);
                if (TrimBlanks(program).empty()) {
                    const size_t second = command.find('|', bar + 1);
                    program = second == std::string::npos ? std::string() : command.substr(second + 1);
                }
            }
            found.push_back({section + "\\" + entry.name, command, program, {}, nullptr, true, path, entry.name});
        }
    }
    return found;
}

std::vector<StoredPlaceItem> StoredItems(StartupSources& sources, const PlaceLayout& layout, RegKey hive, uint32_t view,
                                         const std::vector<StoreItem>& store) {
    std::vector<StoredPlaceItem> found;
    for (size_t i = 0; i < store.size(); ++i) {
        const RegFile one{{}, store[i].keys};
        std::vector<PlaceItem> items = layout.read(PlaceReader(sources, &one), layout, hive, view);
        // A list value is kept whole: the item is the one program that was taken out.
        if (store[i].position >= 0) {
            const size_t at = static_cast<size_t>(store[i].position);
            items = at < items.size() ? std::vector{items[at]} : std::vector<PlaceItem>{};
        }
        for (PlaceItem& item : items) {
            item.enabled = false;
            found.push_back({i, std::move(item)});
        }
    }
    return found;
}

std::vector<ListPart> ListParts(const std::string& text, const char* separators) {
    std::vector<ListPart> parts;
    size_t begin = 0;
    while (begin <= text.size()) {
        size_t end = text.find_first_of(separators, begin);
        if (end == std::string::npos) end = text.size();
        size_t first = begin, last = end;
        while (first < last && (text[first] == ' ' || text[first] == '\t')) ++first;
        while (last > first && (text[last - 1] == ' ' || text[last - 1] == '\t')) --last;
        if (first < last) parts.push_back({first, last});
        begin = end + 1;
    }
    return parts;
}

// Userinit, Shell and AppInit_DLLs are lists: each program they name runs.
std::vector<PlaceItem> ReadListValue(const PlaceReader& r, const PlaceLayout& layout, RegKey hive, uint32_t view) {
    std::vector<PlaceItem> found;
    const std::string text = ValueText(r.Values(hive, layout.key, view), layout.value);
    const char* separators = std::string_view(layout.value) == "AppInit_DLLs" ? " ," : ",";
    int position = 0;
    for (const ListPart& part : ListParts(text, separators)) {
        const std::string program = text.substr(part.begin, part.end - part.begin);
        found.push_back({layout.value, program, program, {}, nullptr, true, layout.key, layout.value, false, position++});
    }
    return found;
}

std::vector<PlaceItem> ReadWholeValue(const PlaceReader& r, const PlaceLayout& layout, RegKey hive, uint32_t view) {
    const std::string text = ValueText(r.Values(hive, layout.key, view), layout.value);
    if (TrimBlanks(text).empty()) return {};
    return {{layout.value, text, text, {}, nullptr, true, layout.key, layout.value}};
}

std::vector<PlaceItem> ReadActiveSetup(const PlaceReader& r, const PlaceLayout& layout, RegKey hive, uint32_t view) {
    std::vector<PlaceItem> found;
    for (const std::string& component : r.Subkeys(hive, layout.key, view)) {
        const std::string path = Below(layout.key, component);
        const RegValueList values = r.Values(hive, path, view);
        const std::string stub = ValueText(values, "StubPath");
        if (TrimBlanks(stub).empty()) continue;
        const std::string title = ValueText(values, "");
        found.push_back({TrimBlanks(title).empty() ? component : title, stub, stub, {}, nullptr, true, path, "", true});
    }
    return found;
}

std::vector<PlaceItem> ReadDebuggers(const PlaceReader& r, const PlaceLayout& layout, RegKey hive, uint32_t view) {
    std::vector<PlaceItem> found;
    for (const std::string& program : r.Subkeys(hive, layout.key, view)) {
        const std::string path = Below(layout.key, program);
        const std::string debugger = ValueText(r.Values(hive, path, view), "Debugger");
        if (!TrimBlanks(debugger).empty()) found.push_back({program, debugger, debugger, {}, nullptr, true, path, "Debugger"});
    }
    return found;
}

// What System Configuration took out of its source, a subkey per item.
std::vector<PlaceItem> ReadMsconfig(const PlaceReader& r, const PlaceLayout& layout, RegKey hive, uint32_t view) {
    std::vector<PlaceItem> found;
    for (const std::string& item : r.Subkeys(hive, layout.key, view)) {
        const std::string path = Below(layout.key, item);
        const RegValueList values = r.Values(hive, path, view);
        const std::string name = ValueText(values, "item");
        const std::string command = ValueText(values, "command");
        found.push_back({TrimBlanks(name).empty() ? item : name, command, command, {}, nullptr, false, path, "", true});
    }
    return found;
}

// A host's key names its manifest (JSON, UTF-8), whose "path" is the
// program, absolute or relative to the manifest's folder.
std::vector<PlaceItem> ReadMessagingHosts(const PlaceReader& r, const PlaceLayout&, RegKey hive, uint32_t view) {
    std::vector<PlaceItem> found;
    for (const MessagingPlace& place : kMessagingPlaces) {
        for (const std::string& name : r.Subkeys(hive, place.key, view)) {
            const std::string path = Below(place.key, name);
            const std::string manifest = ValueText(r.Values(hive, path, view), "");
            if (TrimBlanks(manifest).empty()) continue;
            const auto document = ReadJsonFile(r.sources.files, manifest);
            std::string program =
                document ? r.sources.ansi.AnsiOfUtf8(document->Root()["path"].String().value_or("")) : "";
            std::replace(program.begin(), program.end(), '/', '\\');
            const bool absolute = (program.size() > 1 && program[1] == ':') || program.rfind("\\\\", 0) == 0;
            if (!program.empty() && !absolute) program = manifest.substr(0, manifest.find_last_of('\\') + 1) + program;
            found.push_back({std::string(place.browser) + ": " + name, manifest, program, {}, nullptr, true, path, "", true});
        }
    }
    return found;
}

}  // namespace corvane
