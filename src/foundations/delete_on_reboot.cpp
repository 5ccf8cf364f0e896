#include "foundations/delete_on_reboot.h"

#include "foundations/functions.h"
#include "foundations/app_identity.h"

namespace corvane {

namespace {

// An environment variable, empty when it is not set (the system leaves an
// unknown %NAME% as it stands).
std::string EnvironmentVariable(Environment& environment, const std::string& name) {
    const std::string reference = "%" + name + "%";
    const std::string value = ExpandEnvString(environment, reference);
    return value == reference ? std::string() : value;
}

}  // namespace

void clsDeleteonReboot::DestroyOnReboot(const std::string& strFileName) {
    const std::string shortPath = ShortPath(strFileName);
    if (EnvironmentVariable(ports_.environment, "OS") == "Windows_NT") {
        if (const SysError error = ports_.files.DeleteAtReboot(shortPath)) {
            ports_.prompts.Message("Error occurred while adding to delete on reboot: \r\n" + strFileName +
                                       FormatApiError(ports_.system, static_cast<int32_t>(error)),
                                   kAppTitle, PromptIcon::None, PromptButtons::Ok);
        }
        return;
    }
    AddToWinInit(shortPath);
}

std::string clsDeleteonReboot::ShortPath(const std::string& path) {
    // 165 characters hold nearly every short path; a deeper one gets the
    // buffer the system asks for rather than being cut.
    std::string buffer(165, '\0');
    uint32_t length = ports_.facts.ShortPathName(path, buffer);
    if (length >= buffer.size()) {
        buffer.assign(length, '\0');
        length = ports_.facts.ShortPathName(path, buffer);
        if (length >= buffer.size()) length = 0;
    }
    return buffer.substr(0, length);
}

void clsDeleteonReboot::AddToWinInit(const std::string& shortPath) {
    const std::string winInit = EnvironmentVariable(ports_.environment, "WinDir") + "\\WinInit.ini";
    const std::string line = "NUL=" + shortPath + "\r\n";
    if (!ports_.files.Exists(winInit)) {
        ports_.files.WriteAtomic(winInit, "[Rename]\r\n" + line);
        return;
    }
    // The whole file, however long, and replaced in one step: what other
    // programs queued for the next start must survive our line.
    std::optional<std::string> content = ports_.files.Read(winInit);
    if (!content) return;
    std::string text = std::move(*content);
    if (text.size() < 2 || text.compare(text.size() - 2, 2, "\r\n") != 0) text += "\r\n";
    // New lines go at the very end, into whatever section stands last.
    ports_.files.WriteAtomic(winInit, text + line);
}

void DeleteFileOnReboot(const DeleteOnRebootPorts& ports, const std::string& strFileName) {
    clsDeleteonReboot(ports).DestroyOnReboot(strFileName);
}

}  // namespace corvane
