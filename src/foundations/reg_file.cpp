#include "foundations/reg_file.h"

#include <algorithm>
#include <cstdio>

namespace corvane {

namespace {

constexpr const char* kHeader = "REGEDIT4";
constexpr const char* kLineEnd = "\r\n";
// The registry editor ends a line of hex bytes once it reaches this column,
// with a backslash, and goes on two blanks in on the next.
constexpr size_t kHexLineColumns = 77;
constexpr uint32_t kLongestValueName = 16384;  // with its NUL
constexpr uint32_t kKeyNameChars = 256;        // with its NUL

struct Root {
    const char* name;
    RegKey key;
};
constexpr Root kRoots[] = {
    {"HKEY_CLASSES_ROOT", kHKeyClassesRoot},
    {"HKEY_CURRENT_USER", kHKeyCurrentUser},
    {"HKEY_LOCAL_MACHINE", kHKeyLocalMachine},
};

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view TrimLeft(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    return text;
}

std::string_view TrimRight(std::string_view text) {
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

std::string_view Trim(std::string_view text) { return TrimLeft(TrimRight(text)); }

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// 1 to 8 hexadecimal digits and nothing else.
std::optional<uint32_t> HexNumber(std::string_view text) {
    if (text.empty() || text.size() > 8) return std::nullopt;
    uint32_t number = 0;
    for (char c : text) {
        const int digit = HexDigit(c);
        if (digit < 0) return std::nullopt;
        number = number << 4 | static_cast<uint32_t>(digit);
    }
    return number;
}

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
    if (text.size() < prefix.size()) return false;
    for (size_t i = 0; i < prefix.size(); ++i) {
        char c = text[i];
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        if (c != prefix[i]) return false;
    }
    return true;
}

std::string Quoted(std::string_view text) {
    std::string out = "\"";
    for (char c : text) {
        if (c == '\\' || c == '"') out += '\\';
        out += c;
    }
    return out + '"';
}

// A quoted text at the start of `text`: \\ and \" stand for themselves, any
// other backslash stays as it is. `text` is left behind the closing quote.
std::optional<std::string> Unquote(std::string_view& text) {
    if (text.empty() || text.front() != '"') return std::nullopt;
    std::string out;
    for (size_t i = 1; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '"') {
            text.remove_prefix(i + 1);
            return out;
        }
        if (c == '\\' && i + 1 < text.size() && (text[i + 1] == '\\' || text[i + 1] == '"')) {
            out += text[++i];
        } else {
            out += c;
        }
    }
    return std::nullopt;
}

// Text the registry editor writes as a quoted string: one NUL at its end and
// no NUL or control character before it, so a quoted string gives it back.
bool QuotedStringHolds(const std::string& data) {
    if (data.empty() || data.back() != '\0') return false;
    return std::none_of(data.begin(), data.end() - 1, [](char c) { return static_cast<unsigned char>(c) < 0x20; });
}

std::string HexBytes(std::string_view prefix, std::string_view data) {
    std::string out(prefix);
    size_t column = prefix.size();
    char byte[3];
    for (size_t i = 0; i < data.size(); ++i) {
        std::snprintf(byte, sizeof byte, "%02x", static_cast<unsigned char>(data[i]));
        out += byte;
        if (i + 1 == data.size()) break;
        out += ',';
        column += 3;
        if (column >= kHexLineColumns) {
            out += "\\\r\n  ";
            column = 2;
        }
    }
    return out;
}

// The bytes of a hex list: two-digit (or one-digit) numbers between commas,
// blanks allowed, one comma at the end allowed.
std::optional<std::string> ParseHexBytes(std::string_view text) {
    std::string out;
    if (Trim(text).empty()) return out;
    size_t start = 0;
    while (true) {
        const size_t comma = text.find(',', start);
        const std::string_view token = Trim(text.substr(start, comma == std::string_view::npos ? text.npos : comma - start));
        if (comma == std::string_view::npos) {
            if (token.empty()) return out;  // the comma before was the last
            const auto byte = token.size() <= 2 ? HexNumber(token) : std::nullopt;
            if (!byte) return std::nullopt;
            out += static_cast<char>(*byte);
            return out;
        }
        const auto byte = token.size() <= 2 ? HexNumber(token) : std::nullopt;
        if (!byte) return std::nullopt;
        out += static_cast<char>(*byte);
        start = comma + 1;
    }
}

std::vector<std::string_view> SplitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find_first_of("\r\n", start);
        if (end == std::string_view::npos) end = text.size();
        lines.push_back(text.substr(start, end - start));
        if (end < text.size() && text[end] == '\r' && end + 1 < text.size() && text[end + 1] == '\n') ++end;
        start = end + 1;
    }
    return lines;
}

