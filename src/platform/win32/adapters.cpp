#include <windows.h>
#include <commdlg.h>
#include <shellapi.h>

#include <algorithm>
#include <cstring>

#include "platform/win32/adapters.h"

namespace corvane {

bool Win32SystemInfo::GetVersion(OsVersion& out) {
    OSVERSIONINFOA info{};
    info.dwOSVersionInfoSize = sizeof info;  // 148, the size of the narrow structure
    std::memset(info.szCSDVersion, ' ', sizeof info.szCSDVersion);
    const BOOL ok = GetVersionExA(&info);
    out.major = info.dwMajorVersion;
    out.minor = info.dwMinorVersion;
    out.build = info.dwBuildNumber;
    out.platformId = info.dwPlatformId;
    out.csdVersion.assign(info.szCSDVersion, sizeof info.szCSDVersion);
    return ok != 0;
}

std::string Win32SystemInfo::ComputerName(size_t size) {
    std::string buffer(size, ' ');
    DWORD length = static_cast<DWORD>(size);
    GetComputerNameA(buffer.data(), &length);
    return buffer;
}

std::string Win32SystemInfo::UserName(size_t size) {
    std::string buffer(size, ' ');
    DWORD length = static_cast<DWORD>(size);
    if (!GetUserNameA(buffer.data(), &length) || length == 0) return {};
    buffer.resize(length - 1);  // the returned length counts the terminating NUL
    return buffer;
}

std::string Win32SystemInfo::ErrorText(int32_t code, size_t size) {
    std::string buffer(size, '\0');
    const DWORD length =
        FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                       static_cast<DWORD>(code), 0, buffer.data(), static_cast<DWORD>(size), nullptr);
    buffer.resize(std::min<size_t>(length, size));
    return buffer;
}

std::string Win32Environment::Expand(const std::string& text, size_t size) {
    std::string buffer(size, '\0');
    ExpandEnvironmentStringsA(text.c_str(), buffer.data(), static_cast<DWORD>(size));
    return buffer;
}

std::string Win32Environment::UiLanguage() {
    // GetUserDefaultUILanguage came with Windows 2000 and Me; the systems
    // before it have one language for the user, which is also the interface's.
    using UiLanguageCall = LANGID(WINAPI*)();
    LANGID language = GetUserDefaultLangID();
    if (const HMODULE kernel = GetModuleHandleA("kernel32.dll")) {
        if (const auto call = reinterpret_cast<UiLanguageCall>(
                reinterpret_cast<void*>(GetProcAddress(kernel, "GetUserDefaultUILanguage")))) {
            language = call();
        }
    }
    const LCID locale = MAKELCID(language, SORT_DEFAULT);
    char name[16] = {}, country[16] = {};
    if (GetLocaleInfoA(locale, LOCALE_SISO639LANGNAME, name, sizeof name) <= 1) return "";
    if (GetLocaleInfoA(locale, LOCALE_SISO3166CTRYNAME, country, sizeof country) <= 1) return name;
    return std::string(name) + "-" + country;
}

void Win32Shell::Open(const std::string& target) {
    ShellExecuteA(nullptr, "Open", target.c_str(), "", "", SW_SHOWNORMAL);
}

PromptAnswer Win32Prompts::Message(const std::string& text, const std::string& title,
                                   PromptIcon icon, PromptButtons buttons) {
    UINT style = 0;
    switch (icon) {
        case PromptIcon::None: break;
        case PromptIcon::Information: style |= MB_ICONINFORMATION; break;
        case PromptIcon::Question: style |= MB_ICONQUESTION; break;
        case PromptIcon::Exclamation: style |= MB_ICONEXCLAMATION; break;
        case PromptIcon::Critical: style |= MB_ICONHAND; break;
    }
    switch (buttons) {
        case PromptButtons::Ok: style |= MB_OK; break;
        case PromptButtons::OkCancel: style |= MB_OKCANCEL; break;
        case PromptButtons::YesNo: style |= MB_YESNO; break;
        case PromptButtons::YesNoCancel: style |= MB_YESNOCANCEL; break;
    }
    switch (MessageBoxA(static_cast<HWND>(owner_), text.c_str(), title.c_str(), style)) {
        case IDYES: return PromptAnswer::Yes;
        case IDNO: return PromptAnswer::No;
        case IDCANCEL: return PromptAnswer::Cancel;
        default: return PromptAnswer::Ok;
    }
}

std::optional<std::string> Win32Prompts::SaveFile(const std::string& filter, bool overwritePrompt) {
    // The dialog wants its pairs NUL-separated and ended by two NULs.
    std::string pairs = filter;
    for (char& c : pairs) {
        if (c == '|') c = '\0';
    }
    pairs.append(2, '\0');
    char file[MAX_PATH] = {};
    OPENFILENAMEA ofn{};
    ofn.lStructSize = sizeof ofn;
    ofn.hwndOwner = static_cast<HWND>(owner_);
    ofn.lpstrFilter = pairs.c_str();
    ofn.nFilterIndex = 1;
    ofn.lpstrFile = file;
    ofn.nMaxFile = sizeof file;
    ofn.Flags = overwritePrompt ? OFN_OVERWRITEPROMPT : 0;
    if (!GetSaveFileNameA(&ofn)) return std::nullopt;
    return std::string(file);
}

std::optional<int32_t> Win32Prompts::PickColor(int32_t initial) {
    // The dialog keeps the user's custom colours for as long as the program runs.
    static COLORREF custom[16] = {RGB(255, 255, 255), RGB(255, 255, 255), RGB(255, 255, 255),
                                  RGB(255, 255, 255), RGB(255, 255, 255), RGB(255, 255, 255),
                                  RGB(255, 255, 255), RGB(255, 255, 255), RGB(255, 255, 255),
                                  RGB(255, 255, 255), RGB(255, 255, 255), RGB(255, 255, 255),
                                  RGB(255, 255, 255), RGB(255, 255, 255), RGB(255, 255, 255),
                                  RGB(255, 255, 255)};
    CHOOSECOLORA cc{};
    cc.lStructSize = sizeof cc;
    cc.hwndOwner = static_cast<HWND>(owner_);
    cc.rgbResult = static_cast<COLORREF>(initial);
    cc.lpCustColors = custom;
    cc.Flags = CC_RGBINIT;
    if (!ChooseColorA(&cc)) return std::nullopt;
    return static_cast<int32_t>(cc.rgbResult);
}

std::string Win32Profile::Read(const std::string& section, const std::string& key,
                               const std::string& fallback, size_t size, const std::string& path) {
    std::string buffer(size, ' ');
    const DWORD length = GetPrivateProfileStringA(section.c_str(), key.c_str(), fallback.c_str(),
                                                  buffer.data(), static_cast<DWORD>(size), path.c_str());
    buffer.resize(std::min<size_t>(length, size));
    return buffer;
}

bool Win32Profile::Write(const std::string& section, const std::string& key, const std::string& value,
                         const std::string& path) {
    return WritePrivateProfileStringA(section.c_str(), key.c_str(), value.c_str(), path.c_str()) != 0;
}

}  // namespace corvane
