#include "wine/applications_machine.h"

#include "sample_parts.h"

namespace corvane::sample {

void AddApplicationsMachine() {
    // Never destroyed: its destructor would take everything out again.
    (new wine::ApplicationsMachine())->Add32BitEntry();
}

}  // namespace corvane::sample