// The data after "=" of a value line, with the continuation lines of hex
// data already joined on; nothing for data the editor would not read, or
// for a value to delete.
std::optional<RegFileValue> ParseValueData(std::string name, std::string_view data) {
    RegFileValue value{std::move(name), kRegNone, {}};
    if (!data.empty() && data.front() == '"') {
        auto text = Unquote(data);
        if (!text || !Trim(data).empty()) return std::nullopt;
        value.type = kRegSz;
        value.data = *text + '\0';
        return value;
    }
    if (StartsWithNoCase(data, "dword:")) {
        const auto number = HexNumber(Trim(data.substr(6)));
        if (!number) return std::nullopt;
        value.type = kRegDword;
        for (int shift = 0; shift < 32; shift += 8) value.data += static_cast<char>(*number >> shift & 0xFF);
        return value;
    }
    if (StartsWithNoCase(data, "hex:")) {
        value.type = kRegBinary;
        data.remove_prefix(4);
    } else if (StartsWithNoCase(data, "hex(")) {
        const size_t close = data.find("):");
        if (close == std::string_view::npos) return std::nullopt;
        const auto type = HexNumber(data.substr(4, close - 4));
        if (!type) return std::nullopt;
        value.type = *type;
        data.remove_prefix(close + 2);
    } else {
        return std::nullopt;
    }
    auto bytes = ParseHexBytes(data);
    if (!bytes) return std::nullopt;
    value.data = std::move(*bytes);
    return value;
}

bool ReadValues(Registry& registry, RegKey key, std::vector<RegFileValue>& values) {
    std::vector<char> name(kLongestValueName);
    std::vector<uint8_t> data(4096);
    for (uint32_t index = 0;; ++index) {
        RegError result = kErrorMoreData;
        uint32_t nameLength = 0, dataSize = 0, type = kRegNone;
        // Data that grew between two calls asks once more.
        for (int attempt = 0; attempt < 4 && result == kErrorMoreData; ++attempt) {
            nameLength = kLongestValueName;
            dataSize = static_cast<uint32_t>(data.size());
            result = registry.EnumValue(key, index, name.data(), &nameLength, &type, data.data(), &dataSize);
            if (result == kErrorMoreData) data.resize(std::max<size_t>(dataSize, data.size() * 2));
        }
        if (result == kErrorNoMoreItems) return true;
        if (result != kRegOk || nameLength > name.size() || dataSize > data.size()) return false;
        values.push_back({std::string(name.data(), nameLength), type,
                          std::string(reinterpret_cast<const char*>(data.data()), dataSize)});
    }
}

bool ReadSubkeyNames(Registry& registry, RegKey key, std::vector<std::string>& names) {
    for (uint32_t index = 0;; ++index) {
        char name[kKeyNameChars] = {};
        uint32_t length = kKeyNameChars;
        const RegError result = registry.EnumKey(key, index, name, &length);
        if (result == kErrorNoMoreItems) return true;
        if (result != kRegOk || length >= kKeyNameChars) return false;
        names.emplace_back(name, length);
    }
}

