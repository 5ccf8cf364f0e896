#pragma once
// Starting another program and waiting until it is done, together with every
// process it starts: uninstallers often copy themselves away, start the copy
// and end at once, and the work is done only when the copy ends.
#include <functional>
#include <string>

#include "platform/file_system.h"

namespace corvane {

class ProgramRunner {
public:
    virtual ~ProgramRunner() = default;
    // Starts `commandLine` as the system starts a command line of its own
    // (quotes, arguments, the program looked for along the search path, an
    // unquoted path with blanks tried piece by piece) and waits until it and
    // every process it started have ended. While it waits, `pump` is called
    // whenever messages arrive and every fraction of a second, so the caller's
    // window stays painted. kNoError once it has run, or the system's error
    // code when it could not be started.
    virtual SysError RunAndWait(const std::string& commandLine, const std::function<void()>& pump) = 0;
};

}  // namespace corvane
