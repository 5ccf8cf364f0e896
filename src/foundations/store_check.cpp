#include "foundations/store_check.h"

#include "foundations/error_message.h"

namespace corvane {

SysError ProbeFolderWritable(FileSystem& files, const std::string& folder) {
    const bool made = !files.IsFolder(folder);
    if (made) {
        if (const SysError error = files.CreateFolder(folder)) return error;
    }
    const std::string probe = folder + "\\" + kProbeFileName;
    SysError error = files.Write(probe, std::string());
    if (!error) error = files.Delete(probe);
    if (made) files.RemoveFolder(folder);
    return error;
}

std::string FolderNotWritableText(const std::string& folder, const std::string& reason) {
    return "Corvane keeps what it takes out in this folder, and it cannot write there:\r\n" + folder + "\r\n" +
           reason + "\r\nNothing was changed.";
}

bool CheckStoreFolders(FileSystem& files, Prompts& prompts, SystemInfo& system, std::string_view procedure,
                       const std::vector<std::string>& folders) {
    for (const std::string& folder : folders) {
        if (const SysError error = ProbeFolderWritable(files, folder)) {
            ShowErrorOccurred(prompts, procedure, FolderNotWritableText(folder, ErrorDescription(system, error)));
            return false;
        }
    }
    return true;
}

}  // namespace corvane
