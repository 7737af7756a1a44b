// Runs the kept inputs of a folder, cut short and changed, where there is no fuzzer.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>
#include <vector>

#include "fuzz/fuzz_input.h"

namespace {

using input_t = std::vector<std::uint8_t>;

/// Long inputs are changed at some places only.
constexpr std::size_t places = 1'000;

input_t read(const std::filesystem::path& _path) {
    std::ifstream file(_path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void run(const input_t& _input) {
    // In memory of its own size, so that a sanitizer sees a look behind its end.
    const input_t exact(_input);
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

void run_all(input_t _input) {
    run(_input);
    const std::size_t step = _input.size() / places + 1;
    for (std::size_t size = 0; size < _input.size(); size += step) {
        run(input_t(_input.begin(), _input.begin() + std::ptrdiff_t(size)));
    }
    for (std::size_t place = 0; place < _input.size(); place += step) {
        for (const std::uint8_t byte : {0x00, 0x0a, 0x20, 0x23, 0x24, 0x2f, 0xff}) {
            const std::uint8_t former = std::exchange(_input[place], byte);
            run(_input);
            _input[place] = former;
        }
    }
}

}  // namespace

int main(int _count, char** _arguments) {
    int inputs = 0;
    if (_count == 2) {
        for (const auto& entry : std::filesystem::directory_iterator(_arguments[1])) {
            run_all(read(entry.path()));
            ++inputs;
        }
    }
    std::printf("%d kept inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
