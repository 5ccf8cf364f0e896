#pragma once
#include <windows.h>

namespace corvane {

// Takes from a window its maximise button and its sizing frame, and greys the
// Maximize entry of its system menu.
class clsDisableMaximize {
public:
    void DisableMaxButton(HWND hwnd);
};

}  // namespace corvane
