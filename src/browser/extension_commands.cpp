#include "browser/extension_commands.h"

namespace corvane {

bool DisableExtensions(ExtensionCommandPorts&, const std::vector<const ExtensionRecord*>&) { return false; }
bool EnableExtensions(ExtensionCommandPorts&, const std::vector<const ExtensionRecord*>&) { return false; }
bool DeleteExtensionEntry(ExtensionCommandPorts&, const ExtensionRecord*) { return false; }

}  // namespace corvane
