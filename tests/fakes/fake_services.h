#pragma once
// The service control manager and the task service in memory. Each keeps its
// state where the system keeps it, so the startup readers and the commands
// see one machine: the manager a service's type and start type in the fake
// registry's Services\NAME, through the registry's own calls; the task service
// a task's switch (Settings/Enabled) in its task file below the Tasks folder.
// So they fail, count changes and crash with the faults of those fakes
// (fault_injection.h).
#include <string>

#include "fakes/fake_file_system.h"
#include "platform/registry.h"
#include "platform/service_manager.h"
#include "platform/task_service.h"
#include "startup/task_file.h"

namespace corvane::fakes {

class FakeServiceManager : public ServiceManager {
public:
    explicit FakeServiceManager(Registry& registry) : registry_(registry) {}

    SysError Query(const std::string& name, ServiceConfig& config) override {
        RegKey key = 0;
        if (const RegError error = Open(name, kKeyQueryValue, key)) return error;
        uint32_t values[2] = {}, size = 4;
        RegError error = kRegOk;
        for (int i = 0; i < 2 && !error; ++i, size = 4) {
            error = registry_.QueryValue(key, i ? "Start" : "Type", nullptr, reinterpret_cast<uint8_t*>(&values[i]), &size);
        }
        registry_.CloseKey(key);
        if (error) return error == kErrorFileNotFound ? kErrorNoSuchService : static_cast<SysError>(error);
        config = {values[0], values[1]};
        return kNoError;
    }
    SysError SetStart(const std::string& name, uint32_t start) override {
        RegKey key = 0;
        if (const RegError error = Open(name, kKeySetValue, key)) return error;
        const RegError error = registry_.SetValue(key, "Start", kRegDword, reinterpret_cast<const uint8_t*>(&start), 4);
        registry_.CloseKey(key);
        return static_cast<SysError>(error);
    }

private:
    RegError Open(const std::string& name, uint32_t access, RegKey& key) {
        const RegError error = registry_.OpenKey(kHKeyLocalMachine, "SYSTEM\\CurrentControlSet\\Services\\" + name, access, key);
        return error == kErrorFileNotFound ? static_cast<RegError>(kErrorNoSuchService) : error;
    }
    Registry& registry_;
};

class FakeTaskService : public TaskService {
public:
    explicit FakeTaskService(FakeFileSystem& files, std::string folder = "C:\\Windows\\System32\\Tasks")
        : files_(files), folder_(std::move(folder)) {}

    SysError Enabled(const std::string& path, bool& enabled) override {
        if (files_.failIf && files_.failIf("TaskEnabled", folder_ + path)) return files_.failError;
        const auto bytes = files_.Content(folder_ + path);
        if (!bytes) return 2;
        enabled = ReadTaskFile(*bytes).enabled;
        return kNoError;
    }
    // As Wine 8's service does: it takes every change and keeps none.
    bool keepsNothing = false;
    // The service writes the task file anew in UTF-16, its switch set.
    SysError SetEnabled(const std::string& path, bool enabled) override {
        const std::string file = folder_ + path;
        if ((files_.failIf && files_.failIf("TaskSetEnabled", file)) || files_.CountChange()) return files_.failError;
        if (keepsNothing) return kNoError;
        const auto bytes = files_.Content(file);
        if (!bytes) return 2;
        std::u16string text = TaskFileText(*bytes);
        const std::u16string flag = enabled ? u"true" : u"false";
        const size_t settings = text.find(u"<Settings>"), open = text.find(u"<Enabled>", settings);
        if (settings == std::u16string::npos) {
            const size_t end = text.find(u"</Task>");
            if (end == std::u16string::npos) return 13;  // ERROR_INVALID_DATA
            text.insert(end, u"<Settings><Enabled>" + flag + u"</Enabled></Settings>");
        } else if (open != std::u16string::npos && open < text.find(u"</Settings>", settings)) {
            text.replace(open + 9, text.find(u"</Enabled>", open) - open - 9, flag);
        } else {
            text.insert(settings + 10, u"<Enabled>" + flag + u"</Enabled>");
        }
        std::string written = "\xFF\xFE";
        for (const char16_t c : text) written += {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
        files_.AddFile(file, written);
        return kNoError;
    }

private:
    FakeFileSystem& files_;
    std::string folder_;
};

}  // namespace corvane::fakes
