#pragma once
// The service control manager and the task service in memory. Each keeps its
// state where the system keeps it, so the startup readers and the commands
// see one machine, and fails, counts changes and crashes with the faults of
// that fake (fault_injection.h): the manager a service's type and start type
// in the fake registry's Services\NAME, through the registry's calls; the task
// service a task's switch (Settings/Enabled) in its task file, which the
// fakes keep as ANSI text.
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
        uint32_t size = 4;
        RegError error = Open(name, kKeyQueryValue, key);
        if (!error) error = registry_.QueryValue(key, "Type", nullptr, reinterpret_cast<uint8_t*>(&config.type), &size);
        if (!error) error = registry_.QueryValue(key, "Start", nullptr, reinterpret_cast<uint8_t*>(&config.start), &size);
        return Close(key, error);
    }
    SysError SetStart(const std::string& name, uint32_t start) override {
        RegKey key = 0;
        RegError error = Open(name, kKeySetValue, key);
        if (!error) error = registry_.SetValue(key, "Start", kRegDword, reinterpret_cast<const uint8_t*>(&start), 4);
        return Close(key, error);
    }

private:
    RegError Open(const std::string& name, uint32_t access, RegKey& key) {
        return registry_.OpenKey(kHKeyLocalMachine, "SYSTEM\\CurrentControlSet\\Services\\" + name, access, key);
    }
    SysError Close(RegKey key, RegError error) {
        if (key) registry_.CloseKey(key);
        return error == kErrorFileNotFound ? kErrorNoSuchService : static_cast<SysError>(error);
    }
    Registry& registry_;
};

class FakeTaskService : public TaskService {
public:
    explicit FakeTaskService(FakeFileSystem& files) : files_(files) {}

    SysError Enabled(const std::string& path, bool& enabled) override {
        if (files_.failIf && files_.failIf("TaskEnabled", kFolder + path)) return files_.failError;
        const auto text = files_.Content(kFolder + path);
        return text ? (enabled = ReadTaskFile(*text).enabled, kNoError) : 2;
    }
    SysError SetEnabled(const std::string& path, bool enabled) override {
        if ((files_.failIf && files_.failIf("TaskSetEnabled", kFolder + path)) || files_.CountChange()) return files_.failError;
        std::string text = files_.Content(kFolder + path).value_or("");
        const size_t settings = text.find("<Settings>"), open = text.find("<Enabled>", settings);
        if (settings == std::string::npos) return 2;
        if (open < text.find("</Settings>")) text.erase(open, text.find("</Enabled>", open) + 10 - open);
        files_.AddFile(kFolder + path, text.insert(settings + 10, enabled ? "<Enabled>true</Enabled>" : "<Enabled>false</Enabled>"));
        return kNoError;
    }

private:
    static constexpr const char* kFolder = "C:\\Windows\\System32\\Tasks";
    FakeFileSystem& files_;
};

}  // namespace corvane::fakes