bool ReadTree(Registry& registry, RegKey root, const std::string& keyPath, const std::string& fullPath,
              std::vector<RegFileKey>& keys) {
    RegKey key = 0;
    if (registry.OpenKey(root, keyPath, kKeyRead, key) != kRegOk) return false;
    RegFileKey entry{fullPath, {}};
    std::vector<std::string> subkeys;
    const bool read = ReadValues(registry, key, entry.values) && ReadSubkeyNames(registry, key, subkeys);
    registry.CloseKey(key);
    if (!read) return false;
    keys.push_back(std::move(entry));
    for (const std::string& name : subkeys) {
        if (!ReadTree(registry, root, keyPath + "\\" + name, fullPath + "\\" + name, keys)) return false;
    }
    return true;
}

void SortForComparison(std::vector<RegFileKey>& keys) {
    for (RegFileKey& key : keys) {
        std::stable_sort(key.values.begin(), key.values.end(),
                         [](const RegFileValue& a, const RegFileValue& b) { return RegNameKey(a.name) < RegNameKey(b.name); });
    }
    std::stable_sort(keys.begin(), keys.end(),
                     [](const RegFileKey& a, const RegFileKey& b) { return RegNameKey(a.path) < RegNameKey(b.path); });
}

}  // namespace

RegKey RegRootOfName(std::string_view name) {
    for (const Root& root : kRoots) {
        if (SameRegName(name, root.name)) return root.key;
    }
    return 0;
}

std::string RegRootName(RegKey key) {
    for (const Root& root : kRoots) {
        if (root.key == key) return root.name;
    }
    return {};
}

std::string FormatRegValue(const RegFileValue& value) {
    const std::string name = (value.name.empty() ? std::string("@") : Quoted(value.name)) + "=";
    if (value.type == kRegSz && QuotedStringHolds(value.data)) {
        return name + Quoted(std::string_view(value.data).substr(0, value.data.size() - 1)) + kLineEnd;
    }
    if (value.type == kRegDword && value.data.size() == 4) {
        uint32_t number = 0;
        for (int i = 3; i >= 0; --i) number = number << 8 | static_cast<unsigned char>(value.data[static_cast<size_t>(i)]);
        char digits[9];
        std::snprintf(digits, sizeof digits, "%08x", number);
        return name + "dword:" + digits + kLineEnd;
    }
    char type[24];
    if (value.type == kRegBinary) {
        std::snprintf(type, sizeof type, "hex:");
    } else {
        std::snprintf(type, sizeof type, "hex(%x):", value.type);
    }
    return HexBytes(name + type, value.data) + kLineEnd;
}

std::string FormatRegFile(const RegFile& file) {
    std::string text = std::string(kHeader) + kLineEnd;
    for (const std::string& comment : file.comments) text += ";" + comment + kLineEnd;
    text += kLineEnd;
    for (const RegFileKey& key : file.keys) {
        text += "[" + key.path + "]" + kLineEnd;
        for (const RegFileValue& value : key.values) text += FormatRegValue(value);
        text += kLineEnd;
    }
    return text;
}

bool RegFileCanHold(std::string_view name) { return name.find_first_of("\r\n") == std::string_view::npos; }

bool RegFileCanHold(const std::vector<RegFileKey>& keys) {
    for (const RegFileKey& key : keys) {
        if (!RegFileCanHold(key.path)) return false;
        for (const RegFileValue& value : key.values) {
            if (!RegFileCanHold(value.name)) return false;
        }
    }
    return true;
}

