#pragma once
// In-memory stand-ins for the ports, for native tests and for failures that
// Wine cannot produce.
#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "foundations/text.h"
#include "platform/environment.h"
#include "platform/profile.h"
#include "platform/prompts.h"
#include "platform/shell.h"
#include "platform/system_info.h"

namespace corvane::fakes {

class FakeSystemInfo : public SystemInfo {
public:
    OsVersion version;
    bool versionCallFails = false;
    std::string computerName = "TESTBOX";
    std::string userName = "tester";
    std::map<int32_t, std::string> errorTexts;

    bool GetVersion(OsVersion& out) override {
        if (versionCallFails) return false;
        const std::string buffer = out.csdVersion;
        out = version;
        // The system writes the service pack text and its NUL over the caller's buffer.
        std::string csd = buffer;
        csd.replace(0, std::min(csd.size(), version.csdVersion.size() + 1), version.csdVersion + '\0');
        out.csdVersion = csd;
        return true;
    }
    std::string ComputerName(size_t size) override {
        std::string buffer(size, ' ');
        if (computerName.size() < size) buffer.replace(0, computerName.size() + 1, computerName + '\0');
        return buffer;
    }
    std::string UserName(size_t size) override {
        return userName.size() < size ? userName : std::string();
    }
    std::string ErrorText(int32_t code, size_t size) override {
        auto it = errorTexts.find(code);
        if (it == errorTexts.end()) return {};
        return it->second.substr(0, size);
    }
};

// Expands %NAME% from `variables`; an unknown name keeps its percent signs,
// and a result that does not fit leaves the buffer empty, as the system does.
class FakeEnvironment : public Environment {
public:
    std::map<std::string, std::string> variables;
    std::string uiLanguage;
    std::string UiLanguage() override { return uiLanguage; }
    std::string Expand(const std::string& text, size_t size) override {
        std::string result;
        size_t i = 0;
        for (size_t open = 0, close = 0; (open = text.find('%', i)) != std::string::npos &&
                                 (close = text.find('%', open + 1)) != std::string::npos;) {
            const auto it = variables.find(text.substr(open + 1, close - open - 1));
            // Unknown: kept, and its closing % may start the next reference.
            result += text.substr(i, open - i) + (it != variables.end() ? it->second : text.substr(open, close - open));
            i = it != variables.end() ? close + 1 : close;
        }
        result += text.substr(i);
        std::string buffer(size, '\0');
        if (result.size() < size) buffer.replace(0, result.size(), result);
        return buffer;
    }
};

class FakeShell : public Shell {
public:
    void Open(const std::string&) override {}
};

// Answers every message box Yes or Ok, cancels every dialog, and keeps every box it was shown.
class FakePrompts : public Prompts {
public:
    struct Shown {
        std::string text, title;
        PromptIcon icon;
        PromptButtons buttons;
    };
    std::vector<Shown> shown;
    PromptAnswer Message(const std::string& text, const std::string& title, PromptIcon icon,
                         PromptButtons buttons) override {
        shown.push_back({text, title, icon, buttons});
        return buttons == PromptButtons::YesNo || buttons == PromptButtons::YesNoCancel ? PromptAnswer::Yes
                                                                                        : PromptAnswer::Ok;
    }
    std::optional<std::string> SaveFile(const std::string&, bool) override { return std::nullopt; }
    std::optional<int32_t> PickColor(int32_t) override { return std::nullopt; }
};

// Initialisation files in memory, keyed by path; sections and keys compare
// without regard to case, and values lose surrounding blanks and one pair of
// quotes, as the platform's reader does.
class FakeProfile : public Profile {
public:
    std::map<std::string, std::string> files;  // path -> whole file text
    std::string Read(const std::string& section, const std::string& key, const std::string& fallback,
                     size_t size, const std::string& path) override {
        std::string value = fallback;
        while (!value.empty() && value.back() == ' ') value.pop_back();
        const Found found = Find(files.count(path) ? files[path] : "", section, key);
        if (found.keyLine != std::string::npos) {
            const std::string& line = found.lines[found.keyLine];
            value = Trim(line.substr(line.find('=') + 1));
            if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front()) {
                value = value.substr(1, value.size() - 2);
            }
        }
        return size == 0 ? std::string() : value.substr(0, size - 1);
    }
    bool Write(const std::string& section, const std::string& key, const std::string& value,
               const std::string& path) override {
        Found found = Find(files[path], section, key);
        std::vector<std::string>& lines = found.lines;
        const std::string entry = key + "=" + value;
        if (found.keyLine != std::string::npos) {
            lines[found.keyLine] = entry;
        } else if (found.sectionEnd != std::string::npos) {
            lines.insert(lines.begin() + static_cast<long>(found.sectionEnd), entry);
        } else {
            lines.insert(lines.end(), {"[" + section + "]", entry});
        }
        files[path].clear();
        for (const std::string& line : lines) files[path] += line + "\r\n";
        return true;
    }
private:
    static std::string Trim(const std::string& s) {
        const size_t first = s.find_first_not_of(" \t\r");
        return first == std::string::npos ? std::string() : s.substr(first, s.find_last_not_of(" \t\r") - first + 1);
    }
    // A file's lines, the first line of `key` in the first `section` (npos: none)
    // and the line after that section's last (npos: no such section).
    struct Found {
        std::vector<std::string> lines;
        size_t keyLine = std::string::npos, sectionEnd = std::string::npos;
    };
    static Found Find(const std::string& text, const std::string& section, const std::string& key) {
        Found found;
        std::istringstream in(text);
        int state = 0;  // 0 before the section, 1 inside it, 2 past it
        for (std::string line; std::getline(in, line);) {
            if (!line.empty() && line.back() == '\r') line.pop_back();
            found.lines.push_back(line);
            const std::string t = Trim(line);
            const size_t close = t.find(']');
            if (t.size() >= 2 && t[0] == '[' && close != std::string::npos) {
                state = state == 0 && SameTextIgnoringCase(Trim(t.substr(1, close - 1)), section) ? 1 : state == 1 ? 2 : state;
                if (state == 1) found.sectionEnd = found.lines.size();
                continue;
            }
            if (state != 1) continue;
            found.sectionEnd = found.lines.size();
            const size_t eq = line.find('=');
            if (eq != std::string::npos && SameTextIgnoringCase(Trim(line.substr(0, eq)), key) && found.keyLine == std::string::npos) {
                found.keyLine = found.lines.size() - 1;
            }
        }
        return found;
    }
};

}  // namespace corvane::fakes
