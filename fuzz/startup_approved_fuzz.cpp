// What Windows disabled, read from StartupApproved values of any kind, size
// and name: an item is named "Disabled by Windows" exactly when a REG_BINARY
// value of its name (regardless of case) holds 12 bytes whose first byte has
// bit 0 set, the text never depends on bytes past the twelfth, and every key
// opened is closed.
//
// Input: one byte of clock offset (signed quarter hours), then records
// until the input ends:
//   type       the value's type, low 4 bits
//   name       8-bit length, then the name's bytes
//   data       8-bit length, then the data's bytes
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "fakes/fake_clock.h"
#include "fakes/fake_registry.h"
#include "fuzz_input.h"
#include "startup/startup_approved.h"
#include "startup/startup_items.h"

namespace {

using corvane::fakes::FakeRegistry;

constexpr const char* kPath = "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\StartupApproved\\Run";

void Check(bool condition) {
    if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvane;
    fuzz::FuzzInput in(data, size);

    // The parser alone, on the whole input.
    const auto whole = ParseStartupApproval({data, size});
    Check(whole.has_value() == (size == kStartupApprovalSize));
    if (whole) Check(whole->disabled == ((data[0] & 1) != 0));

    fakes::FakeClock clock;
    clock.utcOffsetMinutes = static_cast<int8_t>(in.Byte()) * 15;
    FakeRegistry reg;
    reg.AddKey(kPath);
    while (!in.AtEnd()) {
        const uint32_t type = in.Byte() & 0x0F;
        std::string name = in.Bytes(in.Byte());
        for (char& c : name) {
            if (c == '\0') c = '_';
        }
        reg.Put(kPath, name, type, in.Bytes(in.Byte()));
    }

    const WindowsDisabled disabled = WindowsDisabled::Read(reg, clock, kLocHKCU);
    for (const std::string& name : reg.ValueNames(kPath)) {
        const auto stored = reg.Value(kPath, name);
        const std::string& bytes = stored->data;
        const bool expected = stored->type == kRegBinary && bytes.size() == kStartupApprovalSize && (bytes[0] & 1);
        const std::string text = disabled.TextOf(name);
        Check(text.empty() == !expected);
        if (expected) Check(text.rfind("Disabled by Windows", 0) == 0);
        if (expected && text.size() > 19) Check(text.size() >= 33 && text.compare(19, 4, " on ") == 0);
    }
    Check(reg.OpenHandles() == 0);
    return 0;
}
