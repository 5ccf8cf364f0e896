// Shows the file detail dialog over a main window for a screenshot:
// view_info_demo PATH HEADING. It stays open until it is closed.
#include <windows.h>

#include "foundations/file_description.h"
#include "ui/view_info_dialog.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_facts_win32.h"
#include "foundations/app_identity.h"

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    corvane::Win32FileFacts facts;
    corvane::Win32Clock clock;
    HWND owner = CreateWindowA("STATIC", corvane::MainCaption().c_str(), WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 40,
                               741, 545, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
    corvane::frmviewInfo form(facts, clock);
    form.FileDisplayName = argv[2];
    form.FilePath = argv[1];
    const auto found = facts.Find(argv[1]);
    form.FileSize = found ? corvane::FormatKilobytes(found->size, clock.DecimalSign()) : "";
    form.Show(owner);
    DestroyWindow(owner);
    return 0;
}
