#pragma once
#include <windows.h>

#include <string>

#include "platform/clock.h"
#include "platform/file_facts.h"
#include "ui/file_icon.h"

namespace corvane {

// "View Information": the modal dialog that shows all that is known about
// one file. The caller sets the three fields and shows it; the dialog reads
// the icon, the date and the version strings from the file itself.
class frmviewInfo {
public:
    frmviewInfo(FileFacts& facts, Clock& clock) : facts_(facts), clock_(clock) {}

    std::string FilePath;         // full path of the file
    std::string FileSize;         // the size text as the list shows it; the dialog does not measure
    std::string FileDisplayName;  // the heading

    // Shows the dialog modally, owned by and centred on `owner` (the main
    // window), and returns when the user closes it.
    void Show(HWND owner);

private:
    FileFacts& facts_;
    Clock& clock_;
    HWND hWnd_ = nullptr;
    UniqueIcon icon_;  // the file's own icon, drawn by picIcon while the dialog is open
    HFONT headingFont_ = nullptr;

    static INT_PTR CALLBACK DialogProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
    void Form_Load();
    void Form_Unload();
    void cmdOk_Click();
    void ShowIcon();
    void FillFields();
    void Arrange();
    void Set(int id, const std::string& text);
};

}  // namespace corvane
