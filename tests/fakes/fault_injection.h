#pragma once
// One fault armed on the registry and file-system fakes for one run of a
// command: the Nth call fails, the Nth change fails, the run stops after the
// Nth change as a crash would, or the Nth write lands with other bytes. A test runs its command under every fault
// for N = 1, 2, ... until the fault is no longer reached, and checks after
// each run that nothing was lost.
#include <functional>
#include <string>

#include "fakes/fake_file_system.h"
#include "fakes/fake_registry.h"

namespace corvane::fakes {

enum class Fault { RegistryCallFails, RegistryChangeFails, RegistryCrashes, FileCallFails, FileChangeFails, FilesCrash,
                   WriteCorrupts };
inline constexpr Fault kEveryFault[] = {Fault::RegistryCallFails, Fault::RegistryChangeFails, Fault::RegistryCrashes,
                                        Fault::FileCallFails,     Fault::FileChangeFails,     Fault::FilesCrash,
                                        Fault::WriteCorrupts};

class FaultRun {
public:
    // Arms the fault beside the refusals the test set up; the changes made so
    // far (a test's own setting up) do not count.
    FaultRun(Fault fault, int n, FakeRegistry& registry, FakeFileSystem& files)
        : fault_(fault), n_(n), registry_(registry), files_(files), registryRefuses_(registry.failIf),
          filesRefuse_(files.failIf) {
        registry.changes = files.changes = files.writes = 0;
        switch (fault) {
            case Fault::RegistryCallFails:
                // A failed close would only leave a handle open.
                registry.failIf = [this](const std::string& op, const std::string& key, const std::string& value) {
                    return (registryRefuses_ && registryRefuses_(op, key, value)) || (op != "CloseKey" && Hit());
                };
                break;
            case Fault::FileCallFails:
                files.failIf = [this](const std::string& op, const std::string& path) {
                    return (filesRefuse_ && filesRefuse_(op, path)) || Hit();
                };
                break;
            case Fault::WriteCorrupts: files.corruptWrite = n; break;
            case Fault::RegistryChangeFails: registry.failChange = n; break;
            case Fault::FileChangeFails: files.failChange = n; break;
            case Fault::RegistryCrashes: registry.crashAfterChange = n; break;
            case Fault::FilesCrash: files.crashAfterChange = n; break;
        }
    }
    FaultRun(const FaultRun&) = delete;
    FaultRun& operator=(const FaultRun&) = delete;

    // Runs the command, then disarms the fault. True when it stopped as a crash would.
    bool Run(const std::function<void()>& command) {
        try {
            command();
        } catch (const SimulatedCrash&) {
            crashed_ = true;
        }
        registry_.failIf = registryRefuses_;
        files_.failIf = filesRefuse_;
        registry_.failChange = registry_.crashAfterChange = 0;
        files_.failChange = files_.crashAfterChange = files_.corruptWrite = 0;
        return crashed_;
    }

    // Whether the fault went unused, so a larger N would change nothing.
    bool Missed() const {
        switch (fault_) {
            case Fault::RegistryCallFails:
            case Fault::FileCallFails: return !reached_;
            case Fault::RegistryCrashes:
            case Fault::FilesCrash: return !crashed_;
            case Fault::RegistryChangeFails: return registry_.changes < n_;
            case Fault::FileChangeFails: return files_.changes < n_;
            case Fault::WriteCorrupts: return files_.writes < n_;
        }
        return true;
    }

    std::string Name() const {
        static const char* const names[] = {"registry call fails", "registry change fails",
                                            "crash after registry change", "file call fails",
                                            "file change fails",   "crash after file change",
                                            "write lands corrupt"};
        return std::string(names[static_cast<int>(fault_)]) + " " + std::to_string(n_);
    }

private:
    bool Hit() {
        const bool hit = ++calls_ == n_;
        reached_ = reached_ || hit;
        return hit;
    }

    Fault fault_;
    int n_;
    FakeRegistry& registry_;
    FakeFileSystem& files_;
    decltype(FakeRegistry::failIf) registryRefuses_;
    decltype(FakeFileSystem::failIf) filesRefuse_;
    int calls_ = 0;
    bool reached_ = false;
    bool crashed_ = false;
};

}  // namespace corvane::fakes
