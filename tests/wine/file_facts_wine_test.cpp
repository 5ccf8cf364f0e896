// File facts, icons and delete-at-reboot against Wine's real calls, over the
// fixture programs built with windres.
#include <gtest/gtest.h>

#include <windows.h>
#include <shellapi.h>

#include <array>
#include <cstdio>
#include <set>
#include <vector>

#include "contract/file_facts_contract.h"
#include "fakes/fakes.h"
#include "foundations/delete_on_reboot.h"
#include "foundations/file_description.h"
#include "foundations/file_facts_cache.h"
#include "foundations/functions.h"
#include "platform/win32/adapters.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_facts_win32.h"
#include "platform/win32/file_system_win32.h"
#include "ui/file_icon.h"
#include "wine/wine_support.h"

namespace corvane {
namespace {

using Values = std::array<std::string, 13>;

uint64_t SizeOf(const std::string& path) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data);
    return (static_cast<uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
}

TEST(FileFactsUnderWine, EveryValueOfTheFixtures) {
    const std::string folder = wine::FreshFolder("file-facts");
    Values full{"Corvane Pr\xFC" "fst\xE4nde", "2.5", "Pr\xFC" "fprogramm f\xFCr Tests", "2.5.1.7", "", "", "",
                "Pr\xFC" "fwerk GmbH", "", "", "", "", "01/31/2003"};
    Values noIcon{"Iconless", "", "Fixture without an icon", "", "", "", "", "No Icon Ltd", "", "", "", "",
                  "01/31/2003"};
    Values bare;
    bare[kCreatedOn] = "01/31/2003";
    const struct {
        std::string path;
        Values expected;
    } cases[] = {
        {wine::PlaceFixture("fixture_full.exe", folder, "Full Fixture.exe"), full},
        {wine::PlaceFixture("fixture_noicon.exe", folder, "fixture_noicon.exe"), noIcon},
        {wine::PlaceFixture("fixture_bare.exe", folder, "fixture_bare.exe"), bare},
        {folder + "\\missing.exe", Values{}},
    };
    Win32FileFacts facts;
    Win32Clock clock;
    clsProcess process(facts, clock);  // one object for every file, as the process pane keeps it
    for (const auto& c : cases) {
        process.GetFileDescription(c.path);
        for (int16_t i = 0; i < 13; ++i) EXPECT_EQ(process.getItem(i), c.expected[i]) << c.path << " row " << i;
        const auto found = facts.Find(c.path);
        if (c.path.ends_with("missing.exe")) {
            EXPECT_FALSE(found.has_value());
        } else {
            ASSERT_TRUE(found.has_value());
            EXPECT_EQ(found->size, SizeOf(c.path)) << c.path;
            EXPECT_EQ(FormatKilobytes(found->size, clock.DecimalSign()),
                      FormatKilobytes(SizeOf(c.path), "."));
        }
    }
}

TEST(FileFactsContract, Win32) {
    const std::string folder = wine::FreshFolder("facts-contract");
    const std::string full = wine::PlaceFixture("fixture_full.exe", folder, "fixture_full.exe");
    const std::string bare = wine::PlaceFixture("fixture_bare.exe", folder, "fixture_bare.exe");
    const std::string longName = wine::PlaceFixture("fixture_bare.exe", folder, "A very long file name.exe");
    Win32FileFacts facts;
    contract::CheckFileFactsContract(facts, {folder, full, bare, longName, folder + "\\missing.exe", SizeOf(full)});
}

TEST(FileFactsContract, Win32ThroughACache) {
    // The second pass answers from copies of the blocks the first one read:
    // the system's own query must read a copy as it reads the original.
    const std::string folder = wine::FreshFolder("facts-contract-cached");
    const std::string full = wine::PlaceFixture("fixture_full.exe", folder, "fixture_full.exe");
    const std::string bare = wine::PlaceFixture("fixture_bare.exe", folder, "fixture_bare.exe");
    const std::string longName = wine::PlaceFixture("fixture_bare.exe", folder, "A very long file name.exe");
    Win32FileFacts facts;
    FileFactsCache cache(facts);
    for (int pass = 0; pass < 2; ++pass) {
        contract::CheckFileFactsContract(cache, {folder, full, bare, longName, folder + "\\missing.exe", SizeOf(full)});
    }
}

TEST(FileIconCache, EveryRowWithAnIconGetsAnImageOfItsOwn) {
    const std::string folder = wine::FreshFolder("icon-cache");
    const std::string full = wine::PlaceFixture("fixture_full.exe", folder, "Full.exe");
    const std::string noIcon = wine::PlaceFixture("fixture_noicon.exe", folder, "noicon.exe");
    HIMAGELIST images = ImageList_Create(GetSystemMetrics(SM_CXSMICON), GetSystemMetrics(SM_CYSMICON),
                                         ILC_COLOR32 | ILC_MASK, 8, 8);
    ImageList_AddIcon(images, DefaultFileIcon(false));
    {
        FileIconCache icons;
        const struct {
            std::string file;
            int32_t iconIndex;
            int image;
        } rows[] = {
            {full, 0, 1},
            {noIcon, 0, 0},
            {full, 0, 2},  // the same icon again: an image of its own
            {folder + "\\FULL.EXE", 0, 3},
            {folder + "\\missing.exe", 0, 0},
            {full, 7, 0},  // an icon number the file does not have
            {noIcon, 0, 0},
            {full, 0, 4},
        };
        for (const auto& row : rows) {
            EXPECT_EQ(icons.AddImage(images, row.file, row.iconIndex), row.image) << row.file << "," << row.iconIndex;
        }
    }
    EXPECT_EQ(ImageList_GetImageCount(images), 5);
    ImageList_Destroy(images);
}

TEST(ClockContract, Win32) {
    Win32Clock clock;
    contract::CheckClockContract(clock);
}

SIZE IconSize(HICON icon) {
    ICONINFO info{};
    if (!GetIconInfo(icon, &info)) return {0, 0};
    BITMAP bitmap{};
    GetObjectA(info.hbmMask, sizeof bitmap, &bitmap);
    DeleteObject(info.hbmMask);
    if (info.hbmColor) DeleteObject(info.hbmColor);
    // A monochrome icon keeps its AND and XOR masks one above the other.
    return {bitmap.bmWidth, info.hbmColor ? bitmap.bmHeight : bitmap.bmHeight / 2};
}

TEST(FileIconUnderWine, IconsOfTheFixtures) {
    const std::string folder = wine::TestFolder();
    const struct {
        std::string file;
        int32_t index;
        bool large;
        bool error;
        LONG size;
    } cases[] = {
        {folder + "\\fixture_full.exe", 0, true, false, 32},
        {folder + "\\fixture_full.exe", 0, false, false, 16},
        {folder + "\\fixture_full.exe", 1, false, true, 0},  // it has one icon only
        {folder + "\\fixture_noicon.exe", 0, false, true, 0},
        {folder + "\\fixture_bare.exe", 0, true, true, 0},
        {folder + "\\no such file.exe", 0, false, true, 0},
    };
    for (const auto& c : cases) {
        bool blnError = !c.error;
        const UniqueIcon icon = clsIcon().GetIconFromFile(c.file, c.index, c.large, blnError);
        EXPECT_EQ(blnError, c.error) << c.file << " #" << c.index;
        EXPECT_EQ(icon == nullptr, c.error) << c.file;
        if (icon) {
            const SIZE size = IconSize(icon.get());
            EXPECT_EQ(size.cx, c.size) << c.file;
            EXPECT_EQ(size.cy, c.size) << c.file;
        }
    }
    EXPECT_EQ(IconSize(DefaultFileIcon(true)).cx, 32);
    EXPECT_EQ(IconSize(DefaultFileIcon(false)).cx, 16);
}

// Wine's GetGuiResources answers 0, so leaks are read off the handle tables
// themselves: a USER or GDI handle's low word is its slot, and a slot comes
// free again when its object is destroyed. A loop that releases all it makes
// keeps reusing a few slots; one that leaks takes a new slot each time.
struct SlotWatch {
    std::set<WORD> userSlots, gdiSlots;
    void Note(HICON icon) {
        userSlots.insert(LOWORD(reinterpret_cast<UINT_PTR>(icon)));
        // GetIconInfo makes fresh bitmaps: where they land shows whether GDI slots are running out.
        ICONINFO info{};
        if (GetIconInfo(icon, &info)) {
            gdiSlots.insert(LOWORD(reinterpret_cast<UINT_PTR>(info.hbmMask)));
            DeleteObject(info.hbmMask);
            if (info.hbmColor) DeleteObject(info.hbmColor);
        }
    }
};

TEST(FileIconUnderWine, AThousandRowsLeaveNoHandles) {
    const std::string full = wine::TestFolder() + "\\fixture_full.exe";
    const DWORD gdiBefore = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    const DWORD userBefore = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);

