#pragma once
#include "platform/shortcuts.h"

struct IShellLinkA;
struct IPersistFile;

namespace corvane {

// Shortcut files through the shell's own link object (IShellLinkA with
// IPersistFile), made once on first use and kept, as the pane keeps one
// shell object per load. COM is started on that first use if the thread
// has not started it.
class Win32Shortcuts final : public ShortcutReader {
public:
    Win32Shortcuts() = default;
    ~Win32Shortcuts() override;
    Win32Shortcuts(const Win32Shortcuts&) = delete;
    Win32Shortcuts& operator=(const Win32Shortcuts&) = delete;

    std::optional<ShortcutInfo> Read(const std::string& path) override;

private:
    bool Ready();

    bool tried_ = false;
    bool startedCom_ = false;
    IShellLinkA* link_ = nullptr;
    IPersistFile* file_ = nullptr;
};

}  // namespace corvane
