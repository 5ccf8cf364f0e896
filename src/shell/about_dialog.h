#pragma once
#include <windows.h>

namespace corvane {

// The maker's site, opened from the about box.
inline constexpr const char* kWebsite = "https://corvane.example.com/";

// frmAbout: the program's name and version, modal, owned by the main window.
class frmAbout {
public:
    static void Show(HWND owner);
};

}  // namespace corvane
