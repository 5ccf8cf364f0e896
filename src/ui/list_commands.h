#pragma once
// The commands every list of the program shares, whatever its rows: the
// file detail dialog, opening a row's folder and the list's report.
#include <functional>
#include <string>

namespace corvane {

// "View Information": the detail dialog for `path`, headed `displayName`, with
// the size text the list shows, owned by the main window.
void ShowFileDetails(const std::string& displayName, const std::string& path, const std::string& sizeText);

// "Open Folder": the folder in the user's file manager, if it exists now.
void OpenFolder(const std::string& folder);

// "Generate Report": the notice for an empty list, else the save dialog, the
// banner headed `title`, the body `writer` appends, and the file opened.
void RunListReport(bool listEmpty, const std::string& emptyText, const std::string& title,
                   std::function<void(const std::string& file)> writer);

}  // namespace corvane
