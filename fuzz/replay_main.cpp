// Replays a fuzz target in the ordinary test run: a few fixed inputs, then
// every file of its corpus folder, so the seeds that reach the hard cases
// reach them on every run, without the fuzzer's luck. A broken property
// aborts with its line.
//
//   roundtrip_<target> CORPUS_FOLDER
#include <filesystem>
#include <fstream>
#include <iterator>

#include "fuzz_input.h"
#include "support/golden.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

static void Run(const std::string& input) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(input.data()), input.size());
}

int main(int argc, char** argv) {
    if (argc != 2) return std::fprintf(stderr, "usage: %s CORPUS_FOLDER\n", argv[0]), 2;
    // Nothing, every single byte, and long runs of the bytes the readers treat apart.
    Run("");
    for (int byte = 0; byte < 256; ++byte) Run(std::string(1, static_cast<char>(byte)));
    for (const char byte : {'\0', '\x01', '\r', '\n', '"', '\xFF'}) Run(std::string(5000, byte));

    size_t seeds = 0;
    corvane::fuzz::seedMatchesGolden = [](const std::string& name, const std::string& bytes) {
        const auto result = corvane::golden::Matches(name, bytes);
        if (!result) std::fprintf(stderr, "%s\n", result.message());
        return static_cast<bool>(result);
    };
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::ifstream in(entry.path(), std::ios::binary);
        corvane::fuzz::replaySeed = entry.path().filename().string();
        Run(std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()));
        ++seeds;
    }
    std::printf("%zu seeds of %s held\n", seeds, argv[1]);
    return seeds == 0;
}
