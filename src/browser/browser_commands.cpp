#include "browser/browser_commands.h"

// Placeholder bodies while the commands are built; each changes nothing.
namespace corvane {

std::vector<std::string> DisabledHelperObjects(FileSystem&, const std::string&) { return {}; }
bool DisableCheckedHelperObjects(BrowserCommandPorts&, const std::vector<Row>&) { return false; }
bool EnableCheckedHelperObjects(BrowserCommandPorts&, const std::vector<Row>&) { return false; }
bool DeleteToolbar(BrowserCommandPorts&, const Row*) { return false; }
bool DeleteButton(BrowserCommandPorts&, const Row*) { return false; }
bool DeleteMenuItem(BrowserCommandPorts&, const Row*) { return false; }

}  // namespace corvane
