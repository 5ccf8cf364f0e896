#include "platform/win32/shortcuts_win32.h"

#include <windows.h>
#include <objbase.h>
#include <shlobj.h>
#include <shobjidl.h>

#include <string>
#include <vector>

namespace corvane {

namespace {

// The link object takes the file's name in UTF-16; ours is in the ANSI code page.
std::wstring Wide(const std::string& text) {
    const int length = MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, nullptr, 0);
    std::wstring wide(length > 0 ? length : 1, L'\0');
    if (length > 0) MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, wide.data(), length);
    wide.resize(wcslen(wide.c_str()));
    return wide;
}

// A shortcut keeps at most 260 characters of path and 1,024 of arguments;
// the buffers leave room beyond both.
constexpr int kTextChars = 4096;

}  // namespace

Win32Shortcuts::~Win32Shortcuts() {
    if (file_) file_->Release();
    if (link_) link_->Release();
    if (startedCom_) CoUninitialize();
}

bool Win32Shortcuts::Ready() {
    if (tried_) return link_ && file_;
    tried_ = true;
    const HRESULT started = CoInitialize(nullptr);
    startedCom_ = SUCCEEDED(started);  // S_FALSE too: each success is paired with an uninitialise
    if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA,
                                reinterpret_cast<void**>(&link_)))) {
        link_ = nullptr;
        return false;
    }
    if (FAILED(link_->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&file_)))) {
        file_ = nullptr;
        return false;
    }
    return true;
}

std::optional<ShortcutInfo> Win32Shortcuts::Read(const std::string& path) {
    if (!Ready()) return std::nullopt;
    if (FAILED(file_->Load(Wide(path).c_str(), STGM_READ))) return std::nullopt;
    std::vector<char> buffer(kTextChars);
    ShortcutInfo info;
    // A shortcut to something that is no file (a printer, a folder of the
    // shell's own) has no path: the target stays empty.
    if (link_->GetPath(buffer.data(), kTextChars, nullptr, 0) == S_OK) info.targetPath = buffer.data();
    buffer.assign(kTextChars, '\0');
    if (SUCCEEDED(link_->GetArguments(buffer.data(), kTextChars))) info.arguments = buffer.data();
    buffer.assign(kTextChars, '\0');
    int index = 0;
    if (FAILED(link_->GetIconLocation(buffer.data(), kTextChars, &index))) buffer.assign(kTextChars, '\0');
    info.iconLocation = std::string(buffer.data()) + "," + std::to_string(index);
    return info;
}

}  // namespace corvane
