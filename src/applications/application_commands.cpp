#include "applications/application_commands.h"

// Placeholder body while the command is built.
namespace corvane {

bool DeleteApplicationEntry(ApplicationCommandPorts&, const Row*) { return false; }

}  // namespace corvane
