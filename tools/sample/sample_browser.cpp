#include "wine/browser_machine.h"

#include "sample_parts.h"

namespace corvane::sample {

void AddBrowserMachine() {
    // Never destroyed: its destructor would take everything out again.
    (new wine::BrowserMachine())->Add32BitView();
}

}  // namespace corvane::sample
