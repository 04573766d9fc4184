// libFuzzer's entry points: fuzz_PROGRAM --target=NAME [--seeds=DIRECTORY] [libFuzzer option or directory]...

#include "Target.h"

#include "support/TempDir.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>

namespace {

using cubes::fuzz::Target;

Target const* chosen = nullptr;

std::optional<std::string> option(int count, char** words, std::string_view prefix) {
    for (int i = 1; i < count; ++i)
        if (std::string_view(words[i]).starts_with(prefix)) return words[i] + prefix.size();
    return {};
}

void choose(std::string_view name) {
    for (auto const& target : cubes::fuzz::targets())
        if (target.name == name) chosen = &target;
    if (chosen) return;
    std::fputs("--target=NAME is missing or unknown; the targets are:\n", stderr);
    for (auto const& target : cubes::fuzz::targets()) std::puts(target.name);
    std::exit(2);
}

}

extern "C" int LLVMFuzzerInitialize(int* count, char*** words) {
    choose(option(*count, *words, "--target=").value_or(""));
    auto const directory = option(*count, *words, "--seeds=");
    if (!directory) return 0;
    int number = 0;
    for (auto const& seed : chosen->seeds()) cubes::test::writeFile(*directory + "/" + std::to_string(++number), seed);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    chosen->read(std::string(reinterpret_cast<char const*>(bytes), size));
    return 0;
}
