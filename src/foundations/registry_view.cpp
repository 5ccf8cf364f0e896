#include "foundations/registry_view.h"

#include "foundations/functions.h"
#include "foundations/text.h"

namespace corvane {

uint32_t ViewOfText(const std::string& text) { return text == kView32Text ? kKeyWow64_32Key : 0; }

std::string TextOfView(uint32_t view) { return (view & kKeyWow64_32Key) ? kView32Text : ""; }

std::vector<uint32_t> MachineRegistryViews(Registry& registry) {
    // The 32-bit view is kept below this key of the 64-bit one; without it
    // there is no second view to read.
    RegKey key = 0;
    if (registry.OpenKey(kHKeyLocalMachine, "Software\\Wow6432Node", kKeyRead | kKeyWow64_64Key, key) != kRegOk) {
        return {0};
    }
    registry.CloseKey(key);
    return {0, kKeyWow64_32Key};
}

namespace {

// Replaces each reference to `name` (any case) by one to `by`.
std::string ReplaceReference(const std::string& text, const std::string& name, const std::string& by) {
    const std::string lower = LowerAnsi(text);
    const std::string wanted = "%" + LowerAnsi(name) + "%";
    std::string out;
    size_t from = 0;
    for (size_t at = lower.find(wanted); at != std::string::npos; at = lower.find(wanted, from)) {
        out += text.substr(from, at - from) + "%" + by + "%";
        from = at + wanted.size();
    }
    return out + text.substr(from);
}

}  // namespace

std::string PathIn32BitView(Environment& environment, const std::string& path) {
    std::string expanded = path;
    if (path.find('%') != std::string::npos) {
        const std::string named = ReplaceReference(ReplaceReference(path, "ProgramFiles", "ProgramFiles(x86)"),
                                                   "CommonProgramFiles", "CommonProgramFiles(x86)");
        expanded = ExpandEnvString(environment, named);
        // A system without the (x86) folders names none: the plain ones stand.
        if (LowerAnsi(expanded).find("(x86)%") != std::string::npos) expanded = ExpandEnvString(environment, path);
    }
    const std::string root = ExpandEnvString(environment, "%SystemRoot%");
    if (root.empty() || root.find('%') != std::string::npos) return expanded;
    const std::string system = LowerAnsi(root + "\\System32\\");
    if (LowerAnsi(expanded.substr(0, system.size())) != system) return expanded;
    return root + "\\SysWOW64\\" + expanded.substr(system.size());
}

}  // namespace corvane