    // First prove the watch sees a leak: fifty icons kept take fifty slots.
    {
        SlotWatch leaky;
        std::vector<HICON> kept;
        for (int i = 0; i < 50; ++i) {
            HICON large = nullptr, small = nullptr;
            ExtractIconExA(full.c_str(), 0, &large, &small, 1);
            leaky.Note(small);
            kept.push_back(large);
            kept.push_back(small);
        }
        EXPECT_GE(leaky.userSlots.size(), 50u);
        EXPECT_GE(leaky.gdiSlots.size(), 50u);
        for (HICON icon : kept) DestroyIcon(icon);
    }

    SlotWatch watch;
    HIMAGELIST images = ImageList_Create(16, 16, ILC_COLOR32 | ILC_MASK, 1, 16);
    ImageList_AddIcon(images, DefaultFileIcon(false));
    for (int row = 0; row < 1000; ++row) {
        bool blnError = true;
        const UniqueIcon icon = clsIcon().GetIconFromFile(full, 0, row % 2 == 0, blnError);
        ASSERT_FALSE(blnError) << "row " << row;
        watch.Note(icon.get());
        EXPECT_EQ(AddFileIconImage(images, full, 0), row + 1) << "each row adds its own image";
    }
    bool blnError = false;
    EXPECT_FALSE(clsIcon().GetIconFromFile(wine::TestFolder() + "\\fixture_bare.exe", 0, false, blnError));
    EXPECT_EQ(AddFileIconImage(images, wine::TestFolder() + "\\fixture_bare.exe", 0), 0) << "the default picture";
    EXPECT_EQ(ImageList_GetImageCount(images), 1001);
    ImageList_Destroy(images);