std::optional<RegFile> ParseRegFile(std::string_view text) {
    const std::vector<std::string_view> lines = SplitLines(text);
    if (lines.empty() || TrimRight(lines[0]) != kHeader) return std::nullopt;
    RegFile file;
    RegFileKey* key = nullptr;  // where values go; none before the first key or after one to delete
    for (size_t i = 1; i < lines.size(); ++i) {
        std::string_view line = Trim(lines[i]);
        if (line.empty()) continue;
        if (line.front() == ';') {
            file.comments.emplace_back(line.substr(1));
            continue;
        }
        if (line.front() == '[') {
            key = nullptr;
            if (line.back() != ']' || line.size() < 2) continue;
            const std::string_view path = line.substr(1, line.size() - 2);
            if (!path.empty() && path.front() == '-') continue;
            file.keys.push_back({std::string(path), {}});
            key = &file.keys.back();
            continue;
        }
        if (line.front() != '"' && line.front() != '@') continue;
        std::string name;
        if (line.front() == '@') {
            line.remove_prefix(1);
        } else {
            auto quoted = Unquote(line);
            if (!quoted) continue;
            name = std::move(*quoted);
        }
        line = TrimLeft(line);
        if (line.empty() || line.front() != '=') continue;
        line = TrimLeft(line.substr(1));
        std::string data(line);
        if (StartsWithNoCase(line, "hex")) {
            // Hex bytes go on over lines that end in a backslash.
            while (!data.empty() && data.back() == '\\') {
                data.pop_back();
                if (i + 1 >= lines.size()) break;
                data += Trim(lines[++i]);
            }
        }
        auto value = ParseValueData(std::move(name), data);
        if (value && key) key->values.push_back(std::move(*value));
    }
    return file;
}

std::optional<std::vector<RegFileKey>> ReadRegKeyTree(Registry& registry, RegKey root, const std::string& keyPath) {
    const std::string rootName = RegRootName(root);
    if (rootName.empty()) return std::nullopt;
    std::vector<RegFileKey> keys;
    if (!ReadTree(registry, root, keyPath, rootName + "\\" + keyPath, keys)) return std::nullopt;
    return keys;
}

std::optional<RegFileKey> ReadRegValue(Registry& registry, RegKey root, const std::string& keyPath,
                                       const std::string& valueName) {
    const std::string rootName = RegRootName(root);
    RegKey key = 0;
    if (rootName.empty() || registry.OpenKey(root, keyPath, kKeyRead, key) != kRegOk) return std::nullopt;
    uint32_t type = kRegNone, size = 0;
    RegError result = registry.QueryValue(key, valueName, &type, nullptr, &size);
    std::string data;
    for (int attempt = 0; attempt < 4 && result == kRegOk; ++attempt) {
        data.assign(size, '\0');
        result = registry.QueryValue(key, valueName, &type, reinterpret_cast<uint8_t*>(data.data()), &size);
        if (result != kErrorMoreData) break;
        result = kRegOk;  // grew meanwhile: again with the new size
    }
    registry.CloseKey(key);
    if (result != kRegOk || size > data.size()) return std::nullopt;
    data.resize(size);
    return RegFileKey{rootName + "\\" + keyPath, {{valueName, type, std::move(data)}}};
}

RegError ImportRegKeys(Registry& registry, const std::vector<RegFileKey>& keys) {
    for (const RegFileKey& entry : keys) {
        const size_t slash = entry.path.find('\\');
        const RegKey root = RegRootOfName(std::string_view(entry.path).substr(0, slash));
        if (!root) return kErrorBadPathname;
        const std::string subKey = slash == std::string::npos ? std::string() : entry.path.substr(slash + 1);
        RegKey key = 0;
        if (const RegError error = registry.CreateKey(root, subKey, kKeyAllAccess, key)) return error;
        RegError error = kRegOk;
        for (const RegFileValue& value : entry.values) {
            error = registry.SetValue(key, value.name, value.type, reinterpret_cast<const uint8_t*>(value.data.data()),
                                      static_cast<uint32_t>(value.data.size()));
            if (error != kRegOk) break;
        }
        registry.CloseKey(key);
        if (error != kRegOk) return error;
    }
    return kRegOk;
}

bool SameRegKeys(std::vector<RegFileKey> a, std::vector<RegFileKey> b) {
    SortForComparison(a);
    SortForComparison(b);
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        // Key paths as the system compares them; names and data byte for byte.
        if (!SameRegName(a[i].path, b[i].path) || a[i].values != b[i].values) return false;
    }
    return true;
}

}  // namespace corvane
