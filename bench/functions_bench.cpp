// The shared functions against the bare calls they stand in for.
#include <string>
#include <vector>

#include "bench/harness.h"
#include "foundations/functions.h"
#ifdef _WIN32
#include <windows.h>

#include "platform/win32/adapters.h"
#endif

using namespace corvane;
using namespace corvane::bench;

int main(int argc, char** argv) {
    ParseArgs(argc, argv);
    const int count = QuickMode() ? 1000 : 200000;

    const Measurement keys = Measure("EncodeNumberKey x" + std::to_string(count), [&] {
        for (int i = 0; i < count; ++i) KeepAlive(EncodeNumberKey(i * 4));
    });
    const Measurement decimal = Measure("std::to_string x" + std::to_string(count), [&] {
        for (int i = 0; i < count; ++i) KeepAlive(std::to_string(i * 4));
    });
    PrintRatio(keys, decimal);  // for information: the letter swap over plain decimal text

#ifdef _WIN32
    // The adapter adds a buffer and a cut to ExpandEnvironmentStringsA; that
    // must stay small beside the call itself.
    const int paths = QuickMode() ? 100 : 20000;
    Win32Environment env;
    const std::string text = "%SystemRoot%\\system32\\drivers\\etc\\hosts";
    const Measurement ours = Measure("ExpandEnvString x" + std::to_string(paths), [&] {
        for (int i = 0; i < paths; ++i) KeepAlive(ExpandEnvString(env, text));
    });
    const Measurement bare = Measure("ExpandEnvironmentStringsA x" + std::to_string(paths), [&] {
        char buffer[512];
        for (int i = 0; i < paths; ++i) {
            ExpandEnvironmentStringsA(text.c_str(), buffer, sizeof buffer);
            KeepAlive(buffer);
        }
    });
    PrintRatio(ours, bare, 1.2);
#endif
    return 0;
}