    // A leak takes a new slot every row, a thousand in all. Without one the
    // same few slots come round again; the image list replacing its bitmaps
    // as it grows, and other processes of the prefix sharing the USER table,
    // stir them a little.
    std::printf("slots used over 1,000 rows: USER %zu, GDI %zu\n", watch.userSlots.size(), watch.gdiSlots.size());
    EXPECT_LT(watch.userSlots.size(), 250u) << "icon handles are released";
    EXPECT_LT(watch.gdiSlots.size(), 250u) << "their bitmaps are released";
    if (gdiBefore || userBefore) {  // where the count is kept, as on Windows
        EXPECT_EQ(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), gdiBefore);
        EXPECT_EQ(GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS), userBefore);
    }
}

// The values of PendingFileRenameOperations: pairs of source and target.
std::vector<std::string> PendingRenames() {
    std::vector<std::string> entries;
    HKEY key;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, "System\\CurrentControlSet\\Control\\Session Manager", 0, KEY_READ,
                      &key) != ERROR_SUCCESS) {
        return entries;
    }
    DWORD size = 0;
    if (RegQueryValueExA(key, "PendingFileRenameOperations", nullptr, nullptr, nullptr, &size) == ERROR_SUCCESS) {
        std::string data(size, '\0');
        RegQueryValueExA(key, "PendingFileRenameOperations", nullptr, nullptr, reinterpret_cast<BYTE*>(data.data()),
                         &size);
        for (size_t at = 0; at < data.size();) {
            const size_t end = data.find('\0', at);
            entries.push_back(data.substr(at, end - at));
            at = end == std::string::npos ? data.size() : end + 1;
        }
    }
    RegCloseKey(key);
    return entries;
}

std::string ShortPathOf(const std::string& path) {
    char buffer[MAX_PATH] = {};
    const DWORD length = GetShortPathNameA(path.c_str(), buffer, MAX_PATH);
    return std::string(buffer, length);
}

struct Win32Ports {
    Win32FileFacts facts;
    Win32FileSystem files;
    Win32Environment environment;
    Win32SystemInfo system;
    fakes::FakePrompts prompts;
    DeleteOnRebootPorts ports{facts, files, environment, system, prompts};
};

