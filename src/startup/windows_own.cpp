#include "startup/windows_own.h"

#include "foundations/app_identity.h"
#include "foundations/reference_list.h"
#include "foundations/text.h"

namespace corvane {

std::string WindowsOwnReason(FileSystem& files, const std::string& appPath, const std::string& name,
                             const std::string& file, const std::string& systemRoot) {
    const std::string folder = LowerAnsi(systemRoot) + "\\";
    if (!systemRoot.empty() && LowerAnsi(file).rfind(folder, 0) == 0) {
        return "its file lies in the system folder " + systemRoot;
    }
    const std::string lower = LowerAnsi(name);
    for (const std::string& line : loadReferenceList(files, appPath + "\\" + kWindowsOwnFile)) {
        const bool below = !line.empty() && line.back() == '\\' && lower.rfind(line, 0) == 0;
        if (lower == line || below) return "it is on the list of Windows' own items (" + std::string(kWindowsOwnFile) + ")";
    }
    return "";
}

bool ConfirmWindowsOwn(Prompts& prompts, const std::string& verb, const std::string& name,
                       const std::string& caption, const std::string& reason) {
    if (reason.empty()) return true;
    const std::string question = "\"" + name + "\" (" + caption + ") belongs to Windows itself: " + reason +
                                 ". Without it parts of Windows may stop working, or Windows may not start.\r\n\r\n" +
                                 verb + " it all the same? No leaves it as it is.";
    return prompts.Message(question, kAppTitle, PromptIcon::Exclamation, PromptButtons::YesNo) == PromptAnswer::Yes;
}

}  // namespace corvane
