#pragma once
// One fault armed on the registry and file-system fakes for one run of a
// command: the Nth call fails, the Nth change fails, the run stops after the
// Nth change as a crash would, or the Nth write lands with other bytes. A test
// runs its command under every fault for N = 1, 2, ... until the fault is no
// longer reached, and checks after each run that nothing was lost.
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
inline const char* const kFaultNames[] = {"registry call fails", "registry change fails", "crash after registry change",
                                          "file call fails",     "file change fails",     "crash after file change",
                                          "write lands corrupt"};

struct FaultOutcome {
    bool crashed = false;
    bool reached = false;  // false: a larger N would change nothing
};

// Runs `command` with the fault armed beside the refusals the test set up
// (which stay); the changes the test made setting up do not count.
inline FaultOutcome RunWithFault(Fault fault, int n, FakeRegistry& registry, FakeFileSystem& files,
                                 const std::function<void()>& command) {
    const auto registryRefuses = registry.failIf;
    const auto filesRefuse = files.failIf;
    registry.changes = files.changes = files.writes = 0;
    int calls = 0;
    FaultOutcome outcome;
    const auto hit = [&] { return ++calls == n && (outcome.reached = true); };
    if (fault == Fault::RegistryCallFails) {
        // A failed close would only leave a handle open.
        registry.failIf = [&](const std::string& op, const std::string& key, const std::string& value) {
            return (registryRefuses && registryRefuses(op, key, value)) || (op != "CloseKey" && hit());
        };
    }
    if (fault == Fault::FileCallFails) {
        files.failIf = [&](const std::string& op, const std::string& path) {
            return (filesRefuse && filesRefuse(op, path)) || hit();
        };
    }
    registry.failChange = fault == Fault::RegistryChangeFails ? n : 0;
    registry.crashAfterChange = fault == Fault::RegistryCrashes ? n : 0;
    files.failChange = fault == Fault::FileChangeFails ? n : 0;
    files.crashAfterChange = fault == Fault::FilesCrash ? n : 0;
    files.corruptWrite = fault == Fault::WriteCorrupts ? n : 0;
    try {
        command();
    } catch (const SimulatedCrash&) {
        outcome.crashed = true;
    }
    registry.failIf = registryRefuses;
    files.failIf = filesRefuse;
    registry.failChange = registry.crashAfterChange = files.failChange = files.crashAfterChange = files.corruptWrite = 0;
    if (fault == Fault::RegistryCrashes || fault == Fault::FilesCrash) outcome.reached = outcome.crashed;
    if (fault == Fault::RegistryChangeFails) outcome.reached = registry.changes >= n;
    if (fault == Fault::FileChangeFails) outcome.reached = files.changes >= n;
    if (fault == Fault::WriteCorrupts) outcome.reached = files.writes >= n;
    return outcome;
}

}  // namespace corvane::fakes
