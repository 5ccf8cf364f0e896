#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <random>

#include "fakes/fakes.h"
#include "foundations/functions.h"
#include "foundations/app_identity.h"

namespace corvane {
namespace {

TEST(NumberKey, EncodesDigitsAsLetters) {
    const struct {
        int32_t value;
        const char* key;
    } cases[] = {
        {0, "A"}, {1234, "BCDE"}, {-50, "-FA"}, {9876543, "JIHGFED"},
        {INT32_MAX, "CBEHEIDGEH"}, {INT32_MIN, "-CBEHEIDGEI"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(EncodeNumberKey(c.value), c.key) << c.value;
        EXPECT_EQ(DecodeNumberKey(c.key), c.value) << c.key;
    }
}

// Process ids span the whole 32-bit range on some systems; a key that does not
// come back as its number would kill the wrong process.
TEST(NumberKey, RoundTripsOverTheIdRange) {
    for (int64_t v = -100000; v <= 1000000; ++v) {
        ASSERT_EQ(DecodeNumberKey(EncodeNumberKey(static_cast<int32_t>(v))), v);
    }
    // Every power of ten and its neighbours, where the digit count changes.
    for (int64_t p = 1; p <= INT32_MAX; p *= 10) {
        for (int64_t v : {p - 1, p, p + 1, -p + 1, -p, -p - 1}) {
            ASSERT_EQ(DecodeNumberKey(EncodeNumberKey(static_cast<int32_t>(v))), v);
        }
    }
    // A stride through the rest of the range, and random values.
    for (int64_t v = INT32_MIN; v <= INT32_MAX; v += 65521) {
        ASSERT_EQ(DecodeNumberKey(EncodeNumberKey(static_cast<int32_t>(v))), v);
    }
    std::mt19937 random(20261123);
    for (int i = 0; i < 200000; ++i) {
        const auto v = static_cast<int32_t>(random());
        ASSERT_EQ(DecodeNumberKey(EncodeNumberKey(v)), v);
    }
}

TEST(TrimAtNull, CutsAtTheFirstNul) {
    using namespace std::string_literals;
    const struct {
        std::string in, out;
    } cases[] = {
        {"", ""}, {"\0abc"s, ""}, {"abc", "abc"}, {"abc\0def\0"s, "abc"}, {"   \0"s, "   "},
    };
    for (const auto& c : cases) EXPECT_EQ(TrimAtNull(c.in), c.out);
}

TEST(ExpandEnvString, ExpandsOnlyWhenThereIsAPercent) {
    fakes::FakeEnvironment env;
    env.variables = {{"WINDIR", "C:\\WINDOWS"}, {"ProgramFiles", "C:\\Program Files"}};
    const struct {
        std::string in, out;
        int calls;
    } cases[] = {
        {"C:\\plain\\path.exe", "C:\\plain\\path.exe", 0},
        {"%WINDIR%\\system32\\x.exe", "C:\\WINDOWS\\system32\\x.exe", 1},
        {"50% off", "50% off", 1},
        {"%NOSUCH%\\a.exe", "%NOSUCH%\\a.exe", 1},
        {"\"%ProgramFiles%\\A B\\b.exe\" /x", "\"C:\\Program Files\\A B\\b.exe\" /x", 1},
        {"", "", 0},
    };
    for (const auto& c : cases) {
        env.calls = 0;
        EXPECT_EQ(ExpandEnvString(env, c.in), c.out) << c.in;
        EXPECT_EQ(env.calls, c.calls) << c.in;
    }
}

// An expansion that outgrows the text by more than 256 characters does not fit
// the buffer: the result is empty rather than a cut path.
TEST(ExpandEnvString, TooLongExpansionIsEmpty) {
    fakes::FakeEnvironment env;
    env.variables = {{"BIG", std::string(400, 'x')}};
    EXPECT_EQ(ExpandEnvString(env, "%BIG%"), "");
}

TEST(FormatApiError, GivesTheSystemTextOrNothing) {
    fakes::FakeSystemInfo system;
    system.errorTexts[5] = "Access is denied.\r\n";
    EXPECT_EQ(FormatApiError(system, 5), "Access is denied.\r\n");
    EXPECT_EQ(FormatApiError(system, 987654), "");
}

TEST(AppIdentity, FolderOf) {
    EXPECT_EQ(FolderOf("C:\\Program Files\\Corvane\\Corvane.exe"), "C:\\Program Files\\Corvane");
    EXPECT_EQ(FolderOf("C:\\Corvane.exe"), "C:");
    EXPECT_EQ(FolderOf("Corvane.exe"), "");
}

TEST(WebSearch, TextThenCompanyWithBlanksAsPlus) {
    const struct {
        const char* name;
        const char* company;
        const char* address;
    } cases[] = {
        {"app.exe", "", "http://www.google.com/search?q=app.exe"},
        {"app.exe", "Maker Inc", "http://www.google.com/search?q=app.exe+Maker+Inc"},
        {"my app.exe", "Solo", "http://www.google.com/search?q=my app.exe+Solo"},
        {"caf\xE9.exe", "A&B Co", "http://www.google.com/search?q=caf\xE9.exe+A&B+Co"},
    };
    for (const auto& c : cases) EXPECT_EQ(WebSearchAddress(c.name, c.company), c.address);
}

}  // namespace
}  // namespace corvane
