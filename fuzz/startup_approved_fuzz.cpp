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
#include "fakes/fake_clock.h"
#include "fakes/fake_registry.h"
#include "fuzz_input.h"
#include "startup/startup_approved.h"
#include "startup/startup_items.h"

using namespace corvane;

FUZZ_PROPERTY(in) {
    const std::string path = "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\StartupApproved\\Run";
    fakes::FakeClock clock;
    clock.utcOffsetMinutes = static_cast<int8_t>(in.Byte()) * 15;
    fakes::FakeRegistry reg;
    reg.AddKey(path);
    while (!in.AtEnd()) {
        const uint32_t type = in.Byte() & 0x0F;
        std::string name = in.Bytes(in.Byte());
        std::replace(name.begin(), name.end(), '\0', '_');
        reg.Put(path, name, type, in.Bytes(in.Byte()));
    }
    const WindowsDisabled disabled = WindowsDisabled::Read(reg, clock, kLocHKCU);
    for (const std::string& name : reg.ValueNames(path)) {
        const auto stored = reg.Value(path, name);
        const bool expected = stored->type == kRegBinary && stored->data.size() == kStartupApprovalSize && (stored->data[0] & 1);
        const std::string text = disabled.TextOf(name);
        CHECK(text.empty() == !expected && (!expected || text.rfind("Disabled by Windows", 0) == 0));
        CHECK(!expected || text.size() == 19 || (text.size() >= 33 && text.compare(19, 4, " on ") == 0));
    }
    CHECK(reg.OpenHandles() == 0);
}