TEST(DeleteOnRebootUnderWine, NtFamilyQueuesTheShortPath) {
    const std::string folder = wine::FreshFolder("reboot-nt");
    const std::string path = wine::PlaceFixture("fixture_bare.exe", folder, "Running Long Program.exe");
    const std::string shortPath = ShortPathOf(path);
    ASSERT_NE(shortPath, path);
    Win32Ports w;
    DeleteFileOnReboot(w.ports, path);
    EXPECT_TRUE(w.prompts.shown.empty());
    const std::vector<std::string> pending = PendingRenames();
    bool queued = false;
    for (size_t i = 0; i + 1 < pending.size(); i += 2) {
        queued |= pending[i] == "\\??\\" + shortPath && pending[i + 1].empty();
    }
    EXPECT_TRUE(queued) << "\\??\\" << shortPath << " with no target";
    EXPECT_EQ(GetFileAttributesA("C:\\windows\\WinInit.ini"), INVALID_FILE_ATTRIBUTES);
}

TEST(DeleteOnRebootUnderWine, NtFamilyRefusalIsShown) {
    Win32Ports w;
    const std::string path = "C:\\corvane-tests\\no such folder\\gone.exe";
    DeleteFileOnReboot(w.ports, path);
    ASSERT_EQ(w.prompts.shown.size(), 1u);
    EXPECT_EQ(w.prompts.shown[0].text, "Error occurred while adding to delete on reboot: \r\n" + path +
                                           FormatApiError(w.system, ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(w.prompts.shown[0].icon, PromptIcon::None);
}

// Wine sets OS=Windows_NT whatever version it plays, and a real Windows 98
// has no OS variable at all: the children of this test start without it.
class ScopedNoOsVariable {
public:
    ScopedNoOsVariable() {
        char value[64] = {};
        had_ = GetEnvironmentVariableA("OS", value, sizeof value) > 0;
        old_ = value;
        SetEnvironmentVariableA("OS", nullptr);
    }
    ~ScopedNoOsVariable() {
        if (had_) SetEnvironmentVariableA("OS", old_.c_str());
    }

private:
    bool had_ = false;
    std::string old_;
};

std::string ReadWinInit() {
    Win32FileSystem files;
    return files.Read("C:\\windows\\WinInit.ini", nullptr).value_or("<none>");
}

TEST(DeleteOnRebootUnderWine98, OlderFamilyWritesWinInit) {
    const std::string folder = wine::FreshFolder("reboot-9x");
    const std::string first = wine::PlaceFixture("fixture_bare.exe", folder, "First Long Program.exe");
    const std::string second = wine::PlaceFixture("fixture_bare.exe", folder, "Second Long Program.exe");
    const std::string probe = "\"" + wine::TestFolder() + "\\reboot_delete_probe.exe\" ";
    DeleteFileA("C:\\windows\\WinInit.ini");
    const size_t pendingBefore = PendingRenames().size();

    wine::ScopedWineVersion version("win98");
    ScopedNoOsVariable noOs;
    const std::string identity = wine::Run("\"" + wine::TestFolder() + "\\sysinfo_probe.exe\"").output;
    ASSERT_EQ(identity.rfind("Microsoft Windows 98", 0), 0u) << "the children run as Windows 98: " << identity;
    for (const std::string& path : {first, second}) {
        const wine::RunResult run = wine::Run(probe + "\"" + path + "\"");
        EXPECT_EQ(run.exitCode, 0u) << run.output;
        EXPECT_EQ(run.output, "") << "the older family shows no message";
    }
    const std::string twoLines = "[Rename]\r\nNUL=" + ShortPathOf(first) + "\r\nNUL=" + ShortPathOf(second) + "\r\n";
    EXPECT_EQ(ReadWinInit(), twoLines);
    EXPECT_EQ(PendingRenames().size(), pendingBefore) << "no delayed move on the older family";

    // Someone else's file without a final line break keeps its text and gets one.
    Win32FileSystem files;
    ASSERT_EQ(files.Write("C:\\windows\\WinInit.ini", "[Rename]\r\nNUL=C:\\OTHER.EXE"), kNoError);
    EXPECT_EQ(wine::Run(probe + "\"" + first + "\"").exitCode, 0u);
    EXPECT_EQ(ReadWinInit(), "[Rename]\r\nNUL=C:\\OTHER.EXE\r\nNUL=" + ShortPathOf(first) + "\r\n");
    DeleteFileA("C:\\windows\\WinInit.ini");
}

}  // namespace
}  // namespace corvane
