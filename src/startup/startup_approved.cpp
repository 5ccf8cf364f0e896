#include "startup/startup_approved.h"

#include <cstdio>

#include "foundations/registry.h"
#include "startup/startup_items.h"

namespace corvane {

namespace {

uint64_t LittleEndian(std::span<const uint8_t> bytes) {
    uint64_t value = 0;
    for (size_t i = bytes.size(); i-- > 0;) value = (value << 8) | bytes[i];
    return value;
}

}  // namespace

std::optional<StartupApproval> ParseStartupApproval(std::span<const uint8_t> data) {
    if (data.size() != kStartupApprovalSize) return std::nullopt;
    StartupApproval approval;
    approval.disabled = (LittleEndian(data.subspan(0, 4)) & 1) != 0;
    approval.changed.ticks = LittleEndian(data.subspan(4, 8));
    return approval;
}

std::string WindowsSettingText(Clock& clock, const StartupApproval& approval) {
    if (!approval.disabled) return "";
    static const std::string kDisabled = "Disabled by Windows";
    if (approval.changed.ticks == 0) return kDisabled;
    const std::optional<FileTime> local = clock.FileTimeToLocalFileTime(approval.changed);
    const std::optional<SystemTime> time = local ? clock.FileTimeToSystemTime(*local) : std::nullopt;
    if (!time) return kDisabled;
    char date[32];
    std::snprintf(date, sizeof date, "%04u-%02u-%02u", static_cast<unsigned>(time->year),
                  static_cast<unsigned>(time->month), static_cast<unsigned>(time->day));
    return kDisabled + " on " + date;
}

std::optional<ApprovalPlace> ApprovalPlaceOf(const std::string& location) {
    const std::string key = kStartupApprovedKey;
    if (location == kLocHKLM) return ApprovalPlace{kHKeyLocalMachine, key + "Run"};
    if (location == kLocHKLM32) return ApprovalPlace{kHKeyLocalMachine, key + "Run32"};
    if (location == kLocHKCU) return ApprovalPlace{kHKeyCurrentUser, key + "Run"};
    if (location == kLocStartupLM) return ApprovalPlace{kHKeyLocalMachine, key + "StartupFolder"};
    if (location == kLocStartupCU) return ApprovalPlace{kHKeyCurrentUser, key + "StartupFolder"};
    return std::nullopt;
}

WindowsDisabled WindowsDisabled::Read(Registry& registry, Clock& clock, const std::string& location) {
    WindowsDisabled result;
    const std::optional<ApprovalPlace> place = ApprovalPlaceOf(location);
    if (!place) return result;
    for (const RegValueEntry& entry : EnumRegValues(registry, place->hive, place->keyPath)) {
        const auto* bytes = std::get_if<std::vector<uint8_t>>(&entry.data);
        if (!bytes || entry.typeCode != kTypeCodeBytes) continue;
        const std::optional<StartupApproval> approval = ParseStartupApproval(*bytes);
        if (!approval || !approval->disabled) continue;
        result.texts_[RegNameKey(entry.name)] = WindowsSettingText(clock, *approval);
    }
    return result;
}

std::string WindowsDisabled::TextOf(const std::string& name) const {
    if (texts_.empty()) return "";
    const auto it = texts_.find(RegNameKey(name));
    return it == texts_.end() ? std::string() : it->second;
}

}  // namespace corvane
